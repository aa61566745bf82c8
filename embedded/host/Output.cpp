#include "Output.h"

#include <fmt/color.h>
#include <fmt/core.h>

#include <algorithm>
#include <cstdio>

#include "ErrorCodes.h"
#include "PluginCoreInterface.h"
#include "PrintableText.h"
#include "platform/Environment.h"

namespace {

// With the bar before it, this fits on a line of 80 characters.
constexpr size_t kLongestStepName = 36;

bool UseColour() {
    return platform::EnvironmentVariable("NO_COLOR").empty() &&
           platform::IsTerminal(platform::StandardStream::kOutput);
}

}  // namespace

void PrintError(const std::string& message) {
    fmt::print(stderr, "plugincore-host: {}\n", PrintableText(message));
}

void PrintLine(const std::string& line) {
    fmt::print("{}\n", PrintableText(line));
}

void PrintJson(const std::string& json) {
    fmt::print("{}\n", PrintableJson(json));
}

bool FlushOutput() {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return true;
    PrintError("standard output cannot be written; not everything was printed");
    return false;
}

std::string ResultName(uint32_t code) {
    switch (code) {
        case PLUGINCORE_FONTS_ACTIVATED:
            return "FontsActivated";
        case PLUGINCORE_NO_PREFERENCES:
            return "NoPreferences";
        case PLUGINCORE_NO_FONT_MANAGER:
            return "NoFontManager";
        case PLUGINCORE_NOT_STARTED:
            return "NotStarted";
        default:
            return ErrorCodeToName(code);
    }
}

void PrintTable(std::vector<std::vector<std::string>> rows) {
    for (auto& row : rows)
        std::transform(row.begin(), row.end(), row.begin(), PrintableText);
    std::vector<size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], CountCodePoints(row[column]));
    }
    bool isHeading = true;
    for (const auto& row : rows) {
        std::string line;
        for (size_t column = 0; column < row.size(); ++column) {
            line += row[column];
            if (column + 1 < row.size())
                line.append(widths[column] - CountCodePoints(row[column]) + 2, ' ');
        }
        if (isHeading && UseColour())
            line = fmt::format(fmt::emphasis::bold, "{}", line);
        fmt::print("{}\n", line);
        isHeading = false;
    }
}

ProgressBar::ProgressBar(size_t steps)
    : mSteps(steps), mIsShown(steps > 1 && platform::IsTerminal(platform::StandardStream::kError)) {}

ProgressBar::~ProgressBar() {
    Hide();
}

void ProgressBar::Hide() {
    if (!mIsShown)
        return;
    fmt::print(stderr, "\r\033[K");
    std::fflush(stderr);
}

void ProgressBar::Advance(const std::string& what) {
    const size_t done = mBegun++;
    if (!mIsShown)
        return;
    constexpr size_t kWidth = 30;
    const size_t filled = kWidth * done / mSteps;
    Hide();
    fmt::print(stderr, "[{}{}] {}/{} {}", std::string(filled, '#'), std::string(kWidth - filled, '.'), mBegun,
               mSteps, FirstCodePoints(PrintableText(what), kLongestStepName));
    std::fflush(stderr);
}
