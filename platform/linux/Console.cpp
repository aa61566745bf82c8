#include "platform/Console.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

namespace platform {
namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void NoteInterrupt(int signal) {
    interrupted = signal;
}

/// What was typed for us is not the shell's to read afterwards.
void TakeLine() {
    std::array<char, 4096> line{};  // more a terminal does not hold of one
    if (isatty(STDIN_FILENO) != 0)
        (void)!read(STDIN_FILENO, line.data(), line.size());
}

}  // namespace

void CatchInterrupts() {
    struct sigaction action {};
    action.sa_handler = NoteInterrupt;  // no SA_RESTART: waiting calls are to notice
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before {};
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

bool WasInterrupted() {
    return interrupted != 0;
}

int InterruptStatus() {
    return interrupted != 0 ? 128 + interrupted : 0;
}

bool WaitForUser(std::optional<std::chrono::milliseconds> limit, bool watchInput) {
    using std::chrono::steady_clock;
    // An interrupt between the check and the poll would go unnoticed without a limit to the poll.
    constexpr std::chrono::milliseconds kStep{200};
    const auto deadline = limit ? steady_clock::now() + *limit : steady_clock::time_point::max();
    pollfd input{watchInput ? STDIN_FILENO : -1, POLLIN, 0};
    while (!WasInterrupted()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
        const int count =
            poll(&input, 1, static_cast<int>(std::clamp<int64_t>(left.count(), 0, kStep.count())));
        if (count > 0)
            TakeLine();
        if (count > 0 || (count < 0 && errno != EINTR))
            return count > 0;
        if (left.count() <= 0)
            break;
    }
    return false;
}

}  // namespace platform
