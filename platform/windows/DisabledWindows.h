// A host's palettes and other frames wait like its main window while a dialog asks.
#pragma once

#include <windows.h>

#include <vector>

namespace platform {

/// While it lives, the top-level windows of this thread that the user could have used take no input.
class DisabledWindows {
public:
    /// All but `owner`, which may be null: the window that the dialog itself disables.
    explicit DisabledWindows(HWND owner);
    ~DisabledWindows();
    DisabledWindows(const DisabledWindows&) = delete;
    DisabledWindows& operator=(const DisabledWindows&) = delete;

private:
    std::vector<HWND> mWindows;
};

}  // namespace platform
