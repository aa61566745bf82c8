#include "HelperDialogs.h"

#include <unistd.h>

#include <utility>

#include "DialogMessages.h"
#include "platform/Environment.h"
#include "platform/Folders.h"
#include "platform/Processes.h"
#include "platform/SystemError.h"

namespace platform {
namespace {

using nlohmann::json;

constexpr int kAgreed = 1;

class Progress : public ProgressWindow {
public:
    Progress(std::unique_ptr<DialogProcess> process, std::string& failure)
        : mProcess(std::move(process)), mFailure(failure) {}

    bool Show(int32_t done, int32_t total) override {
        if (!mProcess)
            return true;
        mProcess->Send({{"done", done}, {"total", total}});
        if (mProcess->LookForAnswer())
            return false;
        if (mProcess->HasFailed()) {
            mFailure = mProcess->Failure();
            mProcess.reset();
        }
        return true;
    }

private:
    std::unique_ptr<DialogProcess> mProcess;  ///< null where nothing can be shown
    std::string& mFailure;
};

/// A title and a text, with the answer that agrees to nothing as the default.
Form MessageForm(const std::string& title, const std::string& text, const MessageButtons& buttons) {
    Form form{title, {}, {{kAgreed, buttons.agree}}, kAgreed};
    if (!title.empty())
        form.controls.emplace_back(FormText{title, true});
    form.controls.emplace_back(FormText{text});
    if (buttons.IsQuestion()) {
        form.buttons.push_back({kFormCancelled, buttons.refuse});
        form.defaultButton = kFormCancelled;
    }
    return form;
}

bool HasDisplay() {
    return !EnvironmentVariable("DISPLAY").empty() || !EnvironmentVariable("WAYLAND_DISPLAY").empty();
}

}  // namespace

HelperDialogs::HelperDialogs(std::string program, const DialogLimits& limits)
    : mProgram(std::move(program)), mLimits(limits) {}

bool HelperDialogs::IsAvailable() {
    if (mIsHopeless || !HasDisplay())
        return false;
    if (access(mProgram.c_str(), X_OK) == 0)
        return true;
    mFailure = "'" + mProgram + "': " + SystemErrorText(LastSystemError());
    return false;
}

std::string HelperDialogs::TakeFailure() {
    return std::exchange(mFailure, {});
}

bool HelperDialogs::ShowMessage(WindowHandle, const std::string& title, const std::string& text,
                                const MessageButtons& buttons) {
    Form form = MessageForm(title, text, buttons);
    return Show(form, buttons.IsQuestion() ? "dialog-question" : "dialog-information") == kAgreed;
}

int HelperDialogs::ShowForm(WindowHandle, Form& form) {
    return Show(form, {});
}

int HelperDialogs::Show(Form& form, const std::string& icon) {
    const std::optional<json> answer = Ask(dialog_messages::FormRequest(form, icon));
    const auto button = answer ? dialog_messages::TakeFormAnswer(*answer, form) : kFormCancelled;
    if (!button)
        mFailure = "its process answers what was not asked";
    return button.value_or(kFormCancelled);
}

FolderAnswer HelperDialogs::ChooseFolder(WindowHandle, const std::string& prompt,
                                         const std::string& initialFolder) {
    const std::optional<json> answer =
        Ask({{"show", "folder"}, {"prompt", prompt}, {"folder", FullPath(initialFolder)}});
    if (!answer)
        return {};
    const auto folder = dialog_messages::TakeFolderAnswer(*answer);
    if (!folder)
        mFailure = "its process answers what was not asked";
    return folder.value_or(FolderAnswer());
}

std::unique_ptr<ProgressWindow> HelperDialogs::OpenProgress(WindowHandle, const std::string& title,
                                                            const std::string& cancelLabel) {
    return std::make_unique<Progress>(
        Start({{"show", "progress"}, {"title", title}, {"cancel", cancelLabel}}), mFailure);
}

std::unique_ptr<DialogProcess> HelperDialogs::Start(json request) {
    mFailure.clear();
    if (!IsAvailable())
        return nullptr;
    auto process = DialogProcess::Start(mProgram, mLimits, mFailure);
    if (!process)
        return nullptr;
    request["application"] = Current<Processes>().CurrentName();
    request["process"] = CurrentProcessId();
    process->Send(request);
    return process;
}

std::optional<json> HelperDialogs::Ask(json request) {
    const std::unique_ptr<DialogProcess> process = Start(std::move(request));
    if (!process)
        return std::nullopt;
    std::optional<json> answer = process->WaitForAnswer();
    mFailure = process->Failure();
    mIsHopeless = process->IsHopeless();
    return answer;
}

}  // namespace platform
