#include "platform/Console.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace platform {
namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void NoteInterrupt(int) {
    interrupted = 1;
}

}  // namespace

void CatchInterrupts() {
    struct sigaction action {};
    action.sa_handler = NoteInterrupt;  // no SA_RESTART: waiting calls are to notice
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);
}

bool WasInterrupted() {
    return interrupted != 0;
}

bool WaitForUser(std::optional<std::chrono::milliseconds> limit, bool watchInput) {
    using Clock = std::chrono::steady_clock;
    // An interrupt between the check and the poll would go unnoticed without a limit to the poll.
    constexpr std::chrono::milliseconds kStep{200};
    const auto deadline = limit ? Clock::now() + *limit : Clock::time_point::max();
    pollfd input{watchInput ? STDIN_FILENO : -1, POLLIN, 0};
    while (!WasInterrupted() && Clock::now() < deadline) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        const int count =
            poll(&input, 1, static_cast<int>(std::min<int64_t>(left.count() + 1, kStep.count())));
        if (count > 0 || (count < 0 && errno != EINTR))
            return count > 0;
    }
    return false;
}

}  // namespace platform
