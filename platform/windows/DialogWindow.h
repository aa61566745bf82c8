// A dialog of the system's dialog manager, made empty; what stands in it is made when it opens.
#pragma once

#include <windows.h>

#include <exception>
#include <optional>
#include <string>

#include "DisabledWindows.h"

namespace platform {

class DialogWindow {
public:
    DialogWindow() = default;
    virtual ~DialogWindow();
    DialogWindow(const DialogWindow&) = delete;
    DialogWindow& operator=(const DialogWindow&) = delete;

    HWND Handle() const { return mHandle; }

protected:
    /// Until End is called; its result. What a handler throws ends the dialog and is thrown here.
    INT_PTR RunModal(HWND owner, const std::wstring& title);
    /// Goes with this object or with its owner.
    void CreateModeless(HWND owner, const std::wstring& title);
    /// Part of another dialog, whose keyboard handling reaches into it. Goes with this object or its parent.
    void CreatePane(HWND parent, DWORD additionalStyle);

    void End(INT_PTR result);
    /// Gives the inside of the window that size, in pixels.
    void Resize(int width, int height) const;
    void RemoveControls() const;
    /// The scale of the screen that the window is on.
    UINT Dpi() const { return mDpi; }

    /// Makes the controls. The window is not visible yet.
    virtual void OnOpen() = 0;
    /// The window came to a screen of another scale, which Dpi() tells.
    virtual void OnScaled() {}
    /// A control of that number, or the key that stands for it, was used.
    virtual void OnCommand(int, int /*notification*/) {}
    /// Whether the message was handled, beside those above.
    virtual bool OnMessage(UINT, WPARAM, LPARAM) { return false; }

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    bool Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void TakeScale(UINT dpi, const RECT& place);
    void RethrowFailure();

    HWND mHandle = nullptr;
    UINT mDpi = 0;
    std::optional<DisabledWindows> mOtherWindows;  ///< while it is modal
    std::exception_ptr mFailure;                   ///< nothing may be thrown through the system
};

}  // namespace platform
