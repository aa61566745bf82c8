#include "DisabledWindows.h"

#include <algorithm>

namespace platform {
namespace {

// Nothing may be thrown through the system; without memory the list ends early.
BOOL CALLBACK AppendUsable(HWND window, LPARAM list) noexcept {
    try {
        if (IsWindowVisible(window) != 0 && IsWindowEnabled(window) != 0)
            reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
        return TRUE;
    } catch (...) {
        return FALSE;
    }
}

}  // namespace

DisabledWindows::DisabledWindows(HWND owner) {
    EnumThreadWindows(GetCurrentThreadId(), AppendUsable, reinterpret_cast<LPARAM>(&mWindows));
    std::erase(mWindows, owner);
    for (const HWND window : mWindows)
        EnableWindow(window, FALSE);
}

DisabledWindows::~DisabledWindows() {
    for (const HWND window : mWindows)
        EnableWindow(window, TRUE);
}

}  // namespace platform
