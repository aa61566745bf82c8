// A blocking mutex that notices when the thread that holds it asks for it again, and says so instead of
// waiting for ever. Inline: the tracker takes it once per font.
#pragma once

#include <atomic>
#include <mutex>
#include <thread>

#include "ErrorCodes.h"

class GMutex : public error_codes::GMutex {
public:
    /// Waits for the lock. kMutexDeadlockErr, without waiting, when the calling thread holds it already.
    [[nodiscard]] ErrorCode Lock() {
        const std::thread::id self = std::this_thread::get_id();
        // Only this thread can have stored its own identifier, so the comparison needs no ordering.
        if (mHolder.load(std::memory_order_relaxed) == self)
            return kMutexDeadlockErr;
        mMutex.lock();
        mHolder.store(self, std::memory_order_relaxed);
        return CoreErrorCodes::kSuccess;
    }
    void Unlock() {
        mHolder.store(std::thread::id(), std::memory_order_relaxed);
        mMutex.unlock();
    }

private:
    std::mutex mMutex;
    std::atomic<std::thread::id> mHolder{};
};

/// Holds a GMutex for a scope, unless the thread held it already: ask Status().
class GScopedLock : public error_codes::GScopedLock {
public:
    explicit GScopedLock(GMutex& mutex) : mMutex(mutex), mStatus(mutex.Lock()) {}
    ~GScopedLock() {
        if (mStatus == CoreErrorCodes::kSuccess)
            mMutex.Unlock();
    }
    GScopedLock(const GScopedLock&) = delete;
    GScopedLock& operator=(const GScopedLock&) = delete;

    ErrorCode Status() const { return mStatus; }

private:
    GMutex& mMutex;
    ErrorCode mStatus;
};
