// A user who sits in front of the dialogs that a test opens, at the X display of the variable DISPLAY.
#pragma once

#include <functional>
#include <string>
#include <thread>

/// What xdotool prints when it is run with the words, as a shell takes them.
std::string XDoTool(const std::string& words);

/// While it lives, its thread waits for a dialog that is opened from now on, gives it the keyboard and does with it
/// what it was told, once: `actions` gets the number of its window. Where none comes, it is not called. To be made
/// before that dialog, when those before it are done.
class DialogUser {
public:
    explicit DialogUser(std::function<void(const std::string& window)> actions);

private:
    std::jthread mThread;
};
