// Asks in the system's own windows, which belong to the host's main window. A question that nobody answered there,
// because nothing can be shown or it stood for too long, gets the default answer.
#pragma once

#include <memory>

#include "presenters/NativeForms.h"
#include "presenters/Presenter.h"
#include "presenters/SilentPresenter.h"

class NativePresenter : public Presenter {
public:
    /// `dialogs` lives longer; `language` is a two-letter code.
    NativePresenter(platform::NativeDialogs& dialogs, std::string language)
        : mStage{dialogs, nullptr, std::move(language)} {}

    void SetParentWindow(platform::WindowHandle window) override { mStage.owner = window; }
    int32_t AskMessageBox(const MessageBoxQuestion& question) override;
    bool AskDialog(Dialog& dialog) override;
    /// The window stays until the last step, the user's wish to stop, or the next question.
    bool ShowProgress(const ProgressStep& step) override;

private:
    /// Whether the last question was one for the user, and answered. Logs why not.
    bool IsAnswered();

    NativeStage mStage;
    SilentPresenter mDefault;
    std::unique_ptr<platform::ProgressWindow> mProgress;  ///< while a work goes on
};
