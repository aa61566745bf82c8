// A person at a terminal, in the user's language: texts out, one line in at a time.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LocalizedStrings.h"

/// One entry of a list to choose from.
struct Choice {
    int32_t number = 0;  ///< from 1; 0 is what an empty line chooses
    std::string name;
    std::string remark;      ///< shown behind the name; may be empty
    bool isCurrent = false;  ///< shown with a mark
};
using Choices = std::vector<Choice>;

/// The choice with that number or name, or the only one whose name begins so; capitals do not matter (in
/// ASCII). Null when there is none.
const Choice* FindChoice(const Choices& choices, std::string_view typed);

/// Main thread. What is shown may come from documents and font files, so what would do something to a
/// terminal is left out.
class Terminal {
public:
    struct Streams {
        std::istream& input;
        std::ostream& output;
        bool hasColor;
    };
    /// Standard input and standard error, since standard output may be data; colors unless the environment
    /// variable NO_COLOR is set.
    static Streams StandardStreams();

    Terminal(Streams streams, std::string language) : mStreams(streams), mLanguage(std::move(language)) {}

    std::string Text(localized::StringID id) const;
    std::string Text(localized::StringID id, std::string_view value) const;

    /// The dots that end the title of a menu item are left out.
    void PrintTitle(const std::string& title);
    void PrintLine(const std::string& text);
    void PrintChoices(const Choices& choices);
    /// Draws over the bar before, if nothing else was printed since. `total` > 0.
    void PrintProgress(const std::string& title, int32_t done, int32_t total);

    /// The line typed, without blanks around it. Nothing when it says "cancel", or at the end of input.
    std::optional<std::string> Ask(const std::string& prompt);
    /// Asks until one of the choices is named, and answers with its number; 0 for an empty line.
    std::optional<int32_t> AskForChoice(const std::string& prompt, const Choices& choices);

private:
    std::ostream& BeginLine();
    bool IsCancel(std::string_view typed) const;

    Streams mStreams;
    const std::string mLanguage;
    bool mIsBarOpen = false;  ///< the cursor stands behind a progress bar
};
