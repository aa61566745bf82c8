#include "platform/NativeDialogs.h"

#include <windows.h>

#include <optional>

#include "Desktop.h"
#include "DisabledWindows.h"
#include "FolderChooser.h"
#include "FormDialog.h"
#include "ProgressDialog.h"
#include "VisualStyles.h"
#include "WideText.h"
#include "platform/Folders.h"

namespace platform {
namespace {

class UnseenProgress : public ProgressWindow {
public:
    bool Show(int32_t, int32_t) override { return true; }
};

UINT MessageBoxStyle(const MessageButtons& buttons, HWND owner) {
    const UINT kind =
        buttons.IsQuestion() ? MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2 : MB_OK | MB_ICONINFORMATION;
    return kind | MB_SETFOREGROUND | (owner == nullptr ? MB_TASKMODAL : 0);
}

/// For the system's dialogs, which disable their owner. Without one they would leave no window to come to the front
/// when they go: there the box is modal to its thread by itself.
std::optional<DisabledWindows> OthersThan(HWND owner) {
    return owner != nullptr ? std::optional<DisabledWindows>(std::in_place, owner) : std::nullopt;
}

class WindowsDialogs : public NativeDialogs {
public:
    bool IsAvailable() override { return HasVisibleDesktop(); }
    std::string TakeFailure() override { return {}; }

    bool ShowMessage(WindowHandle owner, const std::string& title, const std::string& text,
                     const MessageButtons& buttons) override {
        if (!IsAvailable())
            return false;
        const ScopedVisualStyles styles;
        const HWND window = OwnerOf(owner);
        const std::optional<DisabledWindows> others = OthersThan(window);
        const int pressed = MessageBoxW(window, ToWide(text).c_str(), ToWide(title).c_str(),
                                        MessageBoxStyle(buttons, window));
        return pressed == IDOK || pressed == IDYES;
    }
    FolderAnswer ChooseFolder(WindowHandle owner, const std::string& prompt,
                              const std::string& initialFolder) override {
        if (!IsAvailable())
            return {};
        const ScopedVisualStyles styles;
        const HWND window = OwnerOf(owner);
        const std::optional<DisabledWindows> others = OthersThan(window);
        // The shell takes neither slashes nor a separator at the end.
        return RunFolderChooser(window, ToWide(prompt), ToWide(FullPath(initialFolder)));
    }
    int ShowForm(WindowHandle owner, Form& form) override {
        const ScopedVisualStyles styles;
        return IsAvailable() ? FormDialog(form).Run(OwnerOf(owner)) : kFormCancelled;
    }
    std::unique_ptr<ProgressWindow> OpenProgress(WindowHandle owner, const std::string& title,
                                                 const std::string& cancelLabel) override {
        if (!IsAvailable())
            return std::make_unique<UnseenProgress>();
        const ScopedVisualStyles styles;
        return std::make_unique<ProgressDialog>(OwnerOf(owner), ToWide(title), ToWide(cancelLabel));
    }
};

}  // namespace

template <>
NativeDialogs& SystemDefault<NativeDialogs>() {
    static WindowsDialogs dialogs;
    return dialogs;
}

}  // namespace platform
