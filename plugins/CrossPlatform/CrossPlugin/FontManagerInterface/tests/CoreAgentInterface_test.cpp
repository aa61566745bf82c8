#include "CoreAgentInterface.h"

#include <gmock/gmock.h>

#include "CoreAgentInterfaceTest.h"
#include "NotificationQueue.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST_F(CoreAgentInterfaceTest, AFacadeIsFetchedForEveryCall) {
    EXPECT_TRUE(agent.IsLoggedIn());
    EXPECT_TRUE(agent.IsRunningStandalone());
    EXPECT_THAT(library.calls, ElementsAre("GetPluginFacadeInstance", "GetIsLoggedIn",
                                           "GetPluginFacadeInstance", "GetRunningStandalone"));
}

TEST_F(CoreAgentInterfaceTest, TheFirstLossIsHealedSilently) {
    for (const ErrorCode gone : {GAgentIF::kShutdown, GIPCClient::kServiceUnavailable}) {
        library.codes["GetIsLoggedIn"] = {gone};
        EXPECT_TRUE(agent.IsLoggedIn());
    }
    EXPECT_EQ(Launches(), 2);
    EXPECT_EQ(library.CallsOf("ResetPluginFacadeInstance"), 2);
    EXPECT_THAT(framework.shownBoxes, IsEmpty());
    EXPECT_TRUE(AreServicesOn());
    EXPECT_THAT(trace.Text(),
                HasSubstr("Agent not running:  error code = GAgentIF_kShutdown\n"
                          "Agent not running, automatically relaunching agent and retrying command\n"
                          "Entering CoreAgentInterface::RelaunchZephyrinAgent\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("Agent not running:  error code = GIPCClient_kServiceUnavailable\n"));
}

TEST_F(CoreAgentInterfaceTest, ALossWhileTheFacadeIsFetchedIsHealedToo) {
    library.codes["GetPluginFacadeInstance"] = {GIPCClient::kServiceUnavailable};
    EXPECT_TRUE(agent.IsLoggedIn());
    EXPECT_EQ(Launches(), 1);
}

TEST_F(CoreAgentInterfaceTest, TheSecondLossDisablesAndTellsBeforeTheNextRelaunch) {
    library.codes["GetIsLoggedIn"] = {GAgentIF::kShutdown, GAgentIF::kShutdown};
    EXPECT_TRUE(agent.IsLoggedIn());
    EXPECT_EQ(Launches(), 2);
    EXPECT_THAT(framework.shownBoxes, ElementsAre(std::pair(600u, 601u)));
    EXPECT_FALSE(AreServicesOn());
    EXPECT_THAT(trace.Text(), HasSubstr("SetConnectedToCore(connected=0)\n"
                                        "Agent not running, relaunching agent and retrying command\n"));
}

TEST_F(CoreAgentInterfaceTest, AFailedRelaunchAsksTheUserUntilTheAnswerIsNo) {
    processes.launchError.code = 13;
    framework.answers = {1, 1, 2};
    library.codes["GetIsLoggedIn"] = {GAgentIF::kShutdown};
    EXPECT_FALSE(agent.IsLoggedIn()) << "the default answer";
    EXPECT_EQ(Launches(), 3);
    EXPECT_THAT(framework.shownBoxes,
                ElementsAre(std::pair(604u, 605u), std::pair(604u, 605u), std::pair(604u, 605u)));
    EXPECT_EQ(library.CallsOf("GetIsLoggedIn"), 1);
    EXPECT_EQ(library.CallsOf("ResetPluginFacadeInstance"), 0);
    EXPECT_FALSE(AreServicesOn());
    EXPECT_THAT(
        trace.Text(),
        HasSubstr("Agent not running, done attempting to relaunch.  Disabling plugin functionality\n"));
    EXPECT_THAT(trace.Text(),
                HasSubstr("Exiting CoreAgentInterface::LaunchZephyrinAgentIfNeeded, returning 2\n"));
}

TEST_F(CoreAgentInterfaceTest, OtherFailuresAreNotRetried) {
    library.codes["DeactivateFonts"] = {GIPCClient::kReplyTimeout};
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    EXPECT_EQ(agent.DeactivateFonts(fonts.get(), 0, nullptr), GIPCClient::kReplyTimeout);
    EXPECT_EQ(Launches(), 0);
    EXPECT_TRUE(AreServicesOn());
}

TEST_F(CoreAgentInterfaceTest, AFunctionThatIsNotThereIsNotCalled) {
    VPILoader::GetSharedInstance()->pfSaveDocumentFonts = nullptr;
    EXPECT_EQ(agent.SaveDocumentFonts("/a.ai", true, nullptr), CoreErrorCodes::kNotImplemented);
}

TEST_F(CoreAgentInterfaceTest, ActivationStatesComeBackByDatabaseID) {
    library.activationStates = {{7, true}, {8, false}};
    PluginActivationStates states;
    EXPECT_EQ(agent.GetClientFontActivationStates({7, 8, 9}, states), 0u);
    EXPECT_EQ(states, (PluginActivationStates{{7, true}, {8, false}}));
}

TEST_F(CoreAgentInterfaceTest, InitializingEnablesThePluginOrTellsWhyNot) {
    MarquellGlobals::SetPluginServicesEnabled(false);
    library.isAgentRunning = true;
    agent.InitializeCoreAgent();
    EXPECT_TRUE(AreServicesOn());
    EXPECT_THAT(trace.Text(), HasSubstr("GZephyrinSdk::Initialize SUCCEEDED.\n"));

    library.codes["InitAppInstance"] = {GZephyrinSdk::kVaultInUse};
    agent.InitializeCoreAgent();
    EXPECT_FALSE(AreServicesOn());
    EXPECT_THAT(
        trace.Text(),
        HasSubstr("GZephyrinSdk::Initialize FAILED, error code = 33562632 (GZephyrinSdk::kVaultInUse).\n"));
    EXPECT_THAT(trace.Text(),
                HasSubstr("Disabling plug-in services in CoreAgentInterface::InitializeCoreAgent() "
                          "because of SDK initialization error 33562632.\n"));
    library.codes["InitAppInstance"] = {GZephyrinSdk::kInvalidVault, CoreErrorCodes::kError,
                                        GZephyrinConfig::kAgentNotFound};
    for (int attempt = 0; attempt < 3; ++attempt)
        agent.InitializeCoreAgent();
    EXPECT_THAT(trace.Text(), HasSubstr("error code = 16785416 (GZephyrinSdk::kInvalidVault).\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("error code = 16777216 (?\?\?).\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("Core Agent process not found\n"));
    EXPECT_EQ(framework.shownBoxes.size(), 4u);
    library.codes["InitAppInstance"] = {CoreErrorCodes::kSuccess, GZephyrinConfig::kAgentRunningInWrongMode};
    agent.InitializeCoreAgent();
    EXPECT_TRUE(AreServicesOn());
    agent.InitializeCoreAgent();
    EXPECT_FALSE(AreServicesOn());
    EXPECT_THAT(trace.Text(), HasSubstr("Core Agent process running in wrong mode\n"));
    EXPECT_EQ(framework.shownBoxes.size(), 4u);
    trace.Clear();
    library.isAgentRunning = false;
    agent.InitializeCoreAgent();
    EXPECT_THAT(trace.Text(),
                HasSubstr("Core Agent process not running; rc=0, isRunning=0, sizeof(isRunning)=1\n"));
    EXPECT_EQ(framework.shownBoxes.back(), std::pair(600u, 601u));
}

TEST_F(CoreAgentInterfaceTest, TheEndOfAnAgentThatWasReplacedIsNoNewsAnyMore) {
    NotificationQueue& queue = NotificationQueue::GetSharedInstance();
    queue.Open();
    CoreAgentNotificationCallback(5, nullptr);
    CoreAgentNotificationCallback(6, nullptr);  // the agent says goodbye
    library.codes["GetIsLoggedIn"] = {GAgentIF::kShutdown};
    EXPECT_TRUE(agent.IsLoggedIn());
    EXPECT_EQ(library.CallsOf("RegisterForNotifications"), 1) << "the new one is listened to";
    ASSERT_EQ(queue.Count(), 1u);
    EXPECT_EQ(queue.TakeNext()->name, "kPluginNotification_WorkgroupsChanged");
    queue.Close();
}
