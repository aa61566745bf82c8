#include "IdleLoop.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdio>

#include "platform/Console.h"

using Clock = std::chrono::steady_clock;

Closing::Closing(const OpenTime& time, const char* what) : mIsByEnter(!time.seconds && !time.isUntilSignal) {
    if (time.seconds)
        mDeadline = Clock::now() + std::chrono::milliseconds(static_cast<int64_t>(*time.seconds * 1000));
    if (mIsByEnter)
        fmt::print(stderr, "Press Enter to {}.\n", what);
}

bool Closing::Wait(std::chrono::milliseconds limit) const {
    if (mDeadline)
        limit = std::clamp(std::chrono::ceil<std::chrono::milliseconds>(*mDeadline - Clock::now()),
                           std::chrono::milliseconds(0), limit);
    return !platform::WaitForUser(limit, mIsByEnter) && !platform::WasInterrupted() &&
           (!mDeadline || Clock::now() < *mDeadline);
}

void BeIdle(const CoreLibrary& core, PanelEventService& panels) {
    core.TryRegisterPlugPlug(panels.Handle());
    core.IdleEvent();
    core.ProcessPanelMessages(false);
}
