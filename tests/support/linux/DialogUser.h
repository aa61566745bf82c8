// A user who sits in front of the dialogs that a test opens, at the X display of the variable DISPLAY.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

/// A window on the screen, and the keyboard.
class DialogOnScreen {
public:
    /// Waits until a dialog is there and painted, and gives it the keyboard; null where none comes.
    static std::unique_ptr<DialogOnScreen> Find();
    ~DialogOnScreen();
    DialogOnScreen(const DialogOnScreen&) = delete;
    DialogOnScreen& operator=(const DialogOnScreen&) = delete;

    std::string Title() const;  ///< UTF-8
    int Width() const;          ///< pixels
    int Height() const;
    /// Keys by their X names, with blanks between them; a character of a label's key is given as "alt+y".
    void Press(const std::string& keys) const;
    /// What the screen shows where it is, as a PNG file.
    void SavePicture(const std::string& path) const;

private:
    struct State;
    explicit DialogOnScreen(std::unique_ptr<State> state);
    /// Until what it shows has stayed the same for a moment.
    void WaitUntilPainted() const;

    const std::unique_ptr<State> mState;
};

/// While it lives, its thread waits for a dialog that is opened from now on and does with it what it was told, once. Where
/// none comes, `actions` is not called. To be made before that dialog, when those before it are done.
class DialogUser {
public:
    explicit DialogUser(std::function<void(const DialogOnScreen&)> actions);

private:
    std::jthread mThread;
};
