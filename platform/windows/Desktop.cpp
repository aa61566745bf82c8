#include "Desktop.h"

#include <algorithm>
#include <memory>
#include <type_traits>

namespace platform {
namespace {

struct WindowDestroyer {
    void operator()(HWND window) const { DestroyWindow(window); }
};
using OwnedWindow = std::unique_ptr<std::remove_pointer_t<HWND>, WindowDestroyer>;

bool IsStationVisible() {
    USEROBJECTFLAGS flags{};
    return GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags, nullptr) !=
               0 &&
           (flags.dwFlags & WSF_VISIBLE) != 0;
}

RECT RectangleOf(HWND window) {
    RECT rectangle{};
    GetWindowRect(window, &rectangle);
    return rectangle;
}

RECT WorkArea(HWND nearWindow) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(nearWindow, MONITOR_DEFAULTTOPRIMARY), &monitor);
    return monitor.rcWork;
}

/// The first coordinate of something `size` long in the middle of the span from `first` to `end`, inside the
/// span from `low` to `high`.
LONG Centered(LONG size, LONG first, LONG end, LONG low, LONG high) {
    return std::max(std::min((first + end - size) / 2, high - size), low);
}

}  // namespace

bool HasVisibleDesktop() {
    // A station may call itself visible and still have no screen; windows cannot be made there.
    return IsStationVisible() && OwnedWindow(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr,
                                                             nullptr, nullptr, nullptr)) != nullptr;
}

HWND OwnerOf(WindowHandle window) {
    const HWND owner = GetAncestor(static_cast<HWND>(window), GA_ROOT);
    DWORD process = 0;
    return owner != nullptr && GetWindowThreadProcessId(owner, &process) != 0 &&
                   process == GetCurrentProcessId()
               ? owner
               : nullptr;
}

void CenterOverOwner(HWND dialog) {
    const HWND owner = GetWindow(dialog, GW_OWNER);
    const RECT work = WorkArea(owner);
    const bool isOwnerShown = owner != nullptr && IsWindowVisible(owner) != 0 && IsIconic(owner) == 0;
    const RECT around = isOwnerShown ? RectangleOf(owner) : work;
    const RECT own = RectangleOf(dialog);
    SetWindowPos(dialog, nullptr,
                 Centered(own.right - own.left, around.left, around.right, work.left, work.right),
                 Centered(own.bottom - own.top, around.top, around.bottom, work.top, work.bottom), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace platform
