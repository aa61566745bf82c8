#include <algorithm>
#include <chrono>

#include "Commands.h"
#include "IdleLoop.h"
#include "Output.h"
#include "platform/Console.h"

namespace {

using Clock = std::chrono::steady_clock;

void PrintEvent(const PlugPlugEvent& event) {
    PrintJson(event.data != nullptr ? event.data : "");
    std::fflush(stdout);
}

/// Until the next idle call or the deadline; false when the user has had enough.
bool Wait(Deadline deadline) {
    std::chrono::milliseconds wait = kIdleInterval;
    if (deadline)
        wait = std::min(wait, std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()));
    return !platform::WaitForUser(wait, !deadline) && !platform::WasInterrupted();
}

}  // namespace

int RunEvents(const HostOptions& host, const EventsOptions& options) {
    platform::CatchInterrupts();
    PanelEventService panels(PrintEvent);
    HostSession session;
    if (const int startStatus = session.Start(host, HostSession::Needs::kPreferencesAlone))
        return startStatus;
    const Deadline deadline = DeadlineAfter(options.seconds);
    do {
        BeIdle(session.Core(), panels);
    } while (Wait(deadline) && (!deadline || Clock::now() < *deadline));
    return exit_status::kDone;
}
