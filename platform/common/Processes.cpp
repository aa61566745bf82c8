// What is said of processes in the same way on every system.
#include "platform/Processes.h"

namespace platform {

ProcessState StateOfProcess(ProcessId id, uint64_t startTime) {
    uint64_t found = 0;
    const ProcessState state = LookAtProcess(id, found);
    if (state != ProcessState::kAlive || found == startTime)
        return state;
    return found == 0 ? ProcessState::kCannotBeTold : ProcessState::kGone;
}

uint64_t ProcessStartTime(ProcessId id) {
    uint64_t startTime = 0;
    return LookAtProcess(id, startTime) == ProcessState::kAlive ? startTime : 0;
}

}  // namespace platform
