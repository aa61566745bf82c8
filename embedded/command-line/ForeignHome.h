// The superuser at work in a user's home, as after "su" or "sudo" with the user's environment.
#pragma once

#include <string>

namespace command_line {

/// Why this process must not go on, and what to do: it would leave files in the folders for applications that their
/// owner could not use any more. Empty where all is well.
std::string RefusalOfForeignHome();

}  // namespace command_line
