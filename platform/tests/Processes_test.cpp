#include "platform/Processes.h"

#include "TestProcess.h"
#include "support/Launch.h"

using namespace std::chrono_literals;

TEST(Processes, AChildThatEndsHasAStatus) {
    EXPECT_EQ(WaitForExit(*Launch("exit 7")), 7);
    const auto killed = Launch("sleep");
    KillProcess(killed->Id());
    EXPECT_EQ(WaitForExit(*killed), 128 + 9);
}

TEST(Processes, AChildIsIdleWhenItSaysSo) {
    for (const bool isReady : {true, false}) {
        const auto child = Launch(isReady ? "be-ready" : "sleep");
        EXPECT_EQ(child->WaitUntilIdle(isReady ? 10000ms : 50ms), isReady);
        EXPECT_EQ(child->ExitStatus(), std::nullopt);
        KillProcess(child->Id());
    }
    platform::SystemError error;
    EXPECT_EQ(Processes().Launch("/no/such/program", "\"/no/such/program\" ", error), nullptr);
    EXPECT_TRUE(error.IsNotFound());
}

TEST(Processes, ArgumentsAreSplitAtBlanksOutsideQuotes) {
    const TemporaryFolder folder;
    const std::string program = CopyOfChild(folder, "a child");
    const std::string out = folder / "out 字";
    EXPECT_EQ(WaitForExit(*Launch("write \"" + out + "\"  serve  \"two words\" --x=\"1 2\"", program)), 0);
    EXPECT_EQ(ContentOf(out), "serve|two words|--x=1 2|");
}

TEST(Processes, OnlyTheProcessOfTheStartTimeIsAlive) {
    using platform::ProcessState;
    using platform::StateOfProcess;
    const platform::ProcessId self = platform::CurrentProcessId();
    const uint64_t own = platform::ProcessStartTime(self);
    EXPECT_NE(own, 0u);
    EXPECT_EQ(StateOfProcess(self, own), ProcessState::kAlive);
    EXPECT_EQ(StateOfProcess(self, own + 1), ProcessState::kGone);
    for (const platform::ProcessId none : {int64_t{0}, int64_t{-1}, INT64_MIN, INT64_MAX, int64_t{1} << 33})
        EXPECT_EQ(StateOfProcess(none, own), ProcessState::kGone) << none;
    const auto child = Launch("exit 0");
    WaitForExit(*child);
    EXPECT_EQ(platform::ProcessStartTime(child->Id()), 0u);
    EXPECT_EQ(StateOfProcess(child->Id(), 1), ProcessState::kGone);
    EXPECT_TRUE(platform::RequestEndOfProcess(self, own + 1)) << "or this test would end";
    EXPECT_TRUE(platform::RequestEndOfProcess(child->Id(), 1));
    EXPECT_TRUE(platform::RequestEndOfProcess(-1, 1));
}
