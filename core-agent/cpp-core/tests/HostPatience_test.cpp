#include "HostPatience.h"

#include <gtest/gtest.h>

#include <functional>

#include "FakePlatform.h"

TEST(HostPatience, EndsWithTheWaitingOfOneCallAndBeginsAnewWithWhatTheUserSees) {
    FakeClock clock;
    clock.ticks = 0xFFFFFF00;  // about to wrap around
    EXPECT_TRUE(HostPatience::AllowsLaunch()) << "outside of a call nobody waits";
    const HostPatience::Call call;
    clock.ticks += 2700;
    EXPECT_TRUE(HostPatience::AllowsRequest());
    EXPECT_FALSE(HostPatience::AllowsLaunch());
    clock.ticks += 300;
    EXPECT_FALSE(HostPatience::AllowsRequest());
    EXPECT_TRUE(HostPatience::AllowsQuestion());
    HostPatience::NoteRecovery();
    EXPECT_TRUE(HostPatience::AllowsRequest()) << "of an agent that answers again";
    clock.ticks += 1600;
    EXPECT_FALSE(HostPatience::AllowsRequest());
    EXPECT_FALSE(HostPatience::AllowsQuestion());
    const std::function<void()> comeFromBehindADialog = [&] {
        const HostPatience::Call inner;
        EXPECT_TRUE(HostPatience::AllowsLaunch());
        clock.ticks += 5000;
    };
    comeFromBehindADialog();
    EXPECT_TRUE(HostPatience::AllowsLaunch());
    clock.ticks += 5000;
    HostPatience::Renew();
    EXPECT_TRUE(HostPatience::AllowsLaunch());
}
