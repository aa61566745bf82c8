#include "HostPatience.h"

#include <gtest/gtest.h>

#include <functional>

#include "FakePlatform.h"
#include "TraceLog.h"

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

TEST(HostCall, WhatTheHostLeftIsOverOnceTheCallAroundItGoesOn) {
    alignas(HostCall) unsigned char abandoned[sizeof(HostCall)];  // never destroyed
    const int depth = TraceIndentation();
    const std::function<void()> beginAndLeave = [&] {
        new (abandoned) HostCall();
        SetTraceIndentation(depth + 2);
    };
    Turn turn;
    {
        const HostCall outer;
        {
            const HostTurn dialog;
            beginAndLeave();
        }
        EXPECT_EQ(TraceIndentation(), depth);
        const TurnHolder taken(turn);
        const std::function<void()> comeFromBehindADialog = [&] {
            const HostCall inner;
            EXPECT_FALSE(TurnHolder(turn)) << "the outer call has it";
        };
        comeFromBehindADialog();
        beginAndLeave();
    }
    EXPECT_EQ(TraceIndentation(), depth);
    EXPECT_EQ(HostCall::Innermost(), 0u);
    EXPECT_TRUE(TurnHolder(turn));
}
