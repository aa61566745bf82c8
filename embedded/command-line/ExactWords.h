// The words of a command line as they were typed.
//
// CLI11 gives some words a meaning of its own, wherever they stand: "[a,b]" becomes two words, "++" ends a
// command, what follows "--" may be taken for options after all, and "--name=" takes the next word. Here
// words pass through it in a disguise that it leaves alone.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

namespace command_line {

/// An option, or a positional argument, that takes one text, exactly. `text` outlives the parsing.
CLI::Option* AddText(CLI::App& app, const std::string& name, std::string& text,
                     const std::string& description);
/// The same of one that may be left out; `text` is set when it is there.
CLI::Option* AddOptionalText(CLI::App& app, const std::string& name, std::optional<std::string>& text,
                             const std::string& description);
/// A positional argument that takes one text or more.
CLI::Option* AddTexts(CLI::App& app, const std::string& name, std::vector<std::string>& texts,
                      const std::string& description);
/// An option that takes one text and may be repeated.
CLI::Option* AddRepeatedText(CLI::App& app, const std::string& name, std::vector<std::string>& texts,
                             const std::string& description);

/// Parses the words behind the program's name. All that follow a first "--" are arguments; answers how many these are.
/// Throws CLI::ParseError.
size_t Parse(CLI::App& app, int count, const char* const* words);

/// What is wrong with the words, in one line for people.
std::string FailureText(const CLI::Error& error);

}  // namespace command_line
