// A call of the interface library, which stands for all, against every way to lose the agent.

#include "FacadeTest.h"
#include "HostPatience.h"
#include "NotificationQueue.h"

namespace {

using Boxes = std::vector<std::pair<uint32_t, uint32_t>>;

constexpr std::pair<uint32_t, uint32_t> kNotice{600, 601}, kQuestion{604, 605};
constexpr int32_t kYes = 1, kNo = 2;
constexpr char kSymbol[] = "DeactivateFonts";

struct Case {
    bool isBeforeTheCall;  ///< no facade is to be had; else the function answers so
    ErrorCode code;
    size_t losses;           ///< one after the other, within one call
    size_t failingLaunches;  ///< of the first start
    int32_t answer;          ///< to the question whether to try again
    bool isBackAlready;      ///< somebody else has started the agent
    bool isIdleFirst;        ///< the host, after the agent has gone
};

struct Outcome {
    bool succeeds = true;
    size_t launches = 0;
    Boxes boxes;
    bool areServicesOn = true;
};

Outcome ExpectedOutcome(const Case& each) {
    Outcome outcome;
    // Only an agent that said goodbye is told of; one that is there again is no news.
    if (each.isIdleFirst && each.code == GAgentIF::kShutdown && !each.isBackAlready) {
        outcome.boxes.push_back(kNotice);
        outcome.areServicesOn = false;
    }
    size_t failures = each.failingLaunches;
    for (size_t loss = each.isBackAlready ? 1 : 0; loss < each.losses; ++loss) {
        const bool isSilent = loss == (each.isBackAlready ? 1u : 0u);
        if (!isSilent) {
            outcome.boxes.push_back(kNotice);
            outcome.areServicesOn = false;
        }
        ++outcome.launches;
        for (; failures > 0 && !each.isBackAlready; --failures) {  // else it failed since there is an agent
            outcome.boxes.push_back(kQuestion);
            if (each.answer == kNo) {
                outcome.succeeds = outcome.areServicesOn = false;
                return outcome;
            }
            ++outcome.launches;
        }
        failures = 0;
    }
    return outcome;
}

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    for (const bool isBeforeTheCall : {true, false})
        for (const ErrorCode code : {GIPCClient::kServiceUnavailable, GAgentIF::kShutdown})
            for (const size_t losses : {1, 2, 3})
                for (const size_t failingLaunches : {0, 1, 2})
                    for (const int32_t answer : {kYes, kNo})
                        for (const bool isBackAlready : {true, false})
                            for (const bool isIdleFirst : {true, false})
                                if (!isBeforeTheCall || !isBackAlready)  // else a facade could be had
                                    cases.push_back({isBeforeTheCall, code, losses, failingLaunches, answer,
                                                     isBackAlready, isIdleFirst});
    return cases;
}

class FaultMatrix : public FacadeTest {
protected:
    FaultMatrix() { InstallAgent(); }

    void Run(const Case& each) {
        Arrange(each);
        const Outcome expected = ExpectedOutcome(each);
        if (each.isIdleFirst) {
            if (each.code == GAgentIF::kShutdown)
                CoreAgentNotificationCallback(kPluginCallback_AgentShutdown, nullptr);
            fontManager.OnIdle();
        }
        EXPECT_EQ(Deactivate() == CoreErrorCodes::kSuccess, expected.succeeds);
        EXPECT_EQ(processes.launchedCommandLines.size(), expected.launches);
        EXPECT_EQ(framework.shownBoxes, expected.boxes);
        EXPECT_EQ(MarquellGlobals::ArePluginServicesEnabled(), expected.areServicesOn);
        EXPECT_EQ(MarquellGlobals::IsConnectedToCore(), expected.areServicesOn);
        ExpectHealingAtTheNextUserAction(expected);
    }
    ErrorCode Deactivate() { return fontManager.GetFontManager()->DeactivateFonts(nullptr, 0, nullptr); }

private:
    void Arrange(const Case& each) {
        framework.shownBoxes.clear();
        framework.answers.assign(each.failingLaunches, each.answer);
        processes.launchedCommandLines.clear();
        processes.launchErrors.assign(each.failingLaunches, 2);
        mLossesLeft = each.losses;
        library.isAgentRunning = !each.isIdleFirst || each.isBackAlready || each.code != GAgentIF::kShutdown;
        library.answer = [this, each, lossy = each.isBeforeTheCall ? "GetPluginFacadeInstance" : kSymbol](
                             const std::string& called) {
            if (called == "ResetPluginFacadeInstance")
                library.isAgentRunning = true;  // it was started
            if (called != lossy)
                return CoreErrorCodes::kSuccess;
            if (library.isAgentRunning || mLossesLeft == each.losses) {
                if (mLossesLeft == 0)
                    return CoreErrorCodes::kSuccess;
                --mLossesLeft;
                library.isAgentRunning = each.isBackAlready;
            }
            return each.code;
        };
    }

    /// Whatever came of it: when the agent is there, the next thing that the user does has the plug-in
    /// working.
    void ExpectHealingAtTheNextUserAction(const Outcome& outcome) {
        library.answer = nullptr;
        const size_t launches = processes.launchedCommandLines.size();
        library.isAgentRunning = true;
        fontManager.OnUserAction();
        EXPECT_TRUE(fontManager.IsUsable());
        EXPECT_EQ(processes.launchedCommandLines.size(), launches);
        EXPECT_EQ(framework.shownBoxes, outcome.boxes);
    }

    size_t mLossesLeft = 0;
};

std::string Describe(const Case& each) {
    return std::string(each.isBeforeTheCall ? "before the call" : "during the call") +
           (each.code == GAgentIF::kShutdown ? ", goodbye, " : ", broken off, ") +
           std::to_string(each.losses) + " losses, " + std::to_string(each.failingLaunches) +
           " starts fail, " + (each.answer == kYes ? "yes" : "no") +
           (each.isBackAlready ? ", back already" : "") + (each.isIdleFirst ? ", idle first" : "");
}

}  // namespace

TEST_F(FaultMatrix, EveryCallHealsOrGivesUpAsDocumented) {
    for (const Case& each : AllCases()) {
        SCOPED_TRACE(Describe(each));
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
