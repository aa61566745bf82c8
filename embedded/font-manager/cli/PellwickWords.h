// The words of the command line, and what they ask for.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ExactWords.h"
#include "cli/AgentSession.h"

namespace pellwick::cli {

/// The names of what a smart list takes its fonts from.
struct SmartListParts {
    std::vector<std::string> workgroups;
    std::vector<std::string> sets;
    std::vector<std::string> smartLists;
};

/// Which fonts to list; what is empty or false makes no difference.
struct FontFilter {
    std::string text;  ///< part of a name, in any letter case
    std::string family;
    std::string workgroup;
    std::string state;  ///< a word of the list's
    bool isSystems = false;
    bool isVisible = false;
};

/// What the words of the command line are parsed into.
struct Arguments {
    Options options;
    std::vector<std::string> words;
    std::string name;
    std::string newName;
    std::string workgroup;
    SmartListParts parts;
    FontFilter filter;
    bool isForgotten = false;
    bool isConfirmed = false;
};

/// Carries out a command. Returns an exit status or throws Failure.
using Action = std::function<ExitStatus(AgentSession&)>;

/// A parser that reads the words into `arguments`, and what is to be done into `chosen`. Both outlive the
/// parser, and `arguments` the action as well.
std::unique_ptr<CLI::App> DescribeCommandLine(Arguments& arguments, Action& chosen);

/// For the description: a command of that name, which chooses the action.
CLI::App* AddCommand(CLI::App& app, Action& chosen, const char* name, const char* description, Action action);

/// What people may call a font by.
inline constexpr char kFontNameHelp[] = "PostScript name, family, family and style, or number";

// The groups of commands, each described where it is carried out: in cli/…Commands.cpp.
void DescribeAddCommand(CLI::App& app, Arguments& arguments, Action& chosen);
void DescribeFontCommands(CLI::App& app, Arguments& arguments, Action& chosen);
void DescribeSettingsCommands(CLI::App& app, Arguments& arguments, Action& chosen);
void DescribeDoctorCommand(CLI::App& app, Arguments& arguments, Action& chosen);
void DescribeWorkgroupCommands(CLI::App& app, Arguments& arguments, Action& chosen);
void DescribeSetCommands(CLI::App& app, Arguments& arguments, Action& chosen);
void DescribeSmartListCommands(CLI::App& app, Arguments& arguments, Action& chosen);

}  // namespace pellwick::cli
