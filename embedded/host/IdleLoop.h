// How a host's event loop is stood in for, by the commands that stay open for panels.
#pragma once

#include <chrono>
#include <optional>

#include "Commands.h"
#include "CoreLibrary.h"
#include "PanelEventService.h"

/// How often the host is idle: soon enough for people who look at a panel, and next to no work.
inline constexpr std::chrono::milliseconds kIdleInterval{100};

/// When a command that stays open is to end.
class Closing {
public:
    /// From now on. Without a time and a signal people are told to press Enter for `what`.
    Closing(const OpenTime& time, const char* what);
    /// Waits at most so long; whether to go on.
    bool Wait(std::chrono::milliseconds limit) const;

private:
    std::optional<std::chrono::steady_clock::time_point> mDeadline;
    bool mIsByEnter;
};

/// One turn of the loop.
void BeIdle(const CoreLibrary& core, PanelEventService& panels);
