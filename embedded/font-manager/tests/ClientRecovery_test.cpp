// Agents and hosts that die, freeze or come back, and the notifications.
#include <atomic>
#include <thread>

#include "TestFiles.h"
#include "ipc/AgentConnection.h"
#include "tests/support/ClientTest.h"

namespace pellwick::test {
namespace {

using ClientRecovery = ClientTest;

std::unique_ptr<TestProcess> StartHost(const std::vector<std::string>& fonts) {
    std::vector<std::string> command = {BuiltFile(TEST_HOST_PROGRAM), "/document"};
    command.insert(command.end(), fonts.begin(), fonts.end());
    auto host = std::make_unique<TestProcess>(command);
    EXPECT_EQ(host->ReadLine(), std::to_string(fonts.size()));
    return host;
}

TEST_F(ClientRecovery, AFrozenAgentIsWaitedForOnceAndAnswersWhenItIsWellAgain) {
    ASSERT_EQ(AskWhetherLoggedIn(), 0u);
    SuspendProcess(mWorld.AgentProcess());
    for (int time = 0; time < 2; ++time)  // the second time it does not even greet
        EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);
    ResumeProcess(mWorld.AgentProcess());
    EXPECT_EQ(AskWhetherLoggedIn(), 0u);
}

TEST_F(ClientRecovery, AHostThatDiesLeavesNothingBehind) {
    const auto areActiveFiles = [this](size_t count) {
        return Eventually([&] { return mWorld.ActiveFiles().size() == count; });
    };
    const auto first = StartHost({"Sample-Bold", "Sample-Italic"});
    const auto second = StartHost({"Sample-Bold"});
    first->Kill();
    first->Finish();
    EXPECT_TRUE(areActiveFiles(1)) << "which the second shares";
    second->Finish();
    EXPECT_TRUE(areActiveFiles(0));
    StartHost({"Sample-Bold"})->Kill();
    EXPECT_TRUE(Eventually([] {
        // So many clients come and go that there is no rest between them.
        Json status;
        for (int client = 0; client < 100; ++client) {
            AgentConnection connection(std::chrono::seconds(30));
            EXPECT_EQ(connection.Call(method::kGetStatus, Json::object(), status), 0u);
            if (status["hosts"] == 0)
                return true;
        }
        return false;
    }));

    const auto dying = StartHost({"Sample-Bold"});
    const auto living = StartHost({"Sample-Italic"});
    mWorld.KillAgent();
    dying->Finish();
    mWorld.StartAgent();
    EXPECT_EQ(mWorld.ActiveFiles().size(), 1u) << "the other died while there was no agent";
    living->Finish();  // it has no connection to this agent
    EXPECT_TRUE(areActiveFiles(0));
}

TEST_F(ClientRecovery, NotificationsArriveOnceAndUntilTheyAreUnsubscribed) {
    Listen();
    Listen();
    Deactivate(Activate("/document", {"Sample-Bold"}));
    mWorld.RunForJson({"logout"});
    mWorld.RunForJson({"login", "somebody"});
    std::vector<Notes::Note> expected = {{kPluginCallback_FontActivated, kBold},
                                         {kPluginCallback_FontDeactivated, kBold},
                                         {kPluginCallback_LoggedOut, 0},
                                         {kPluginCallback_LoggedIn, 0}};
    mWorld.EmptyVault();
    for (int time = 0; time < 2; ++time)  // what is missing is said once
        EXPECT_TRUE(Activate("/document", {"Sample-Bold"}).empty());
    expected.emplace_back(kPluginCallback_FontMissing, kBold);
    for (int64_t time = 0; time < 2000; ++time) {  // however many there are
        EXPECT_EQ(Ask(SetGoogleWebFontsEnabled, time % 2 == 0), 0u);
        expected.emplace_back(kPluginCallback_GoogleWebFontsEnabled, time % 2 == 0);
    }
    EXPECT_TRUE(Eventually([&] {
        const std::lock_guard guard(notes.notesLock);
        return notes.received.size() >= expected.size();
    }));
    EXPECT_EQ(Ask(UnregisterForNotifications, Note), 0u);
    mWorld.RunForJson({"logout"});
    EXPECT_EQ(notes.received, expected);
}

// What becomes of calls of a callback: how many there were, and whether one goes on for a while.
std::atomic<int> calls{0};
std::atomic<bool> isInCallback{false};

void TakeTime(int32_t, const void*) {
    isInCallback = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    isInCallback = false;
    ++calls;
}

void LeaveAtOnce(int32_t, const void*) {
    static const TestLibrary library;
    const PluginFacadeRef facade = library.Facade();
    EXPECT_EQ(library.RegisterForNotifications(facade, TakeTime), CoreErrorCodes::kNotSupported);
    EXPECT_EQ(library.UnregisterForNotifications(facade, LeaveAtOnce), 0u);
    ++calls;
}

TEST_F(ClientRecovery, ACallbackMayLeaveWithinItsCallAndWhoTakesOneAwayWaitsForItsEnd) {
    calls = 0;
    ASSERT_EQ(Ask(RegisterForNotifications, LeaveAtOnce), 0u);
    Listen();
    mWorld.RunForJson({"logout"});
    ASSERT_TRUE(IsNoted(kPluginCallback_LoggedOut));
    ASSERT_EQ(Ask(RegisterForNotifications, TakeTime), 0u);
    mWorld.RunForJson({"login", "somebody"});
    ASSERT_TRUE(Eventually([] { return isInCallback.load(); }));
    EXPECT_EQ(Ask(UnregisterForNotifications, TakeTime), 0u);
    EXPECT_FALSE(isInCallback);
    EXPECT_EQ(calls, 2) << "one of each";
}

TEST_F(ClientRecovery, NobodyIsToldWhoseSubscriptionFailedOrIsOver) {
    mWorld.StopAgent();
    EXPECT_EQ(Ask(RegisterForNotifications, Note), GIPCClient::kServiceUnavailable);
    mWorld.StartAgent();
    for (const char* name : {"me", "you"}) {
        calls = 0;
        ASSERT_EQ(Ask(RegisterForNotifications, TakeTime), 0u);
        mWorld.RunForJson({"login", name});
        EXPECT_TRUE(Eventually([] { return calls > 0; }));
        EXPECT_TRUE(notes.received.empty());
        Listen();
        CleanUpOnShutdown();
    }
}

TEST_F(ClientRecovery, AGoodbyeIsNotifiedAndEachNewAgentIsHeard) {
    Listen();
    mWorld.KillAgent();
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);
    EXPECT_FALSE(Told<bool>(GetIsCoreAgentProcessRunning));
    mWorld.StartAgent();
    EXPECT_TRUE(IsNoted(kPluginCallback_PanelDataChanged));
    EXPECT_FALSE(notes.Has(kPluginCallback_AgentShutdown)) << "it was lost, and did not say goodbye";
    mWorld.StopAgent();
    EXPECT_TRUE(IsNoted(kPluginCallback_AgentShutdown));
    mWorld.StartAgent();
    EXPECT_TRUE(Eventually([this] {
        mWorld.RunForJson({"login", "somebody"});
        return notes.Has(kPluginCallback_LoggedIn);
    }));
    CleanUpOnShutdown();  // and once more when the test ends
}

}  // namespace
}  // namespace pellwick::test
