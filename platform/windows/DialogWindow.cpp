#include "DialogWindow.h"

#include <utility>

#include "DialogTemplate.h"
#include "VisualStyles.h"
#include "WindowDpi.h"

namespace platform {
namespace {

constexpr DWORD kFrameStyle = DS_MODALFRAME | DS_SETFOREGROUND | WS_POPUP | WS_CAPTION | WS_SYSMENU;
constexpr DWORD kPaneStyle = DS_CONTROL | WS_CHILD | WS_VISIBLE;

}  // namespace

DialogWindow::~DialogWindow() {
    if (mHandle != nullptr)
        DestroyWindow(mHandle);
}

INT_PTR DialogWindow::RunModal(HWND owner, const std::wstring& title) {
    const DialogTemplate dialog(kFrameStyle, 0, title);
    mOtherWindows.emplace(owner);
    const INT_PTR result =
        DialogBoxIndirectParamW(ThisModule(), dialog.Get(), owner, Procedure, reinterpret_cast<LPARAM>(this));
    mOtherWindows.reset();
    RethrowFailure();
    return result;
}

void DialogWindow::CreateModeless(HWND owner, const std::wstring& title) {
    const DialogTemplate dialog(kFrameStyle, 0, title);
    CreateDialogIndirectParamW(ThisModule(), dialog.Get(), owner, Procedure, reinterpret_cast<LPARAM>(this));
    RethrowFailure();
}

void DialogWindow::CreatePane(HWND parent, DWORD additionalStyle) {
    const DialogTemplate dialog(kPaneStyle | additionalStyle, WS_EX_CONTROLPARENT, {});
    CreateDialogIndirectParamW(ThisModule(), dialog.Get(), parent, Procedure, reinterpret_cast<LPARAM>(this));
    RethrowFailure();
}

// Others can be used again before the dialog goes, or another program's window would come to the front where it
// has no owner.
void DialogWindow::End(INT_PTR result) {
    mOtherWindows.reset();
    EndDialog(mHandle, result);
}

void DialogWindow::RemoveControls() const {
    while (const HWND control = GetWindow(mHandle, GW_CHILD))
        DestroyWindow(control);
}

void DialogWindow::Resize(int width, int height) const {
    RECT frame{0, 0, width, height};
    AdjustFrameFor(mDpi, mHandle, frame);
    SetWindowPos(mHandle, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void DialogWindow::RethrowFailure() {
    if (mFailure)
        std::rethrow_exception(std::exchange(mFailure, nullptr));
}

INT_PTR CALLBACK DialogWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<DialogWindow*>(lParam)->mHandle = window;
    }
    auto* self = reinterpret_cast<DialogWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    if (self == nullptr)
        return FALSE;
    try {
        return self->Handle(message, wParam, lParam) ? TRUE : FALSE;
    } catch (...) {
        self->mFailure = std::current_exception();
        self->End(IDCANCEL);
        return TRUE;
    }
}

void DialogWindow::TakeScale(UINT dpi, const RECT& place) {
    mDpi = dpi;
    OnScaled();
    SetWindowPos(mHandle, nullptr, place.left, place.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    InvalidateRect(mHandle, nullptr, TRUE);
}

bool DialogWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            KeepDialogManagerFromScaling(mHandle);
            mDpi = DpiOf(mHandle);
            OnOpen();
            return false;  // which control gets the keyboard is decided there
        case WM_COMMAND:
            OnCommand(LOWORD(wParam), HIWORD(wParam));
            return true;
        case WM_DPICHANGED:
            TakeScale(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
            return true;
        case WM_NCDESTROY:
            mHandle = nullptr;
            return false;
        default:
            return OnMessage(message, wParam, lParam);
    }
}

}  // namespace platform
