// How a host's event loop is stood in for, by the commands that stay open for panels.
#pragma once

#include <chrono>
#include <optional>

#include "CoreLibrary.h"
#include "PanelEventService.h"

/// How often the host is idle: soon enough for people who look at a panel, and next to no work.
inline constexpr std::chrono::milliseconds kIdleInterval{100};

using Deadline = std::optional<std::chrono::steady_clock::time_point>;
/// So many seconds from now; without them there is none, and people are told to press Enter.
Deadline DeadlineAfter(const std::optional<double>& seconds);

/// One turn of the loop.
void BeIdle(const CoreLibrary& core, PanelEventService& panels);
