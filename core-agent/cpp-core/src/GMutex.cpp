#include "GMutex.h"

ErrorCode GMutex::Lock() {
    const std::thread::id self = std::this_thread::get_id();
    // Only this thread can have stored its own identifier, so the comparison needs no ordering.
    if (mHolder.load(std::memory_order_relaxed) == self)
        return kMutexDeadlockErr;
    mMutex.lock();
    mHolder.store(self, std::memory_order_relaxed);
    return CoreErrorCodes::kSuccess;
}

void GMutex::Unlock() {
    mHolder.store(std::thread::id(), std::memory_order_relaxed);
    mMutex.unlock();
}
