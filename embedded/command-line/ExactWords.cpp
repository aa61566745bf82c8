#include "ExactWords.h"

#include <algorithm>
#include <string_view>

#include "PrintableText.h"

namespace command_line {
namespace {

/// In front of a word in disguise. Nothing that the parser knows begins with it.
constexpr char kDisguise = '\x1F';

/// Stands for "--", since an option of many texts would take what follows; nobody types it by chance.
constexpr char kEndOfOption[] = "--end-of-option";

bool IsOption(std::string_view word) {
    return word.size() > 1 && word[0] == '-';
}

/// Whether a word, also one that means something, is nothing to the parser but a word.
bool IsHarmless(std::string_view word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '.' || character == '-' ||
               character == '_' || character == ' ';
    });
}

std::string Disguised(std::string_view word) {
    return kDisguise + std::string(word);
}

std::string WithoutDisguise(const std::string& word) {
    return !word.empty() && word.front() == kDisguise ? word.substr(1) : word;
}

std::string AsParsed(std::string_view word) {
    if (!IsOption(word))
        return IsHarmless(word) ? std::string(word) : Disguised(word);
    const size_t value = word.find('=') + 1;
    if (value == 0 || IsHarmless(word.substr(value)))
        return std::string(word);
    return std::string(word.substr(0, value)) + Disguised(word.substr(value));
}

/// `text`: a string, or one that may be missing.
template <class Text>
CLI::Option* AddOneText(CLI::App& app, const std::string& name, Text& text, const std::string& description) {
    return app
        .add_option(
            name,
            [&text](const CLI::results_t& words) {
                text = WithoutDisguise(words.at(0));
                return true;
            },
            description)
        ->type_name("TEXT");
}

}  // namespace

CLI::Option* AddText(CLI::App& app, const std::string& name, std::string& text,
                     const std::string& description) {
    return AddOneText(app, name, text, description);
}

CLI::Option* AddOptionalText(CLI::App& app, const std::string& name, std::optional<std::string>& text,
                             const std::string& description) {
    return AddOneText(app, name, text, description);
}

CLI::Option* AddTexts(CLI::App& app, const std::string& name, std::vector<std::string>& texts,
                      const std::string& description) {
    return AddRepeatedText(app, name, texts, description)->expected(CLI::detail::expected_max_vector_size);
}

CLI::Option* AddRepeatedText(CLI::App& app, const std::string& name, std::vector<std::string>& texts,
                             const std::string& description) {
    return app
        .add_option(
            name,
            [&texts](const CLI::results_t& words) {
                texts.clear();
                std::transform(words.begin(), words.end(), std::back_inserter(texts), WithoutDisguise);
                return true;
            },
            description)
        ->type_name("TEXT")
        ->take_all();
}

size_t Parse(CLI::App& app, int count, const char* const* words) {
    const auto end = words + count;
    const auto dashes = std::find(words + 1, end, std::string_view("--"));
    std::vector<std::string> parsed;
    std::transform(words + 1, dashes, std::back_inserter(parsed), AsParsed);
    if (dashes != end) {
        app.add_flag(kEndOfOption)->group("");
        parsed.emplace_back(kEndOfOption);
        std::transform(dashes + 1, end, std::back_inserter(parsed), Disguised);
    }
    std::reverse(parsed.begin(), parsed.end());  // as the parser takes them
    try {
        app.parse(std::move(parsed));
    } catch (const CLI::ParseError&) {  // of its own accord it names no command that there is none of
        const std::vector<std::string> left = app.remaining();
        if (!app.get_subcommands().empty() || left.empty() || left.front().starts_with('-'))
            throw;
        throw CLI::ParseError("there is no command \"" + left.front() + "\"", CLI::ExitCodes::ExtrasError);
    }
    return dashes != end ? static_cast<size_t>(end - dashes) - 1 : 0;
}

std::string FailureText(const CLI::Error& error) {
    std::string text = error.what();
    text.erase(std::remove(text.begin(), text.end(), kDisguise), text.end());
    return PrintableText(text);
}

}  // namespace command_line
