// Answers from a list that was made beforehand: for programs and tests.
//
// The list is an array of objects:
//
//     [{"titleID": 604, "textID": 605, "answer": 1},
//      {"titleID": 609, "answer": 2, "repeat": true},
//      {"dialog": "SelectWorkgroup", "answer": {"workgroupID": 3}},
//      {"dialog": "Progress", "answer": {"stopAt": 2}}]
//
// A question takes the first entry that fits and is not used up; a message box needs an entry with its
// titleID or textID (with both when both are given), a dialog one with its name. An entry is used up by one
// question unless "repeat" is true. Questions without an entry get the default answer.
#pragma once

#include <limits>
#include <nlohmann/json.hpp>
#include <vector>

#include "presenters/Presenter.h"
#include "presenters/SilentPresenter.h"

class ScriptedPresenter : public Presenter {
public:
    explicit ScriptedPresenter(nlohmann::json answers);

    int32_t AskMessageBox(const MessageBoxQuestion& question) override;
    bool AskDialog(Dialog& dialog) override;
    bool ShowProgress(const ProgressStep& step) override;

private:
    template <class Fits>
    nlohmann::json TakeEntry(Fits fits);
    nlohmann::json TakeDialogEntry(const std::string& dialog);

    std::vector<nlohmann::json> mEntries;  ///< those not used up
    SilentPresenter mDefault;
    /// The step at which the work that goes on now is stopped; never, unless an entry says so.
    int64_t mStopAt = std::numeric_limits<int64_t>::max();
};

/// The list in the file at `path`, UTF-8; an empty one, after a log line, when the file cannot be read or
/// holds no array of objects.
nlohmann::json ReadAnswersFile(const std::string& path);
