// Agents and hosts that die, freeze or come back, and the notifications.
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <vector>

#include "common/Locations.h"
#include "common/Protocol.h"
#include "ipc/AgentConnection.h"
#include "tests/support/RecoveryTest.h"

namespace pellwick::test {
namespace {

TEST_F(RecoveryTest, AKilledAgentIsUnavailableUntilThereIsAnotherOneAndLosesNothing) {
    const auto ids = mLibrary.Activate("/document", {"Sample-Bold"});
    mWorld.KillAgent();
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);
    bool isRunning = true;
    EXPECT_EQ(mLibrary.GetIsCoreAgentProcessRunning(mLibrary.Facade(), &isRunning), 0u);
    EXPECT_FALSE(isRunning);
    mWorld.StartAgent();
    EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    // This process lives, so what it holds is still held, and it can let go of it.
    EXPECT_EQ(mLibrary.StateOf(ids[0]), kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(mWorld.ActiveFiles().size(), 1u);
    EXPECT_EQ(mLibrary.Deactivate(ids), 0u);
    EXPECT_TRUE(mWorld.ActiveFiles().empty());
}

TEST_F(RecoveryTest, AnAgentThatIsReplacedIsNotMissed) {
    ASSERT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    const PluginFacadeRef facade = mLibrary.Facade();
    mWorld.StopAgent();
    bool isLoggedIn = false;
    EXPECT_EQ(mLibrary.GetIsLoggedIn(facade, &isLoggedIn), GAgentIF::kShutdown) << "it said so";
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);
    for (int time = 0; time < 3; ++time) {
        mWorld.StartAgent();
        EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
        mWorld.KillAgent();
    }
    mWorld.StartAgent();
    EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess) << "no call in between noticed";
}

TEST_F(RecoveryTest, AFrozenAgentIsWaitedForOnceAndAnswersWhenItIsWellAgain) {
    ASSERT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    SuspendProcess(mWorld.AgentProcess());
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);  // it does not even greet
    ResumeProcess(mWorld.AgentProcess());
    EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
}

TEST_F(RecoveryTest, AHostThatDiesLeavesNothingBehind) {
    TestProcess first({TEST_HOST_PROGRAM, "/first", "Sample-Bold", "Sample-Italic"});
    ASSERT_EQ(first.ReadLine(), "2");
    TestProcess second({TEST_HOST_PROGRAM, "/second", "Sample-Bold"});
    ASSERT_EQ(second.ReadLine(), "1");
    first.Kill();
    first.Finish();
    EXPECT_TRUE(Eventually([&] { return mWorld.ActiveFiles().size() == 1; }));  // which the second shares
    second.Finish();
    EXPECT_TRUE(Eventually([&] { return mWorld.ActiveFiles().empty(); }));
}

TEST_F(RecoveryTest, AHostThatDiesIsFoundOutHoweverManyComeAndGo) {
    TestProcess host({TEST_HOST_PROGRAM, "/first", "Sample-Bold"});
    ASSERT_EQ(host.ReadLine(), "1");
    host.Kill();
    host.Finish();
    EXPECT_TRUE(Eventually([] {
        // So many that there is no rest between them.
        Json status;
        for (int client = 0; client < 100; ++client) {
            AgentConnection connection(std::chrono::seconds(30));
            EXPECT_EQ(connection.Call(method::kGetStatus, Json::object(), status), 0u);
            if (status["hosts"] == 0)
                return true;
        }
        return false;
    }));
}

TEST_F(RecoveryTest, AHostThatDiesWhileNoAgentRunsIsFoundOutAtTheNextStart) {
    TestProcess dying({TEST_HOST_PROGRAM, "/first", "Sample-Bold"});
    TestProcess living({TEST_HOST_PROGRAM, "/second", "Sample-Italic"});
    ASSERT_EQ(dying.ReadLine() + living.ReadLine(), "11");
    mWorld.KillAgent();
    dying.Finish();
    mWorld.StartAgent();
    EXPECT_EQ(mWorld.ActiveFiles().size(), 1u);
    living.Finish();  // it has no connection to this agent
    EXPECT_TRUE(Eventually([&] { return mWorld.ActiveFiles().empty(); }));
}

TEST_F(RecoveryTest, AFontWhoseFileIsGoneIsNotified) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.EmptyVault();
    EXPECT_TRUE(mLibrary.Activate("/document", {"Sample-Bold"}).empty());
    EXPECT_TRUE(mLibrary.Activate("/document", {"Sample-Bold"}).empty());
    mWorld.RunForJson({"logout"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedOut); }));
    EXPECT_EQ(mLibrary.UnregisterForNotifications(mLibrary.Facade(), Note), 0u);
    EXPECT_EQ(notes.received,
              (std::vector<Notes::Note>{{kPluginCallback_FontMissing, 1}, {kPluginCallback_LoggedOut, 0}}));
}

