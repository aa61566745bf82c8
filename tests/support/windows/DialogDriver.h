// A user who sits in front of the dialogs that a test opens.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

/// While it lives, its thread waits for a dialog of this process to appear and does with it what it was told,
/// once. A dialog that is open when the test has taken longer than any should is closed, so that no test
/// hangs.
class DialogDriver {
public:
    explicit DialogDriver(std::function<void(HWND dialog)> actions);
    ~DialogDriver();
    DialogDriver(const DialogDriver&) = delete;
    DialogDriver& operator=(const DialogDriver&) = delete;

private:
    std::jthread mThread;
};

struct DialogControl {
    HWND window;
    std::string windowClass;
    std::string text;  ///< UTF-8
};

// All texts are UTF-8. Any thread.

std::string TextOf(HWND window);
/// Those that can be seen, in the order of the tabulator key.
std::vector<DialogControl> ControlsOf(HWND dialog);
/// The texts of those of a class ("Static", "Button", ...).
std::vector<std::string> TextsOf(HWND dialog, const std::string& windowClass);
/// The one with that class and text, or the first of the class where no text is given; null, and a failure of
/// the test, when there is none.
HWND FindControl(HWND dialog, const std::string& windowClass, const std::string& text = {});
/// The entries of a list box or drop-down list.
std::vector<std::string> EntriesOf(HWND list);
/// The control that has the keyboard.
HWND FocusOf(HWND dialog);

void PressKey(HWND dialog, WORD key);
/// Presses the tabulator key and waits until the keyboard is with the next control.
void PressTab(HWND dialog);
void PressButton(HWND dialog, const std::string& text);
/// Gives up, or agrees to what has no other answer.
void Dismiss(HWND dialog);
/// Selects in a list box, as a click on the entry does.
void Select(HWND list, size_t index);

/// What of the texts does not fit its control, one line each; empty when all is well.
std::vector<std::string> TextsCutOff(HWND dialog);
