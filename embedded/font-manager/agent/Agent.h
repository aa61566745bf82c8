// The agent as a program.
#pragma once

#include <string>

#include "common/Locations.h"

namespace pellwick {

/// Runs the agent until it is told to stop. 0 when it did its work; else 1, and `problem` says what to do
/// about it, in one line.
int RunAgent(const Locations& locations, std::string& problem);

}  // namespace pellwick
