#pragma once

#include "platform/Worker.h"

inline constexpr platform::WorkerLimits kTestWorkerLimits = {
    uint64_t{1} << 30, std::chrono::milliseconds(300), std::chrono::milliseconds(3000), size_t{1} << 20};
