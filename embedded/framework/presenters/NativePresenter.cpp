#include "presenters/NativePresenter.h"

#include "strings/StringTables.h"

int32_t NativePresenter::AskMessageBox(const MessageBoxQuestion& question) {
    mProgress.reset();
    const bool isQuestion = question.buttons == MessageBoxButtons::kYesNo;
    const bool isFirstButton = mStage.dialogs.ShowMessage(
        mStage.owner, WithoutDots(question.title), question.text,
        isQuestion ? platform::MessageButtons::kYesNo : platform::MessageButtons::kOk);
    return isFirstButton ? 1 : DefaultAnswer(question);
}

bool NativePresenter::AskDialog(Dialog& dialog) {
    mProgress.reset();
    return std::visit([this](auto& each) { return AskInWindow(mStage, each); }, dialog);
}

bool NativePresenter::ShowProgress(const ProgressStep& step) {
    if (step.done == 0)
        mProgress = mStage.dialogs.OpenProgress(mStage.owner, WithoutDots(step.title),
                                                mStage.Text(localized::kCancelButton));
    const bool isToGoOn = mProgress == nullptr || mProgress->Show(step.done, step.total);
    if (!isToGoOn || step.done >= step.total)
        mProgress.reset();
    return isToGoOn;
}
