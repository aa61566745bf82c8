#include "CoreAgentInterface.h"

#include "FacadeTest.h"
#include "HostPatience.h"
#include "NotificationQueue.h"

using testing::HasSubstr;

namespace {

class CoreAgentInterfaceTest : public FacadeTest {
protected:
    CoreAgentInterfaceTest() {
        InstallAgent();
        library.calls.clear();
        library.isAgentRunning = false;  // once it is lost
    }
    bool AreServicesOn() const {
        return MarquellGlobals::ArePluginServicesEnabled() && MarquellGlobals::IsConnectedToCore();
    }

    CoreAgentInterface& agent = *fontManager.GetFontManager();
};

}  // namespace

TEST_F(CoreAgentInterfaceTest, OtherFailuresAreHandedOnAndNotRetried) {
    library.codes["DeactivateFonts"] = {GIPCClient::kReplyTimeout};
    EXPECT_EQ(agent.DeactivateFonts(nullptr, 0, nullptr), GIPCClient::kReplyTimeout);
    VPILoader::GetSharedInstance()->pfSaveDocumentFonts = nullptr;
    EXPECT_EQ(agent.SaveDocumentFonts("/a.ai", true, nullptr), CoreErrorCodes::kNotImplemented);
    library.permissions = {kPermission_ShowPostscriptReplacements};
    for (const char* question : {"GetIsLoggedIn", "GetAreSchemaVersionsInSync", "MotherMayI"})
        library.codes[question] = {CoreErrorCodes::kError};
    EXPECT_FALSE(agent.IsLoggedIn() || agent.AreSchemaVersionsInSync() ||
                 agent.canShowPostscriptReplacements());
    EXPECT_TRUE(agent.IsLoggedIn() && agent.canShowPostscriptReplacements());
    EXPECT_TRUE(processes.launchedCommandLines.empty());
    EXPECT_TRUE(AreServicesOn());
}