TEST_F(RecoveryTest, NotificationsArriveUntilTheyAreUnsubscribed) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    const int64_t font = mLibrary.Activate("/document", {"Sample-Bold"}).front();
    mLibrary.Deactivate({font});
    for (const char* command :
         {"logout", "login somebody", "workgroup create Project", "workgroup rename Project Done",
          "workgroup use Done", "workgroup delete Done", "standalone off", "standalone on", "standalone on",
          "set create Poster", "set add Poster Sample-Bold", "set add Poster Sample-Bold",
          "set delete Poster", "smartlist create Posters", "smartlist rename Posters Bills",
          "smartlist delete Bills", "logout"}) {
        std::istringstream words(command);
        mWorld.RunForJson({std::istream_iterator<std::string>(words), {}});
    }
    const std::vector<Notes::Note> expected = {
        {kPluginCallback_FontActivated, font},  {kPluginCallback_FontDeactivated, font},
        {kPluginCallback_LoggedOut, 0},         {kPluginCallback_LoggedIn, 0},
        {kPluginCallback_WorkgroupsChanged, 0}, {kPluginCallback_WorkgroupsChanged, 0},
        {kPluginCallback_WorkgroupsChanged, 0}, {kPluginCallback_WorkgroupsChanged, 0},
        {kPluginCallback_WentOnline, 0},        {kPluginCallback_WentOffline, 0},
        {kPluginCallback_PanelDataChanged, 0},  {kPluginCallback_PanelDataChanged, 0},
        {kPluginCallback_PanelDataChanged, 0},  {kPluginCallback_SmartListsChanged, 0},
        {kPluginCallback_SmartListsChanged, 0}, {kPluginCallback_SmartListsChanged, 0},
        {kPluginCallback_LoggedOut, 0}};
    EXPECT_TRUE(Eventually([&] {
        const std::lock_guard guard(notes.notesLock);
        return notes.received.size() >= expected.size();
    }));
    EXPECT_EQ(mLibrary.UnregisterForNotifications(mLibrary.Facade(), Note), 0u);
    EXPECT_EQ(notes.received, expected);  // each once, though it was registered twice
    mWorld.RunForJson({"login", "somebody"});
    EXPECT_EQ(notes.received, expected);
}

TEST_F(RecoveryTest, TenThousandNotificationsArriveInOrder) {
    constexpr int kCount = 10'000;
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    for (int index = 0; index < kCount; ++index)
        ASSERT_EQ(mLibrary.SetGoogleWebFontsEnabled(mLibrary.Facade(), index % 2 == 0), 0u);
    mWorld.RunForJson({"logout"});
    ASSERT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedOut); }));
    mLibrary.UnregisterForNotifications(mLibrary.Facade(), Note);
    ASSERT_EQ(notes.received.size(), kCount + 1u);
    for (int index = 0; index < kCount; ++index)
        ASSERT_EQ(notes.received[static_cast<size_t>(index)],
                  Notes::Note(kPluginCallback_GoogleWebFontsEnabled, index % 2 == 0));
}

TEST_F(RecoveryTest, AGoodbyeIsNotifiedAndEachNewAgentIsHeard) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.KillAgent();
    mWorld.StartAgent();
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_PanelDataChanged); }));
    EXPECT_FALSE(notes.Has(kPluginCallback_AgentShutdown)) << "it was lost, and did not say goodbye";
    mWorld.StopAgent();
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_AgentShutdown); }));
    mWorld.StartAgent();
    EXPECT_TRUE(Eventually([this] {
        mWorld.RunForJson({"login", "somebody"});
        return notes.Has(kPluginCallback_LoggedIn);
    }));
    mLibrary.CleanUpOnShutdown();
    mLibrary.CleanUpOnShutdown();
}

void UnregisterItself(int32_t type, const void* data) {
    notes.Add(type, data);
    static const TestLibrary library;
    library.UnregisterForNotifications(library.Facade(), UnregisterItself);
}

TEST_F(RecoveryTest, ACallbackMayUnregisterItself) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), UnregisterItself), 0u);
    mWorld.RunForJson({"logout"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedOut); }));
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.RunForJson({"login", "somebody"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedIn); }));
    EXPECT_EQ(notes.received.size(), 2u);
}

TEST(ClientWithoutAgent, IsUnavailable) {
    TestWorld world;
    const TestLibrary library;
    bool isLoggedIn = false;
    EXPECT_EQ(library.GetIsLoggedIn(library.Facade(), &isLoggedIn), GIPCClient::kServiceUnavailable);
    EXPECT_EQ(library.RegisterForNotifications(library.Facade(), Note), GIPCClient::kServiceUnavailable);
}

}  // namespace
}  // namespace pellwick::test
