#include "presenters/SilentPresenter.h"

#include "TraceLog.h"
#include "presenters/DialogJson.h"

int32_t SilentPresenter::AskMessageBox(const MessageBoxQuestion& question) {
    const int32_t answer = DefaultAnswer(question);
    LogMessage(0, "Nobody to show message %u/%u to (\"%s: %s\"); answered with button %d", question.titleID,
               question.textID, question.title.c_str(), question.text.c_str(), answer);
    return answer;
}

bool SilentPresenter::AskDialog(Dialog& dialog) {
    LogMessage(0, "Nobody to show the dialog %s to; answered as not confirmed", DialogName(dialog).c_str());
    return false;
}
