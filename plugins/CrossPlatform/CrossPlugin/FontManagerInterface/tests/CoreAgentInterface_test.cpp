#include "CoreAgentInterface.h"

#include "FacadeTest.h"
#include "NotificationQueue.h"

using testing::ElementsAre, testing::HasSubstr;

namespace {

class CoreAgentInterfaceTest : public FacadeTest {
protected:
    CoreAgentInterfaceTest() {
        InstallAgent();
        library.calls.clear();
        library.given.clear();
        library.isAgentRunning = false;  // once it is lost
    }
    bool AreServicesOn() const {
        return MarquellGlobals::ArePluginServicesEnabled() && MarquellGlobals::IsConnectedToCore();
    }

    CoreAgentInterface& agent = *fontManager.GetFontManager();
};

}  // namespace

TEST_F(CoreAgentInterfaceTest, EachOperationHandsOverWhatItWasGiven) {
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    const CFRef<CFMutableArrayRef> answer = cf::MutableArray();
    const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
    cf::Set(font, kGS_DatabaseIDKey, 9);
    cf::Append(fonts, font);
    cf::Append(fonts, "no record");
    library.fonts = {{7, "Seven"}};
    library.fingerprints = {{9, "<xml/>"}};
    library.activationStates = {{7, true}, {8, false}};
    const CFRef<CFMutableArrayRef> reported = cf::MutableArray();
    const DocumentFontLists lists{fonts.get(), answer.get(), reported.get(), nullptr};
    std::string xml;
    int32_t setID = 0;
    PluginActivationStates states;
    library.canExport = true;
    EXPECT_EQ(agent.ActivateDocumentFontsByPath("/a.ai", lists), 0u);
    EXPECT_EQ(agent.ActivateFontByID(font.get(), "A", answer.get()), 0u);
    EXPECT_EQ(agent.ActivateFontsByID(fonts.get(), "B", answer.get()), 0u);
    EXPECT_EQ(cf::Count(answer.get()), 3);
    EXPECT_EQ(cf::Count(reported.get()), 1);
    EXPECT_EQ(agent.DeactivateFonts(fonts.get(), 5, nullptr), 0u);
    EXPECT_EQ(agent.GetClientFontActivationStates({7, 8, 9}, states), 0u);
    EXPECT_EQ(states, (PluginActivationStates{{7, true}, {8, false}}));
    EXPECT_EQ(agent.SaveDocumentFonts("/b.ai", true, cf::String("usage").get()), 0u);
    EXPECT_EQ(agent.CreateTopLevelSet("Set", 3, setID), 0u);
    EXPECT_EQ(agent.AddFontsToSet(fonts.get(), setID), 0u);
    EXPECT_EQ(agent.GetFontsByPostscriptName("Name", 4, answer.get()), 0u);
    EXPECT_EQ(agent.GetGlyphscanInfo(9, xml), 0u);
    EXPECT_EQ(xml, "<xml/>");
    EXPECT_EQ(agent.GetFontConflicts({7, 8}, answer.get()), 0u);
    EXPECT_TRUE(agent.CanExportFromWorkgroup(fonts.get()));
    EXPECT_FALSE(agent.canShowPostscriptReplacements());
    EXPECT_FALSE(agent.AreSchemaVersionsInSync());
    std::erase_if(library.given, [](const std::string& call) {
        return call == "GetPluginFacadeInstance()" || call == "InitThreadInstance()" ||
               call.starts_with("Log(");
    });
    EXPECT_THAT(library.given,
                ElementsAre("ActivateDocumentFontsByPath('/a.ai', [-1,-1])",
                            "ActivateFonts([-1], 'A', 'ActivateLocally')",
                            "ActivateFonts([-1,-1], 'B', 'ActivateLocally')", "DeactivateFonts([-1,-1], 5)",
                            "GetClientFontActivationStates([7,8,9])",
                            "SaveDocumentFonts('/b.ai', 1, 'usage')", "CreateTopLevelSet('Set', 3)",
                            "AddFontsToSets([9], [1])", "GetFontsByPostscriptName('Name', 4)",
                            "GetGlyphscanXMPData(9)", "GetFontConflicts([7,8])", "CanExportFonts([-1,-1])",
                            "MotherMayI(" + std::to_string(kPermission_ShowPostscriptReplacements) + ")",
                            "GetAreSchemaVersionsInSync()"));
    EXPECT_EQ(library.CallsOf("GetPluginFacadeInstance"), 14) << "a facade for every call";
}

TEST_F(CoreAgentInterfaceTest, OtherFailuresAreHandedOnAndNotRetried) {
    library.codes["DeactivateFonts"] = {GIPCClient::kReplyTimeout};
    EXPECT_EQ(agent.DeactivateFonts(nullptr, 0, nullptr), GIPCClient::kReplyTimeout);
    VPILoader::GetSharedInstance()->pfSaveDocumentFonts = nullptr;
    EXPECT_EQ(agent.SaveDocumentFonts("/a.ai", true, nullptr), CoreErrorCodes::kNotImplemented);
    for (const char* question : {"GetIsLoggedIn", "GetAreSchemaVersionsInSync"})
        library.codes[question] = {CoreErrorCodes::kError};
    EXPECT_FALSE(agent.IsLoggedIn() || agent.AreSchemaVersionsInSync());
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
