#include "GMutex.h"

#include <gtest/gtest.h>

#include <thread>

TEST(GMutex, TheThreadThatHoldsItIsRefusedInsteadOfBlocked) {
    GMutex mutex;
    const GScopedLock outer(mutex);
    ASSERT_EQ(outer.Status(), CoreErrorCodes::kSuccess);
    {
        const GScopedLock inner(mutex);
        EXPECT_EQ(inner.Status(), GMutex::kMutexDeadlockErr);
    }
    const GScopedLock again(mutex);  // the refused lock let nothing go
    EXPECT_EQ(again.Status(), GMutex::kMutexDeadlockErr);
}

TEST(GMutex, ThreadsExcludeEachOther) {
    GMutex mutex;
    int counter = 0;
    const auto count = [&] {
        for (int index = 0; index < 10000; ++index) {
            const GScopedLock lock(mutex);
            ++counter;
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 20000);
}
