// A program's user at the terminal: waiting for Enter, and Ctrl-C.
#pragma once

#include <chrono>
#include <optional>

namespace platform {

/// From now on an interrupt (Ctrl-C, a request to end) is noted instead of ending the process. Linux: SIGINT, SIGTERM
/// and SIGHUP, but for those that the process was started to ignore.
void CatchInterrupts();
bool WasInterrupted();
/// What a program that was interrupted ends with: 128 and the number of the signal. Windows: Ctrl-C counts as SIGINT
/// (2), a closed console as SIGHUP (1), the end of the session as SIGTERM (15). 0 when it was not.
int InterruptStatus();

/// Waits until a line or the end of standard input can be read, an interrupt comes, or the time is over; no
/// limit waits for one of the others, and 0 for none. With `watchInput` false only the last two count. True when input
/// can be read; a terminal's line is taken out then.
bool WaitForUser(std::optional<std::chrono::milliseconds> limit, bool watchInput);

}  // namespace platform
