// Records what another presenter is asked and what it answers: one JSON object per line, appended to a file.
#pragma once

#include <nlohmann/json.hpp>

#include "presenters/Presenter.h"

class RecordingPresenter : public Presenter {
public:
    RecordingPresenter(std::unique_ptr<Presenter> presenter, std::string logFile)
        : mPresenter(std::move(presenter)), mLogFile(std::move(logFile)) {}

    void SetParentWindow(platform::WindowHandle window) override { mPresenter->SetParentWindow(window); }
    int32_t AskMessageBox(const MessageBoxQuestion& question) override;
    bool AskDialog(Dialog& dialog) override;
    bool ShowProgress(const ProgressStep& step) override;

private:
    void Append(const nlohmann::ordered_json& line);

    const std::unique_ptr<Presenter> mPresenter;
    const std::string mLogFile;
};
