// A dialog of the system's dialog manager, made empty; what stands in it is made when it opens.
#pragma once

#include <windows.h>

#include <exception>
#include <string>

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

    void End(INT_PTR result) { EndDialog(mHandle, result); }
    /// Gives the inside of the window that size, in pixels.
    void Resize(int width, int height) const;

    /// Makes the controls. The window is not visible yet.
    virtual void OnOpen() = 0;
    /// A control of that number, or the key that stands for it, was used.
    virtual void OnCommand(int, int /*notification*/) {}
    /// Whether the message was handled, beside those above.
    virtual bool OnMessage(UINT, WPARAM, LPARAM) { return false; }

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    bool Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void RethrowFailure();

    HWND mHandle = nullptr;
    std::exception_ptr mFailure;  ///< nothing may be thrown through the system
};

}  // namespace platform
