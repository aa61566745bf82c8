// Going on as another program.
#pragma once

#include <string>
#include <vector>

#include "platform/SystemError.h"

namespace platform {

/// Has this process go on as the program `words[0]`, looked up as a shell does unless it is a path, with the other
/// words as its arguments; all UTF-8. The program has this one's streams, folder and environment, and nothing else
/// that this one opened.
///
/// Linux: the process becomes the program, whatever threads it has: nothing is destroyed, signals that were caught are
/// as at the start, and the call comes back on failure alone. Windows: the program runs in a job of its own; when all
/// processes of the job have ended, `exitStatus` is the program's and the call succeeds; a batch file is started only with
/// words that cmd.exe takes for nothing but text.
SystemError BecomeProgram(const std::vector<std::string>& words, int& exitStatus);

}  // namespace platform