TEST_F(CoreAgentInterfaceTest, InitializingEnablesThePluginOrTellsWhyNot) {
    const std::tuple<ErrorCode, const char*, uint32_t> cases[] = {
        {0, "GZephyrinSdk::Initialize SUCCEEDED.\n", 0},
        {GZephyrinSdk::kVaultInUse, "error code = 33562632 (GZephyrinSdk::kVaultInUse).\n",
         message_boxes::kVaultInUse.titleID},
        {GZephyrinSdk::kInvalidVault, "(GZephyrinSdk::kInvalidVault).\n",
         message_boxes::kInvalidVault.titleID},
        {CoreErrorCodes::kError, "(?\?\?).\n", message_boxes::kAgentFailedToInitialize.titleID},
        {GZephyrinConfig::kAgentNotFound, "Core Agent process not found\n",
         message_boxes::kAgentNotRunning.titleID},
        {GZephyrinConfig::kAgentRunningInWrongMode, "Core Agent process running in wrong mode\n", 0}};
    library.isAgentRunning = true;
    for (const auto& [code, line, box] : cases) {
        framework.shownBoxes.clear();
        trace.Clear();
        MarquellGlobals::SetPluginServicesEnabled(code != 0);
        library.codes["InitAppInstance"] = {code};
        agent.InitializeCoreAgent();
        EXPECT_EQ(AreServicesOn(), code == 0) << line;
        EXPECT_EQ(framework.shownBoxes.empty() ? 0 : framework.shownBoxes[0].first, box) << line;
        EXPECT_THAT(trace.Text(), HasSubstr(line));
        MarquellGlobals::SetConnectedToCore(true);
    }
    EXPECT_THAT(library.given, testing::Contains("InitAppInstance('Illustrator2025', '')"));
    library.isAgentRunning = false;
    agent.InitializeCoreAgent();
    EXPECT_EQ(framework.shownBoxes.back(), std::pair(600u, 601u));
    EXPECT_FALSE(AreServicesOn());
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

TEST_F(CoreAgentInterfaceTest, AnAgentThatSomebodyElseStartsIsListenedTo) {
    processes.launchErrors = {2};
    int asked = 0;
    library.answer = [&](const std::string& called) {
        if (called == "GetIsCoreAgentProcessRunning")
            library.isAgentRunning = ++asked > 1;
        return CoreErrorCodes::kSuccess;
    };
    library.codes["GetIsLoggedIn"] = {GAgentIF::kShutdown};
    EXPECT_TRUE(agent.IsLoggedIn());
    EXPECT_EQ(library.CallsOf("RegisterForNotifications"), 1);
    EXPECT_TRUE(framework.shownBoxes.empty());
    library.answer = nullptr;
}

TEST_F(CoreAgentInterfaceTest, AfterAStartTheHostWaitsLonger) {
    FakeClock clock;
    const HostPatience::Call call;
    library.answer = [&](const std::string& called) {
        clock.ticks += called == "ResetPluginFacadeInstance" ? 3000 : 0;
        return CoreErrorCodes::kSuccess;
    };
    library.codes["GetIsLoggedIn"] = {GAgentIF::kShutdown};
    EXPECT_TRUE(agent.IsLoggedIn());
    EXPECT_TRUE(agent.IsLoggedIn());
    EXPECT_EQ(library.CallsOf("GetIsLoggedIn"), 3);
    clock.ticks += 2000;
    EXPECT_FALSE(agent.IsLoggedIn());
    library.answer = nullptr;
}

TEST_F(CoreAgentInterfaceTest, WhoGaveUpTriesAgainWhenTheUserDoesSomething) {
    processes.launchErrors = {2};
    const auto launches = [&] {
        static_cast<void>(agent.DeactivateFonts(nullptr, 0, nullptr));
        return processes.launchedCommandLines.size();
    };
    library.answer = [](const std::string& called) {
        return called == "DeactivateFonts" ? ErrorCode{GAgentIF::kShutdown} : CoreErrorCodes::kSuccess;
    };
    EXPECT_EQ(launches(), 1u);
    EXPECT_EQ(launches(), 1u);
    fontManager.OnUserAction();
    processes.launchErrors = {2};
    EXPECT_EQ(launches(), 2u);
    library.answer = nullptr;
    library.isAgentRunning = true;
    library.isLoggedIn = false;  // meanwhile
    fontManager.OnUserAction();
    EXPECT_TRUE(MarquellGlobals::IsConnectedToCore());
    EXPECT_FALSE(MarquellGlobals::IsLoggedIn() || MarquellGlobals::ArePluginServicesEnabled());
}

TEST_F(CoreAgentInterfaceTest, FontsAreCollectedInAtMostTwentyParts) {
    const auto fonts = cf::MutableArray();
    for (int id = 1; id <= 45; ++id)
        cf::Append(fonts, id);
    int steps = 0, last = 0;
    const auto progress = [&](int done, int) { return ++steps, last = done, true; };
    const auto collect = [&] {
        return agent.CollectFontsUsedByCurrentDocument("/d.ai", "/out", fonts.get(), progress);
    };
    library.codes["ExportFonts"] = {GZephyrinExportFonts::kFontUnavailableToExport};
    EXPECT_EQ(collect(), GZephyrinExportFonts::kFontUnavailableToExport);
    EXPECT_EQ(library.CallsOf("ExportFonts"), 15);
    EXPECT_EQ(std::pair(steps, last), std::pair(16, 45));
    EXPECT_FALSE(agent.CanExportFromWorkgroup(fonts.get())) << "the agent says nothing of it";
    CFArrayRemoveAllValues(fonts.get());
    VPILoader::GetSharedInstance()->pfOSCreateDirectory = nullptr;
    EXPECT_EQ(collect(), CoreErrorCodes::kNotImplemented);
}

TEST_F(CoreAgentInterfaceTest, WhatWasActivatedIsLetGoByAnAgentThatIsStartedForIt) {
    for (const bool activates : {false, true}) {
        if (activates)
            static_cast<void>(agent.ActivateDocumentFontsByPath("/d.ai", {}));
        processes.launchedCommandLines.clear();
        agent.CleanUpOnShutdown();
        EXPECT_EQ(processes.launchedCommandLines.size(), activates ? 1u : 0u);
    }
}
