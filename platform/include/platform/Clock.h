// Time as the system counts it.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Service.h"

namespace platform {

class Clock {
public:
    virtual ~Clock() = default;

    /// Milliseconds since system start; wraps around after 2^32.
    virtual uint32_t TickCount() = 0;
    /// Seconds since 1970-01-01 UTC.
    virtual int64_t Now() = 0;
};

template <>
Clock& SystemDefault<Clock>();

/// Local time in the form of the C library's ctime, ending in a line feed. Any thread.
std::string LocalTimeText(int64_t secondsSinceEpoch);

}  // namespace platform
