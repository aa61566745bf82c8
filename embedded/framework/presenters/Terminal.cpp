#include "presenters/Terminal.h"

#include <algorithm>
#include <cctype>
#include <iomanip>
#include <iostream>
#include <string>

#include "PrintableText.h"
#include "platform/Environment.h"
#include "strings/StringTables.h"

namespace {

constexpr char kBold[] = "\033[1m";
constexpr char kPlain[] = "\033[0m";
constexpr int32_t kBarWidth = 20;

std::string Trimmed(const std::string& text) {
    constexpr char kBlanks[] = " \t\r";
    const size_t first = text.find_first_not_of(kBlanks);
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool IsSameLetter(unsigned char left, unsigned char right) {
    return std::tolower(left) == std::tolower(right);
}

bool IsBeginningOf(std::string_view typed, std::string_view name) {
    return typed.size() <= name.size() && std::equal(typed.begin(), typed.end(), name.begin(), IsSameLetter);
}

bool IsSame(std::string_view typed, std::string_view name) {
    return typed.size() == name.size() && IsBeginningOf(typed, name);
}

/// The text, which may have several lines, as a terminal may have it.
std::string WithoutControls(const std::string& text) {
    std::string shown;
    size_t begin = 0;
    for (size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find('\n', begin);
        shown += WithoutUnprintables(std::string_view(text).substr(begin, end - begin));
        if (end != std::string::npos)
            shown += '\n';
    }
    return shown;
}

}  // namespace

const Choice* FindChoice(const Choices& choices, std::string_view typed) {
    const Choice* found = nullptr;
    bool isAmbiguous = false;
    for (const Choice& choice : choices) {
        if (typed == std::to_string(choice.number))
            return &choice;
    }
    for (const Choice& choice : choices) {
        if (IsSame(typed, choice.name))
            return &choice;
        if (IsBeginningOf(typed, choice.name)) {
            isAmbiguous = found != nullptr;
            found = &choice;
        }
    }
    return isAmbiguous || typed.empty() ? nullptr : found;
}

Terminal::Streams Terminal::StandardStreams() {
    return {std::cin, std::cerr, platform::EnvironmentVariable("NO_COLOR").empty()};
}

std::string Terminal::Text(localized::StringID id) const {
    return LocalizedText(mLanguage, id);
}

std::string Terminal::Text(localized::StringID id, std::string_view value) const {
    return FillIn(Text(id), value);
}

std::ostream& Terminal::BeginLine() {
    if (mIsBarOpen)
        mStreams.output << '\n';
    mIsBarOpen = false;
    return mStreams.output;
}

void Terminal::PrintTitle(const std::string& title) {
    BeginLine() << (mStreams.hasColor ? kBold : "") << WithoutControls(WithoutDots(title))
                << (mStreams.hasColor ? kPlain : "") << std::endl;
}

void Terminal::PrintLine(const std::string& text) {
    BeginLine() << WithoutControls(text) << std::endl;
}

void Terminal::PrintChoices(const Choices& choices) {
    for (const Choice& choice : choices) {
        const std::string remark = choice.remark.empty() ? "" : "  [" + choice.remark + "]";
        BeginLine() << (choice.isCurrent ? '*' : ' ') << std::setw(3) << choice.number << "  "
                    << WithoutControls(choice.name + remark) << '\n';
    }
}

void Terminal::PrintProgress(const std::string& title, int32_t done, int32_t total) {
    const int32_t shown = std::clamp(done, 0, total);
    const auto filled = static_cast<size_t>(int64_t{kBarWidth} * shown / total);
    mStreams.output << '\r' << WithoutControls(WithoutDots(title)) << "  [" << std::string(filled, '#')
                    << std::string(kBarWidth - filled, '.') << "] " << shown << '/' << total << std::flush;
    mIsBarOpen = true;
    if (shown == total)
        BeginLine() << std::flush;
}

std::optional<std::string> Terminal::Ask(const std::string& prompt) {
    BeginLine() << WithoutControls(prompt) << std::flush;
    std::string line;
    if (!std::getline(mStreams.input, line)) {
        // The end of input at a terminal is not for ever, and others may ask later.
        mStreams.input.clear();
        mStreams.output << std::endl;
        return std::nullopt;
    }
    std::string typed = Trimmed(line);
    return IsCancel(typed) ? std::nullopt : std::optional(std::move(typed));
}

bool Terminal::IsCancel(std::string_view typed) const {
    return IsSame(typed, "q") || IsSame(typed, Text(localized::kCancelWord));
}

std::optional<int32_t> Terminal::AskForChoice(const std::string& prompt, const Choices& choices) {
    while (const auto typed = Ask(prompt)) {
        if (typed->empty())
            return 0;
        if (const Choice* choice = FindChoice(choices, *typed))
            return choice->number;
        PrintLine(Text(localized::kNoSuchChoice));
    }
    return std::nullopt;
}
