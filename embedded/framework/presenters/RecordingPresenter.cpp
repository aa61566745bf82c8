#include "presenters/RecordingPresenter.h"

#include <fstream>

#include "TraceLog.h"
#include "platform/Utf8Path.h"
#include "presenters/DialogJson.h"

int32_t RecordingPresenter::AskMessageBox(const MessageBoxQuestion& question) {
    const int32_t answer = mPresenter->AskMessageBox(question);
    Append({{"titleID", question.titleID},
            {"textID", question.textID},
            {"title", question.title},
            {"text", question.text},
            {"buttons", ButtonCount(question)},
            {"answer", answer}});
    return answer;
}

bool RecordingPresenter::AskDialog(Dialog& dialog) {
    nlohmann::json details = DialogDetails(dialog);
    const bool isConfirmed = mPresenter->AskDialog(dialog);
    Append({{"dialog", DialogName(dialog)},
            {"details", std::move(details)},
            {"answer", isConfirmed ? ChosenAnswer(dialog) : nlohmann::json(false)}});
    return isConfirmed;
}

bool RecordingPresenter::ShowProgress(const ProgressStep& step) {
    const bool isToGoOn = mPresenter->ShowProgress(step);
    nlohmann::ordered_json details = {
        {"titleID", step.titleID}, {"title", step.title}, {"done", step.done}, {"total", step.total}};
    Append({{"dialog", "Progress"}, {"details", std::move(details)}, {"answer", isToGoOn}});
    return isToGoOn;
}

void RecordingPresenter::Append(const nlohmann::ordered_json& line) {
    const std::string text =
        line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    std::ofstream file(platform::Utf8Path(mLogFile), std::ios::app | std::ios::binary);
    if (!(file << text << std::flush))
        LogMessage(0, "Cannot write to '%s', which PLUGINCORE_ANSWERS_LOG names", mLogFile.c_str());
}
