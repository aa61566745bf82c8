#include "presenters/NativePresenter.h"

#include "TraceLog.h"
#include "strings/StringTables.h"

bool NativePresenter::IsAnswered() {
    const std::string failure = mStage.dialogs.TakeFailure();
    if (!failure.empty())
        LogMessage(0, "A dialog was not answered: %s", failure.c_str());
    return failure.empty();
}

int32_t NativePresenter::AskMessageBox(const MessageBoxQuestion& question) {
    mProgress.reset();
    if (!mStage.dialogs.IsAvailable())
        return mDefault.AskMessageBox(question);
    const platform::MessageButtons buttons =
        question.buttons == MessageBoxButtons::kYesNo
            ? platform::MessageButtons{mStage.Text(localized::kYes), mStage.Text(localized::kNo)}
            : platform::MessageButtons{mStage.Text(localized::kOkButton), {}};
    const bool isFirstButton =
        mStage.dialogs.ShowMessage(mStage.owner, WithoutDots(question.title), question.text, buttons);
    if (!IsAnswered())
        return mDefault.AskMessageBox(question);
    return isFirstButton ? 1 : DefaultAnswer(question);
}

bool NativePresenter::AskDialog(Dialog& dialog) {
    mProgress.reset();
    if (!mStage.dialogs.IsAvailable())
        return mDefault.AskDialog(dialog);
    const bool isConfirmed = std::visit([this](auto& each) { return AskInWindow(mStage, each); }, dialog);
    return IsAnswered() ? isConfirmed : mDefault.AskDialog(dialog);
}

bool NativePresenter::ShowProgress(const ProgressStep& step) {
    if (step.done == 0)
        mProgress = mStage.dialogs.OpenProgress(mStage.owner, WithoutDots(step.title),
                                                mStage.Text(localized::kCancelButton));
    const bool isToGoOn = mProgress == nullptr || mProgress->Show(step.done, step.total);
    IsAnswered();
    if (!isToGoOn || step.done >= step.total)
        mProgress.reset();
    return isToGoOn;
}
