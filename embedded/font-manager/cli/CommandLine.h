// The words of the command line, and what they ask for.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ExactWords.h"
#include "cli/Commands.h"

namespace pellwick::cli {

/// What the words are read into.
struct Arguments {
    Options options;
    std::vector<std::string> words;
    std::string name;
    std::string newName;
    std::string workgroup;
    SmartListParts parts;
    bool isVisible = false;
};

using Action = std::function<ExitStatus(Session&)>;

/// A parser that reads the words into `arguments`, and what is to be done into `chosen`. Both outlive the
/// parser, and `arguments` the action as well.
std::unique_ptr<CLI::App> DescribeCommandLine(Arguments& arguments, Action& chosen);

}  // namespace pellwick::cli
