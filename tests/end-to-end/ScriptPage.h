// Pages of docs/ that show what goes in and out of a program.
#pragma once

#include <string>
#include <vector>

/// A line that goes in, after its mark, and the lines that it is answered with.
struct PageExchange {
    char mark;  ///< '>' for a line that is written, '$' for a command that is run
    std::string request;
    std::vector<std::string> answers;
};

/// What stands in the blocks of the page, in its order. Answers before the first line that goes in are an
/// exchange without mark and request.
std::vector<PageExchange> ReadScriptPage(const std::string& name);
