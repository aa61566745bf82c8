#include "presenters/ScriptedPresenter.h"

#include <algorithm>
#include <limits>

#include "TraceLog.h"
#include "platform/Files.h"
#include "presenters/DialogJson.h"

namespace {

constexpr uint64_t kLargestAnswersFile = uint64_t{16} * 1024 * 1024;

bool IsListOfObjects(const nlohmann::json& list) {
    return list.is_array() &&
           std::all_of(list.begin(), list.end(), [](const auto& entry) { return entry.is_object(); });
}

bool HasOther(const nlohmann::json& entry, const char* member, uint32_t id) {
    return entry.contains(member) && entry[member] != id;
}

bool FitsMessageBox(const nlohmann::json& entry, const MessageBoxQuestion& question) {
    return (entry.contains("titleID") || entry.contains("textID")) &&
           !HasOther(entry, "titleID", question.titleID) && !HasOther(entry, "textID", question.textID);
}

bool IsButton(const nlohmann::json& answer, const MessageBoxQuestion& question) {
    return answer.is_number_integer() && answer >= 1 && answer <= ButtonCount(question);
}

int64_t StopAt(const nlohmann::json& answer) {
    constexpr int64_t kNever = std::numeric_limits<int64_t>::max();
    if (answer.is_object() && answer.contains("stopAt") && answer["stopAt"].is_number_integer())
        return answer["stopAt"].get<int64_t>();
    if (!answer.is_null() && !answer.is_boolean())
        LogMessage(0, "The scripted answer to Progress names no step to stop at: %s", answer.dump().c_str());
    return answer == false ? 0 : kNever;
}

}  // namespace

ScriptedPresenter::ScriptedPresenter(nlohmann::json answers) : mEntries(answers.begin(), answers.end()) {}

// Null when no entry fits.
template <class Fits>
nlohmann::json ScriptedPresenter::TakeEntry(Fits fits) {
    const auto found = std::find_if(mEntries.begin(), mEntries.end(), fits);
    if (found == mEntries.end())
        return nullptr;
    nlohmann::json answer = found->contains("answer") ? (*found)["answer"] : nlohmann::json();
    if (!found->contains("repeat") || (*found)["repeat"] != true)
        mEntries.erase(found);
    return answer;
}

int32_t ScriptedPresenter::AskMessageBox(const MessageBoxQuestion& question) {
    const nlohmann::json answer =
        TakeEntry([&question](const nlohmann::json& entry) { return FitsMessageBox(entry, question); });
    if (IsButton(answer, question))
        return answer.get<int32_t>();
    if (!answer.is_null())
        LogMessage(0, "The scripted answer to message %u/%u is not the number of a button", question.titleID,
                   question.textID);
    return mDefault.AskMessageBox(question);
}

bool ScriptedPresenter::AskDialog(Dialog& dialog) {
    const nlohmann::json answer = TakeDialogEntry(DialogName(dialog));
    return answer.is_null() ? mDefault.AskDialog(dialog) : TakeAnswer(answer, dialog);
}

nlohmann::json ScriptedPresenter::TakeDialogEntry(const std::string& dialog) {
    return TakeEntry([&dialog](const nlohmann::json& entry) {
        return entry.contains("dialog") && entry["dialog"] == dialog;
    });
}

// One entry serves for a whole work.
bool ScriptedPresenter::ShowProgress(const ProgressStep& step) {
    if (step.done == 0)
        mStopAt = StopAt(TakeDialogEntry("Progress"));
    return step.done < mStopAt;
}

nlohmann::json ReadAnswersFile(const std::string& path) {
    std::string bytes;
    if (const platform::SystemError error = platform::ReadWholeFile(path, bytes, kLargestAnswersFile)) {
        LogMessage(0, "Cannot read '%s', which PLUGINCORE_ANSWERS names: %s", path.c_str(),
                   platform::SystemErrorText(error).c_str());
        return nlohmann::json::array();
    }
    nlohmann::json answers = nlohmann::json::parse(bytes, nullptr, false);
    if (IsListOfObjects(answers))
        return answers;
    LogMessage(0, "'%s', which PLUGINCORE_ANSWERS names, holds no JSON array of objects", path.c_str());
    return nlohmann::json::array();
}
