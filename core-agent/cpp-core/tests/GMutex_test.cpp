#include "GMutex.h"

#include <gtest/gtest.h>

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
