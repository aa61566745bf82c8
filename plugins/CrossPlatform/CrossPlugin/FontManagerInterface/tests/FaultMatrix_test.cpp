// A call of the interface library, which stands for all, against the ways to lose the agent.

#include "FacadeTest.h"
#include "HostPatience.h"
#include "NotificationQueue.h"

namespace {

constexpr std::pair<uint32_t, uint32_t> kNotice{600, 601}, kQuestion{604, 605};
constexpr int32_t kYes = 1, kNo = 2;
constexpr char kSymbol[] = "DeactivateFonts";

struct Case {
    /// "before": no facade is to be had, else the function answers so; "goodbye": the agent takes leave; "back": somebody
    /// else has started it; "idle": the host is, after the agent has gone.
    std::string_view loss;
    size_t losses;           ///< one after the other, within one call
    size_t failingLaunches;  ///< of the first start
    int32_t answer;          ///< to the question whether to try again
    // What comes of it.
    bool succeeds;
    size_t launches;
    std::string_view boxes;  ///< "N": the notice that the agent is lost, "Q": the question
    bool areServicesOn;

    bool Is(std::string_view kind) const { return loss.find(kind) != loss.npos; }
};

constexpr Case kCases[] = {
    {"before", 1, 0, kYes, true, 1, "", true},
    {"during", 1, 0, kYes, true, 1, "", true},
    {"during, goodbye", 1, 0, kYes, true, 1, "", true},
    {"during, idle", 1, 0, kYes, true, 1, "", true},
    // Only an agent that said goodbye is told of; one that is there again is no news.
    {"before, goodbye, idle", 1, 0, kYes, true, 1, "N", false},
    {"during, goodbye, idle", 1, 0, kYes, true, 1, "N", false},
    {"during, goodbye, idle, back", 1, 0, kYes, true, 0, "", true},
    {"during, back", 1, 0, kYes, true, 0, "", true},
    {"during, back", 2, 1, kNo, true, 1, "", true},  // the start failed since there is an agent
    {"during, back", 3, 0, kYes, true, 2, "N", false},
    {"during", 2, 0, kYes, true, 2, "N", false},
    {"before", 3, 0, kYes, true, 3, "NN", false},
    {"before", 1, 1, kYes, true, 2, "Q", true},
    {"during, goodbye", 1, 2, kYes, true, 3, "QQ", true},
    {"during", 1, 1, kNo, false, 1, "Q", false},
    {"before", 2, 2, kNo, false, 1, "Q", false},
    {"during, goodbye, idle", 2, 1, kNo, false, 1, "NQ", false},
    {"before, goodbye, idle", 3, 2, kYes, true, 5, "NQQNN", false},
};

class FaultMatrix : public FacadeTest {
protected:
    FaultMatrix() { InstallAgent(); }

    void Run(const Case& each) {
        Arrange(each);
        if (each.Is("idle")) {
            if (each.Is("goodbye"))
                CoreAgentNotificationCallback(kPluginCallback_AgentShutdown, nullptr);
            fontManager.OnIdle();
        }
        EXPECT_EQ(Deactivate() == CoreErrorCodes::kSuccess, each.succeeds);
        EXPECT_EQ(processes.launchedCommandLines.size(), each.launches);
        ExpectBoxes(each);
        EXPECT_EQ(MarquellGlobals::ArePluginServicesEnabled(), each.areServicesOn);
        EXPECT_EQ(MarquellGlobals::IsConnectedToCore(), each.areServicesOn);
        ExpectHealingAtTheNextUserAction(each);
    }
    ErrorCode Deactivate() { return fontManager.GetFontManager()->DeactivateFonts(nullptr, 0, nullptr); }

private:
    void Arrange(const Case& each) {
        framework.shownBoxes.clear();
        framework.answers.assign(each.failingLaunches, each.answer);
        processes.launchedCommandLines.clear();
        processes.launchErrors.assign(each.failingLaunches, 2);
        mLossesLeft = each.losses;
        library.isAgentRunning = !each.Is("idle") || each.Is("back") || !each.Is("goodbye");
        library.answer = [this, each, lossy = each.Is("before") ? "GetPluginFacadeInstance" : kSymbol](
                             const std::string& called) {
            if (called == "ResetPluginFacadeInstance")
                library.isAgentRunning = true;  // it was started
            if (called != lossy)
                return CoreErrorCodes::kSuccess;
            if (library.isAgentRunning || mLossesLeft == each.losses) {
                if (mLossesLeft == 0)
                    return CoreErrorCodes::kSuccess;
                --mLossesLeft;
                library.isAgentRunning = each.Is("back");
            }
            return each.Is("goodbye") ? GAgentIF::kShutdown : GIPCClient::kServiceUnavailable;
        };
    }

