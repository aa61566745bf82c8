#include "presenters/TerminalPresenter.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iostream>
#include <iterator>

#include "platform/Environment.h"
#include "strings/LocalizedStrings.h"

namespace {

enum TerminalString : uint32_t { kYes = 1001, kNo = 1002, kTypeANumber = 1003 };

constexpr char kBold[] = "\033[1m";
constexpr char kPlain[] = "\033[0m";

std::string Trimmed(const std::string& text) {
    constexpr char kBlanks[] = " \t\r";
    const size_t first = text.find_first_not_of(kBlanks);
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool IsBeginningOf(std::string_view typed, std::string_view name) {
    const auto isSameLetter = [](unsigned char left, unsigned char right) {
        return std::tolower(left) == std::tolower(right);
    };
    return typed.size() <= name.size() && std::equal(typed.begin(), typed.end(), name.begin(), isSameLetter);
}

}  // namespace

TerminalPresenter::Terminal TerminalPresenter::StandardTerminal() {
    return {std::cin, std::cerr, platform::EnvironmentVariable("NO_COLOR").empty()};
}

int32_t TerminalPresenter::AskMessageBox(const MessageBoxQuestion& question) {
    mTerminal.output << (mTerminal.hasColor ? kBold : "") << question.title
                     << (mTerminal.hasColor ? kPlain : "") << '\n'
                     << question.text << std::endl;
    return ButtonCount(question) == 1 ? 1 : AskForButton(question);
}

int32_t TerminalPresenter::AskForButton(const MessageBoxQuestion& question) {
    for (std::string line;;) {
        mTerminal.output << "1: " << ButtonName(1) << "  2: " << ButtonName(2) << "  ["
                         << DefaultAnswer(question) << "] " << std::flush;
        if (!std::getline(mTerminal.input, line)) {
            // The end of input at a terminal is not for ever, and others may ask later.
            mTerminal.input.clear();
            mTerminal.output << std::endl;
            return DefaultAnswer(question);
        }
        const std::string typed = Trimmed(line);
        if (typed.empty())
            return DefaultAnswer(question);
        if (const int32_t button = ButtonNamed(typed, ButtonCount(question)))
            return button;
        char hint[256];
        std::snprintf(hint, sizeof hint, FindLocalizedString(mLanguage, kTypeANumber), ButtonCount(question));
        mTerminal.output << hint << '\n';
    }
}

/// 0 for none.
int32_t TerminalPresenter::ButtonNamed(std::string_view typed, int32_t buttonCount) const {
    for (int32_t button = 1; button <= buttonCount; ++button) {
        if (typed == std::to_string(button) || IsBeginningOf(typed, ButtonName(button)))
            return button;
    }
    return 0;
}

const char* TerminalPresenter::ButtonName(int32_t button) const {
    return FindLocalizedString(mLanguage, button == 1 ? kYes : kNo);
}
