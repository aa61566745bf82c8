// Dialogs shown by a program beside this library, one process for each.
#pragma once

#include <nlohmann/json.hpp>

#include "DialogProcess.h"
#include "platform/NativeDialogs.h"

namespace platform {

class HelperDialogs : public NativeDialogs {
public:
    /// `program`: a full path.
    HelperDialogs(std::string program, const DialogLimits& limits);

    /// Looks for a display and the program alone; whether this can show something turns out with the first dialog.
    bool IsAvailable() override;
    std::string TakeFailure() override;
    bool ShowMessage(WindowHandle owner, const std::string& title, const std::string& text,
                     const MessageButtons& buttons) override;
    FolderAnswer ChooseFolder(WindowHandle owner, const std::string& prompt,
                              const std::string& initialFolder) override;
    int ShowForm(WindowHandle owner, Form& form) override;
    std::unique_ptr<ProgressWindow> OpenProgress(WindowHandle owner, const std::string& title,
                                                 const std::string& cancelLabel) override;

private:
    int Show(Form& form, const std::string& icon);
    /// Null where nothing can be shown.
    std::unique_ptr<DialogProcess> Start(nlohmann::json request);
    std::optional<nlohmann::json> Ask(nlohmann::json request);

    const std::string mProgram;
    const DialogLimits mLimits;
    std::string mFailure;
    bool mIsHopeless = false;  ///< the display is named and cannot be opened
};

}  // namespace platform