    /// Whatever came of it: when the agent is there, the next thing that the user does has the plug-in
    /// working.
    void ExpectHealingAtTheNextUserAction(const Case& each) {
        library.answer = nullptr;
        const size_t launches = processes.launchedCommandLines.size();
        library.isAgentRunning = true;
        fontManager.OnUserAction();
        EXPECT_TRUE(fontManager.IsUsable());
        EXPECT_EQ(processes.launchedCommandLines.size(), launches);
        ExpectBoxes(each);
    }
    void ExpectBoxes(const Case& each) const {
        std::string boxes;
        for (const auto& box : framework.shownBoxes)
            boxes += box == kNotice ? "N" : box == kQuestion ? "Q" : "?";
        EXPECT_EQ(boxes, each.boxes);
    }

    size_t mLossesLeft = 0;
};

}  // namespace

TEST_F(FaultMatrix, EveryCallHealsOrGivesUpAsDocumented) {
    for (const Case& each : kCases) {
        SCOPED_TRACE(testing::Message() << "case " << &each - kCases << ": " << each.loss);
        Run(each);
        if (HasFailure())
            return;
        trace.Clear();
    }
}

// Otherwise each call of a host whose agent does not move would wait for it again.
TEST_F(FaultMatrix, AnAgentThatTookTheHostsWholePatienceIsNotWaitedForAgain) {
    FakeClock clock;
    library.isAgentRunning = false;
    library.answer = [&](const std::string& called) {
        clock.ticks += called == kSymbol ? 3000 : 0;
        return called == kSymbol ? ErrorCode{GIPCClient::kServiceUnavailable} : CoreErrorCodes::kSuccess;
    };
    for (const int call : {1, 2}) {
        const HostPatience::Call scope;
        EXPECT_NE(Deactivate(), 0u);
        EXPECT_EQ(library.CallsOf(kSymbol), call);
        EXPECT_FALSE(MarquellGlobals::ArePluginServicesEnabled());
    }
    EXPECT_THAT(processes.launchedCommandLines, testing::IsEmpty());
    EXPECT_THAT(trace.Text(), testing::HasSubstr("done attempting to relaunch"));
    library.answer = nullptr;  // it is asked again when all ends, and the clock has stopped by then
}

TEST_F(FaultMatrix, WhoWantsToTryAgainWaitsAnewAndWhoQuitsIsNotAsked) {
    FakeClock clock;
    library.isAgentRunning = false;
    library.answer = [&](const std::string& called) {
        const bool isCall = called == kSymbol;
        clock.ticks += isCall || called == "GetIsCoreAgentProcessRunning" ? 1000 : 0;
        library.isAgentRunning = library.isAgentRunning || called == "ResetPluginFacadeInstance";
        return isCall && !library.isAgentRunning ? GIPCClient::kServiceUnavailable : CoreErrorCodes::kSuccess;
    };
    for (const bool isQuitting : {false, true}) {
        const HostPatience::Call scope;
        library.isAgentRunning = false;
        library.calls.clear();
        processes.launchErrors = {2};
        framework.answers = {kYes};
        if (isQuitting)
            fontManager.GetFontManager()->BeginQuitting();
        EXPECT_EQ(Deactivate() == CoreErrorCodes::kSuccess, !isQuitting);
        EXPECT_EQ(library.CallsOf(kSymbol), isQuitting ? 1 : 2);
        EXPECT_EQ(framework.answers.size(), isQuitting ? 1u : 0u);
    }
    library.answer = nullptr;
}
