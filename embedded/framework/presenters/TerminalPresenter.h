// Asks in the terminal that the host was started from.
#pragma once

#include "presenters/Presenter.h"
#include "presenters/Terminal.h"

/// A message with one button is printed and not waited for. A question with two waits for a line: 1 or 2, or
/// the button's name or its beginning; an empty line, "q" and the end of input choose the default.
class TerminalPresenter : public Presenter {
public:
    TerminalPresenter(Terminal::Streams streams, std::string language)
        : mTerminal(streams, std::move(language)) {}

    int32_t AskMessageBox(const MessageBoxQuestion& question) override;
    bool AskDialog(Dialog& dialog) override;
    bool ShowProgress(const ProgressStep& step) override;

private:
    int32_t AskForButton(const MessageBoxQuestion& question);

    Terminal mTerminal;
};
