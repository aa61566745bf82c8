#include "IdleLoop.h"

#include <fmt/core.h>

#include <cstdio>

Deadline DeadlineAfter(const std::optional<double>& seconds) {
    if (seconds)
        return std::chrono::steady_clock::now() +
               std::chrono::milliseconds(static_cast<int64_t>(*seconds * 1000));
    fmt::print(stderr, "Press Enter to end.\n");
    return std::nullopt;
}

void BeIdle(const CoreLibrary& core, PanelEventService& panels) {
    core.TryRegisterPlugPlug(panels.Handle());
    core.IdleEvent();
    core.ProcessPanelMessages(false);
}
