// Nobody to ask: every question gets its default answer, and a line in the trace log.
#pragma once

#include "presenters/Presenter.h"

class SilentPresenter : public Presenter {
public:
    int32_t AskMessageBox(const MessageBoxQuestion& question) override;
    bool AskDialog(Dialog& dialog) override;
    /// Goes on; not worth a line per step.
    bool ShowProgress(const ProgressStep&) override { return true; }
};
