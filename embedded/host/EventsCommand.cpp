#include "Commands.h"
#include "IdleLoop.h"
#include "Output.h"
#include "platform/Console.h"

namespace {

void PrintEvent(const PlugPlugEvent& event) {
    PrintJson(event.data != nullptr ? event.data : "");
    std::fflush(stdout);
}

}  // namespace

int RunEvents(const HostOptions& host, const EventsOptions& options) {
    platform::CatchInterrupts();
    PanelEventService panels(PrintEvent);
    HostSession session;
    if (const int startStatus = session.Start(host, HostSession::Needs::kPreferencesAlone))
        return startStatus;
    const Closing closing(options.time, "end");
    do {
        BeIdle(session.Core(), panels);
    } while (closing.Wait(kIdleInterval));
    return exit_status::kDone;
}
