#include "presenters/TerminalPresenter.h"

#include "presenters/TerminalForms.h"

int32_t TerminalPresenter::AskMessageBox(const MessageBoxQuestion& question) {
    mTerminal.PrintTitle(question.title);
    mTerminal.PrintLine(question.text);
    return ButtonCount(question) == 1 ? 1 : AskForButton(question);
}

int32_t TerminalPresenter::AskForButton(const MessageBoxQuestion& question) {
    const Choices buttons = {{1, mTerminal.Text(localized::kYes), {}, false},
                             {2, mTerminal.Text(localized::kNo), {}, false}};
    const int32_t byDefault = DefaultAnswer(question);
    const int32_t chosen = mTerminal
                               .AskForChoice("1: " + buttons[0].name + "  2: " + buttons[1].name + "  [" +
                                                 std::to_string(byDefault) + "] ",
                                             buttons)
                               .value_or(0);
    return chosen != 0 ? chosen : byDefault;
}

bool TerminalPresenter::AskDialog(Dialog& dialog) {
    return std::visit([this](auto& each) { return AskInTerminal(mTerminal, each); }, dialog);
}

bool TerminalPresenter::ShowProgress(const ProgressStep& step) {
    mTerminal.PrintProgress(step.title, step.done, step.total);
    return true;
}
