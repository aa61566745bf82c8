// A program's user at the terminal: waiting for Enter, and Ctrl-C.
#pragma once

#include <chrono>
#include <optional>

namespace platform {

/// From now on an interrupt (Ctrl-C, a request to end) is noted instead of ending the process.
void CatchInterrupts();
bool WasInterrupted();

/// Waits until a line or the end of standard input can be read, an interrupt comes, or the time is over; no
/// limit waits for one of the others. With `watchInput` false only the last two count. True when input can be
/// read.
bool WaitForUser(std::optional<std::chrono::milliseconds> limit, bool watchInput);

}  // namespace platform
