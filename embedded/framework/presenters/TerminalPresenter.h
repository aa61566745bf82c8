// Asks in the terminal that the host was started from: on standard error, since standard output may be data.
#pragma once

#include <iosfwd>

#include "presenters/Presenter.h"
#include "presenters/SilentPresenter.h"

/// A message with one button is printed and not waited for. A question with two waits for a line: 1 or 2, or
/// the button's name or its beginning; an empty line and the end of input choose the default.
class TerminalPresenter : public Presenter {
public:
    struct Terminal {
        std::istream& input;
        std::ostream& output;
        bool hasColor;
    };

    /// Standard input and standard error; colors unless the environment variable NO_COLOR is set.
    static Terminal StandardTerminal();

    TerminalPresenter(Terminal terminal, std::string language)
        : mTerminal(terminal), mLanguage(std::move(language)) {}

    int32_t AskMessageBox(const MessageBoxQuestion& question) override;
    /// No dialog has a form for the terminal yet: the default answer.
    DialogAnswer AskDialog(const DialogQuestion& question) override { return mDefault.AskDialog(question); }

private:
    int32_t AskForButton(const MessageBoxQuestion& question);
    int32_t ButtonNamed(std::string_view typed, int32_t buttonCount) const;
    const char* ButtonName(int32_t button) const;

    Terminal mTerminal;
    const std::string mLanguage;
    SilentPresenter mDefault;
};
