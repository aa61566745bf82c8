// What the program says, and how it ends.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace exit_status {
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;
inline constexpr int kFontsMissing = 3;
inline constexpr int kFontManagerUnreachable = 5;
}  // namespace exit_status

/// One line on standard error, whatever names are in it.
void PrintError(const std::string& message);

/// The same on standard output.
void PrintLine(const std::string& line);

/// A JSON text as a line on standard output, for programs.
void PrintJson(const std::string& json);

/// Writes out what standard output holds back; false after an error line when something was lost.
bool FlushOutput();

/// "CoreErrorCodes::kNotFound" and the like; "FontsActivated", "NoPreferences", "NoFontManager" and "NotStarted" for
/// the results that are not error codes.
std::string ResultName(uint32_t code);

/// Rows below a heading in columns, on standard output, whatever names are in them. Columns are as wide as
/// their widest cell needs on a terminal that gives each code point one cell.
void PrintTable(std::vector<std::vector<std::string>> rows);

/// A progress bar on standard error, when that is a terminal and there is more than one step; nothing else.
class ProgressBar {
public:
    explicit ProgressBar(size_t steps);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    /// The next step begins; `what` names it in a few words.
    void Advance(const std::string& what);
    /// Clears its line for other output; it is back with the next step.
    void Hide();

private:
    size_t mSteps;
    size_t mBegun = 0;
    bool mIsShown;
};
