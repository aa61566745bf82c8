#include "platform/Clock.h"

#include <windows.h>

#include <ctime>

namespace platform {
namespace {

class WindowsClock : public Clock {
public:
    uint32_t TickCount() override { return GetTickCount(); }
    int64_t Now() override { return _time64(nullptr); }
};

}  // namespace

template <>
Clock& SystemDefault<Clock>() {
    static WindowsClock clock;
    return clock;
}

std::string LocalTimeText(int64_t secondsSinceEpoch) {
    const __time64_t seconds = secondsSinceEpoch;
    char text[128] = "";
    return _ctime64_s(text, sizeof text, &seconds) == 0 ? text : "";
}

}  // namespace platform
