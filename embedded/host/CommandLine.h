// The words of the command line, and what they ask for.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "CoreLibrary.h"
#include "ExactWords.h"

/// What the words are read into.
struct CommandLine {
    HostOptions host{"Illustrator2025", CoreLibrary::DefaultPath()};
    bool json = false;
    OpenOptions open;
    FontsOptions fonts;
    CollectOptions collect;
    SettingsOptions settings;
    MenuOptions menu;
    EventsOptions events;
    PanelOptions panel;
    std::function<int()> run;  ///< the command that was chosen; the program's exit status
};

/// A parser that reads the words into `line`, which outlives it.
std::unique_ptr<CLI::App> DescribeCommandLine(CommandLine& line);

/// What `open` makes of the words behind "--", which were read as its last files: a program, unless no file and no font
/// stands before them. Throws CLI::ParseError where there is nothing to open.
void TakeProgram(OpenOptions& open, size_t wordsBehindDashes);
