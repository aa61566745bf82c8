#include "HostCall.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "TraceLog.h"

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
            const WithinHost dialog;
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

TEST(HostCall, CallsOfOtherThreadsAreTheirOwn) {
    Turn turn;
    const HostCall outer;
    const HostCall::Number number = HostCall::Innermost();
    const TurnHolder taken(turn);
    std::thread([&] {
        EXPECT_EQ(HostCall::Innermost(), 0u);
        const HostCall other;
        EXPECT_NE(HostCall::Innermost(), number);
        EXPECT_TRUE(turn.IsTaken());
    }).join();
    EXPECT_EQ(HostCall::Innermost(), number);
    EXPECT_TRUE(turn.IsTaken());
}
