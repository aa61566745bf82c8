#include "platform/Clock.h"

#include <ctime>

namespace platform {
namespace {

class LinuxClock : public Clock {
public:
    uint32_t TickCount() override {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                                     static_cast<uint64_t>(now.tv_nsec) / 1000000);
    }
    int64_t Now() override { return std::time(nullptr); }
};

}  // namespace

template <>
Clock& SystemDefault<Clock>() {
    static LinuxClock clock;
    return clock;
}

std::string LocalTimeText(int64_t secondsSinceEpoch) {
    const time_t seconds = secondsSinceEpoch;
    char text[128] = "";
    return ctime_r(&seconds, text) != nullptr ? text : "";
}

}  // namespace platform
