// Who asks the user. The framework puts its questions to one presenter; which one depends on what surrounds
// the process (see ChoosePresenter).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "VantorixPluginFramework.h"
#include "platform/Windowing.h"
#include "presenters/Dialogs.h"

struct MessageBoxQuestion {
    uint32_t titleID = 0;
    uint32_t textID = 0;
    MessageBoxButtons buttons = MessageBoxButtons::kOk;
    std::string title;  ///< in the user's language
    std::string text;
};

inline int32_t ButtonCount(const MessageBoxQuestion& question) {
    return question.buttons == MessageBoxButtons::kYesNo ? 2 : 1;
}
/// The answer when there is nobody to ask: 1 for one button, 2 (no) for two.
inline int32_t DefaultAnswer(const MessageBoxQuestion& question) {
    return ButtonCount(question);
}

/// How far a long work has come: the first step has `done` 0, the last one `done` equal to `total`, which is
/// above 0.
struct ProgressStep {
    uint32_t titleID = 0;
    std::string title;
    int32_t done = 0;
    int32_t total = 1;
};

/// Main thread.
class Presenter {
public:
    virtual ~Presenter() = default;

    /// The host's main window, which owns what a presenter with windows shows; may be null.
    virtual void SetParentWindow(platform::WindowHandle) {}
    /// The number of the button, from 1 to ButtonCount.
    virtual int32_t AskMessageBox(const MessageBoxQuestion& question) = 0;
    /// Whether the user confirmed the dialog, which then holds what was chosen.
    virtual bool AskDialog(Dialog& dialog) = 0;
    /// Whether the work is to go on.
    virtual bool ShowProgress(const ProgressStep& step) = 0;
};

/// Who asks is decided by, in this order:
///
/// 1. PLUGINCORE_ANSWERS names a file of answers: a scripted presenter.
/// 2. PLUGINCORE_PRESENTER is "native", "terminal" or "silent": that one. Where the system cannot show
///    dialogs, "native" is silent. No other way leads to the terminal: it belongs to the host.
/// 3. The system can show dialogs: a native presenter.
/// 4. Otherwise a silent one.
///
/// With PLUGINCORE_ANSWERS_LOG every question and its answer is recorded in the file of that name. `language`
/// is a two-letter code.
std::unique_ptr<Presenter> ChoosePresenter(const std::string& language);
