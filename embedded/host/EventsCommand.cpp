#include <fmt/core.h>

#include <algorithm>
#include <chrono>

#include "Commands.h"
#include "Output.h"
#include "PanelEventService.h"
#include "platform/Console.h"

namespace {

using Clock = std::chrono::steady_clock;

/// How often the host is idle: soon enough for people who look at a panel, and next to no work.
constexpr std::chrono::milliseconds kIdleInterval{100};

void PrintEvent(const PlugPlugEvent& event) {
    PrintJson(event.data != nullptr ? event.data : "");
    std::fflush(stdout);
}

void BeIdle(const CoreLibrary& core, PanelEventService& panels) {
    core.TryRegisterPlugPlug(panels.Handle());
    core.IdleEvent();
    core.ProcessPanelMessages(false);
}

/// Until the next idle call or the deadline; false when the user has had enough.
bool Wait(std::optional<Clock::time_point> deadline) {
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
    std::optional<Clock::time_point> deadline;
    if (options.seconds)
        deadline = Clock::now() + std::chrono::milliseconds(static_cast<int64_t>(*options.seconds * 1000));
    else
        fmt::print(stderr, "Press Enter to end.\n");
    do {
        BeIdle(session.Core(), panels);
    } while (Wait(deadline) && (!deadline || Clock::now() < *deadline));
    return exit_status::kDone;
}
