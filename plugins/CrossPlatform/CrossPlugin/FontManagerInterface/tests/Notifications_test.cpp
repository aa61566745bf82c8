#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <regex>
#include <thread>

#include "FacadeTest.h"
#include "NotificationProcessor.h"
#include "NotificationQueue.h"
#include "TemporaryFolder.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// Keeps what the panels would get.
class FakeReceiver : public NotificationReceiver {
public:
    ErrorCode Receive(const PluginNotification& notification) override {
        names.emplace_back(notification.name);
        payloads.push_back(notification.payload);
        return code;
    }
    std::vector<std::string> names;
    std::vector<CFRef<CFDictionaryRef>> payloads;
    ErrorCode code = 0;
};

int refreshes = 0;

class CountingHost : public HostAppInterface {
public:
    void ShowProgressHint(const char*) override {}
    void Refresh(bool, bool) override {}
    void OnWorkgroupsChanged() override { ++refreshes; }
    void SendKeyPress(const KeyPress&) override {}
};

class NotificationsTest : public FacadeTest {
protected:
    NotificationsTest() {
        MarquellGlobals::SetSharedHostAppInterface(std::make_unique<CountingHost>());
        fontManager.InitializeDefaultWorkgroup();
        NotificationProcessor::GetSharedInstance().SetReceiver(&receiver);
        refreshes = 0;
        trace.Clear();
    }
    ~NotificationsTest() override { NotificationProcessor::GetSharedInstance().SetReceiver(nullptr); }
    void Report(PluginNotificationType type, const void* data = nullptr) {
        CoreAgentNotificationCallback(type, data);
    }
    void ReportFont(PluginNotificationType type, uint32_t fontID) { Report(type, &fontID); }
    void ReportImages(const std::vector<std::string>& fontIDs, const char* image) {
        const CFRef<CFMutableDictionaryRef> images = cf::MutableDictionary();
        for (const std::string& fontID : fontIDs)
            cf::Set(images, fontID, image);
        Report(kPluginCallback_PreviewPNGsRendered, images.get());
    }
    std::string ImageIn(size_t index, const std::string& fontID) {
        return cf::GetString(
            cf::GetDictionary(receiver.payloads.at(index).get(), kPluginNotification_FontPNGs), fontID);
    }
    /// What the panels got: names without what all begin with, and the fonts.
    std::vector<std::string> Told() {
        std::vector<std::string> told;
        for (size_t index = 0; index < receiver.names.size(); ++index) {
            const auto fontID =
                cf::GetInt64(receiver.payloads[index].get(), kPluginNotification_FontActivation_Font_ID);
            told.push_back(receiver.names[index].substr(receiver.names[index].find('_') + 1) +
                           (fontID ? " " + std::to_string(*fontID) : ""));
        }
        return told;
    }
    /// Members in the order of their keys.
    static std::string TextOf(CFDictionaryRef payload) {
        std::string text;
        for (const std::string key : {"isEnabled", "isLoggedIn", "isOnline", "numFonts",
                                      kPluginNotification_FontActivation_Font_ID}) {
            if (const auto value = cf::GetInt64(payload, key))
                text += key + "=" + std::to_string(*value) + " ";
        }
        if (const auto images = cf::GetDictionary(payload, kPluginNotification_FontPNGs))
            text += kPluginNotification_FontPNGs + (":" + TextOf(images));
        return text;
    }
    ErrorCode Process() { return fontManager.GetFontManager()->ProcessNotifications(); }

    FakeReceiver receiver;
};

}  // namespace

TEST_F(NotificationsTest, TheCallbackOnlyRecords) {
    EXPECT_EQ(library.CallsOf("RegisterForNotifications"), 1);
    ReportFont(kPluginCallback_FontActivated, 12);
    EXPECT_TRUE(std::regex_match(trace.Text(), std::regex("CoreAgentNotificationCallback\\(callbackType=7, "
                                                          "pCallbackData=0x[0-9a-f]{8}\\) returning 0\n")))
        << trace.Text();
    EXPECT_THAT(Told(), ElementsAre());
    EXPECT_EQ(Process(), 0u);
    EXPECT_EQ(Process(), 0u);
    EXPECT_THAT(Told(), ElementsAre("FontActivated 12")) << "processed once";
    EXPECT_THAT(trace.Text(), HasSubstr(">>> notification: font 12 activated\n"));
}

TEST_F(NotificationsTest, EveryReportHasItsNameAndPayload) {
    // As the font manager's contract numbers them: name, and what its data become in the payload.
    const std::pair<const char*, const char*> kReports[] = {
        {"OnlineStateChanged", "isOnline=1 "},
        {"OnlineStateChanged", "isOnline=0 "},
        {"LoggedInStateChanged", "isLoggedIn=1 numFonts=3 "},
        {"LoggedInStateChanged", "isLoggedIn=0 "},
        {"PanelDataChanged", ""},
        {"WorkgroupsChanged", ""},
        {"AgentShutdown", ""},
        {"FontActivated", "kPluginNotification_FontActivation_Font_ID=4000000000 "},
        {"FontDeactivated", "kPluginNotification_FontActivation_Font_ID=4000000000 "},
        {"FontMissing", "kPluginNotification_FontActivation_Font_ID=4000000000 "},
        {"DesignActivationNonCompliant", "kPluginNotification_FontActivation_Font_ID=4000000000 "},
        {"UserPermissionsChanged", ""},
        {"TaskStarted", "numFonts=3 "},
        {"TaskProgress", "numFonts=3 "},
        {"TaskFinished", "numFonts=3 "},
        {"TaskError", "numFonts=3 "},
        {"BulkReplicationProgress", "numFonts=3 "},
        {"BulkReplicationStopped", ""},
        {"IncrementalReplicationProgress", "numFonts=3 "},
        {"IncrementalReplicationStopped", ""},
        {"GoogleReplicationProgress", "numFonts=3 "},
        {"GoogleReplicationStopped", ""},
        {"FontServerReplicationProgress", "numFonts=3 "},
        {"FontServerReplicationStopped", ""},
        {"GoogleWebFontsEnabled", "isEnabled=1 "},
        {"PreviewPNGsRendered", "kPluginNotification_FontPNGs:numFonts=3 "},
        {"SmartListsChanged", ""},
        {"OfflineDownloadFinished", ""},
        {"Enabled", "isEnabled=1 "}};
    const uint32_t fontID = 4000000000;
    const bool isEnabled = true;
    NotificationQueue& queue = NotificationQueue::GetSharedInstance();
    int32_t type = 0;
    for (const auto& [name, payload] : kReports) {
        const CFRef<CFMutableDictionaryRef> details = cf::MutableDictionary();
        cf::Set(details, "numFonts", 3);
        const std::string_view text = payload;
        const void* data = text.find("Font_ID") != text.npos     ? static_cast<const void*>(&fontID)
                           : text.find("isEnabled") != text.npos ? static_cast<const void*>(&isEnabled)
                           : text.find("numFonts") != text.npos  ? details.get()
                                                                 : nullptr;
        CoreAgentNotificationCallback(type, nullptr);
        EXPECT_TRUE(queue.TakeNext()->payload) << name << " without data";
        CoreAgentNotificationCallback(type++, data);
        cf::Set(details, "numFonts", 4);  // the payload outlives the call
        const auto posted = queue.TakeNext();
        ASSERT_TRUE(posted) << name;
        EXPECT_EQ(posted->name, "kPluginNotification_" + std::string(name));
        EXPECT_EQ(TextOf(posted->payload.get()), payload) << name;
    }
    EXPECT_EQ(type, kPluginCallback_Enabled + 1);
    for (const int32_t unknown : {-1, type, INT32_MAX, INT32_MIN})
        CoreAgentNotificationCallback(unknown, nullptr);
    EXPECT_EQ(queue.Count(), 0u);
}

TEST_F(NotificationsTest, ALogoutSwitchesThePluginOffAndALoginOnAgain) {
    Report(kPluginCallback_LoggedOut);
    Process();
    EXPECT_FALSE(MarquellGlobals::IsLoggedIn());
    EXPECT_FALSE(MarquellGlobals::ArePluginServicesEnabled());
    EXPECT_TRUE(MarquellGlobals::IsConnectedToCore());
    EXPECT_THAT(framework.shownBoxes, ElementsAre(std::pair(609u, 611u)));
    EXPECT_THAT(trace.Text(), HasSubstr(">>> notification: Logged-in state changed to 'false'\n"));
    Report(kPluginCallback_LoggedIn);
    Process();
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional());
    EXPECT_EQ(framework.shownBoxes.size(), 1u);
    EXPECT_EQ(refreshes, 2);
    EXPECT_THAT(receiver.names, testing::Each("kPluginNotification_LoggedInStateChanged"));
}

TEST_F(NotificationsTest, AWorkgroupThatIsGoneIsReplaced) {
    library.codes["GetAllWorkgroupsForUser"] = {GIPCClient::kReplyTimeout};
    Report(kPluginCallback_WorkgroupsChanged);
    Process();
    EXPECT_EQ(fontManager.GetDefaultWorkgroupID(), 7) << "kept while it cannot be told";
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional());
    library.workgroups = {{9, kWorkgroupType_FontLibrary, "Other"}};
    Report(kPluginCallback_WorkgroupsChanged);
    Process();
    EXPECT_EQ(fontManager.GetDefaultWorkgroupID(), 9);
    EXPECT_EQ(refreshes, 2);
    EXPECT_TRUE(receiver.names.empty());
    EXPECT_THAT(trace.Text(), HasSubstr(">>> notification: Workgroups changed\n"));
}

TEST_F(NotificationsTest, TheEndOfTheAgentIsToldUnlessAnotherOneHasTakenItsPlace) {
    Report(kPluginCallback_AgentShutdown);
    Process();
    EXPECT_TRUE(MarquellGlobals::ArePluginServicesEnabled());
    EXPECT_TRUE(framework.shownBoxes.empty());
    library.isAgentRunning = false;
    Report(kPluginCallback_AgentShutdown);
    Process();
    EXPECT_FALSE(MarquellGlobals::ArePluginServicesEnabled());
    EXPECT_FALSE(MarquellGlobals::IsConnectedToCore());
    EXPECT_THAT(framework.shownBoxes, ElementsAre(std::pair(600u, 601u)));
    EXPECT_THAT(trace.Text(),
                HasSubstr(">>> notification: Agent shut down\nDisabling plugin functionality\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("Informing user that plugin functionality will be disabled...\n"));
}

TEST_F(NotificationsTest, ReplicationIsRemembered) {
    Report(kPluginCallback_BulkReplicationProgress);
    Report(kPluginCallback_IncrementalReplicationProgress);
    Process();
    EXPECT_TRUE(MarquellGlobals::IsBulkReplicationRunning());
    EXPECT_TRUE(MarquellGlobals::IsIncrementalReplicationRunning());
    EXPECT_EQ(refreshes, 0);
    Report(kPluginCallback_BulkReplicationStopped);
    Report(kPluginCallback_IncrementalReplicationStopped);
    Process();
    EXPECT_FALSE(MarquellGlobals::IsBulkReplicationRunning());
    EXPECT_FALSE(MarquellGlobals::IsIncrementalReplicationRunning());
    EXPECT_EQ(refreshes, 2);
    EXPECT_EQ(receiver.names.size(), 4u);
}

TEST_F(NotificationsTest, AFailingPanelDoesNotHoldTheOthersUp) {
    receiver.code = CoreErrorCodes::kNotFound;
    Report(kPluginCallback_SmartListsChanged);
    Report(kPluginCallback_WentOffline);
    EXPECT_EQ(Process(), CoreErrorCodes::kNotFound);
    EXPECT_EQ(receiver.names.size(), 2u);
    EXPECT_THAT(trace.Text(), HasSubstr(">>> notification: Online state changed to 'false'\n"));
}

TEST_F(NotificationsTest, AHostThatIdlesBehindADialogDoesNotTurnTheirOrderRound) {
    framework.whileDialogShows = [this] {
        EXPECT_EQ(Process(), 0u);
        EXPECT_TRUE(receiver.names.empty()) << "the one that shows the dialog comes first";
    };
    Report(kPluginCallback_LoggedOut);
    Report(kPluginCallback_SmartListsChanged);
    Process();
    EXPECT_THAT(receiver.names, ElementsAre("kPluginNotification_LoggedInStateChanged",
                                            "kPluginNotification_SmartListsChanged"));
}

TEST_F(NotificationsTest, AReactionThatBringsTheAgentBackUndoesItsEnd) {
    TemporaryFolder folder;
    const std::string agentPath = folder.Write("agent/Pellwick", "");
    folders.paths[platform::KnownFolder::kLocalApplicationData] = folder / ".";
    folder.Write("Vantorix/com.vantorix.Pellwick-LaunchInfo.conf", "pellwick.path=" + agentPath + "\n");
    Report(kPluginCallback_WorkgroupsChanged);
    Report(kPluginCallback_AgentShutdown);
    library.codes["GetAllWorkgroupsForUser"] = {GAgentIF::kShutdown};
    library.isAgentRunning = false;
    Process();
    EXPECT_EQ(processes.launchedCommandLines.size(), 1u);
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional());
    EXPECT_TRUE(framework.shownBoxes.empty());
}

TEST_F(NotificationsTest, BehindTheQuestionWhetherToStartTheAgentNothingIsProcessedOrAskedAgain) {
    library.codes["GetIsLoggedIn"] = {GAgentIF::kShutdown};
    library.isAgentRunning = false;
    Report(kPluginCallback_AgentShutdown);
    framework.whileDialogShows = [this] {
        library.codes["GetRunningStandalone"] = {GAgentIF::kShutdown};
        EXPECT_EQ(Process(), 0u);
        EXPECT_FALSE(fontManager.GetFontManager()->IsRunningStandalone());
    };
    EXPECT_FALSE(fontManager.IsLoggedIn()) << "there is no agent to start";
    EXPECT_EQ(framework.shownBoxes.size(), 1u) << "one question";
}

TEST_F(NotificationsTest, WithoutAFontManagerNothingIsTakenAndNothingOfTheLastOneStays) {
    ReportFont(kPluginCallback_FontActivated, 1);
    ReportImages({"1"}, "old");
    fontManager.OnHostAppShuttingDown();
    trace.Clear();
    Report(kPluginCallback_SmartListsChanged);
    EXPECT_THAT(trace.Text(),
                testing::StartsWith("WARNING:  CoreAgentInterface::GetFontManager() returned NULL.\n"));
    NotificationQueue& queue = NotificationQueue::GetSharedInstance();
    EXPECT_EQ(queue.Count(), 0u);
    queue.Open();
    ReportFont(kPluginCallback_FontActivated, 1);
    ReportImages({"2"}, "new");
    NotificationProcessor::GetSharedInstance().ProcessNotifications();
    EXPECT_THAT(Told(), ElementsAre("FontActivated 1", "PreviewPNGsRendered"));
    EXPECT_EQ(ImageIn(1, "1") + ImageIn(1, "2"), "new");
    queue.Close();
}

TEST_F(NotificationsTest, NewsOfTheSameThingIsToldOnceAndAsItIsNow) {
    ReportFont(kPluginCallback_FontActivated, 1);
    ReportFont(kPluginCallback_FontMissing, 1);
    ReportFont(kPluginCallback_FontActivated, 2);
    ReportFont(kPluginCallback_DesignActivationNonCompliant, 1);
    ReportFont(kPluginCallback_FontDeactivated, 1);
    Report(kPluginCallback_WentOnline);
    ReportFont(kPluginCallback_FontMissing, 1);
    Report(kPluginCallback_BulkReplicationProgress);
    Report(kPluginCallback_TaskStarted);
    Report(kPluginCallback_BulkReplicationStopped);
    Report(kPluginCallback_TaskFinished);
    Report(kPluginCallback_WentOffline);
    Report(kPluginCallback_BulkReplicationProgress);
    Report(kPluginCallback_BulkReplicationStopped);
    Process();
    EXPECT_THAT(Told(), ElementsAre("FontActivated 2", "DesignActivationNonCompliant 1", "FontDeactivated 1",
                                    "FontMissing 1", "TaskStarted", "TaskFinished", "OnlineStateChanged",
                                    "BulkReplicationProgress", "BulkReplicationStopped"));
    EXPECT_EQ(cf::GetBool(receiver.payloads[6].get(), "isOnline"), false);
    EXPECT_FALSE(MarquellGlobals::IsBulkReplicationRunning());
}

TEST_F(NotificationsTest, ImagesOfFontsAreJoined) {
    ReportImages({"1", "2"}, "old");
    Report(kPluginCallback_SmartListsChanged);
    ReportImages({"2", "3"}, "new");
    const auto waiting = NotificationQueue::GetSharedInstance().Count();
    Process();
    ReportImages({"4"}, "new");
    Process();
    EXPECT_EQ(waiting, 2u);
    EXPECT_THAT(Told(), ElementsAre("SmartListsChanged", "PreviewPNGsRendered", "PreviewPNGsRendered"));
    EXPECT_EQ(ImageIn(1, "1") + ImageIn(1, "2") + ImageIn(1, "3") + ImageIn(1, "4"), "oldnewnew");
    EXPECT_EQ(ImageIn(2, "3") + ImageIn(2, "4"), "new") << "what was told is not told again";
}

TEST_F(NotificationsTest, OfMoreFontsThanWaitPanelsReadTheirDataAnew) {
    constexpr auto kMost = static_cast<uint32_t>(NotificationQueue::kMostFonts);
    const NotificationQueue& queue = NotificationQueue::GetSharedInstance();
    for (const auto type : {kPluginCallback_FontActivated, kPluginCallback_FontMissing}) {
        for (uint32_t fontID = 1; fontID <= kMost; ++fontID)
            ReportFont(type, fontID);
    }
    ReportFont(kPluginCallback_FontDeactivated, 1);
    EXPECT_EQ(queue.Count(), 2 * kMost) << "as many as may wait";
    ReportFont(kPluginCallback_FontDeactivated, kMost + 1);
    EXPECT_EQ(queue.Count(), kMost + 1) << "the data show what is active, not what is missing";
    ReportFont(kPluginCallback_FontMissing, kMost + 1);
    ReportFont(kPluginCallback_FontActivated, 7);
    EXPECT_EQ(queue.Count(), kMost + 2);
    Process();
    const std::vector<std::string> told = Told();
    EXPECT_EQ(told[kMost - 1], "FontMissing " + std::to_string(kMost));
    EXPECT_THAT(std::vector(told.end() - 2, told.end()), ElementsAre("PanelDataChanged", "FontActivated 7"));
}

TEST_F(NotificationsTest, OfMoreImagesThanWaitPanelsReadTheirDataAnew) {
    std::vector<std::string> fontIDs(NotificationQueue::kMostImages - 1);
    std::generate(fontIDs.begin(), fontIDs.end(), [next = 0]() mutable { return std::to_string(++next); });
    ReportImages(fontIDs, "x");
    ReportImages({"last"}, "y");
    ReportImages({"one more"}, "z");
    Process();
    EXPECT_THAT(Told(), ElementsAre("PreviewPNGsRendered", "PanelDataChanged"));
    EXPECT_EQ(ImageIn(0, fontIDs.back()) + ImageIn(0, "last") + ImageIn(0, "one more"), "xy");
}

TEST_F(NotificationsTest, UnderAFloodFromAnotherThreadTheLastWordOnEachFontArrives) {
    constexpr uint32_t kFonts = 1'000;
    std::atomic<bool> isDone = false;
    std::thread agent([&] {
        for (uint32_t round = 0; round < 21; ++round) {
            for (uint32_t fontID = 0; fontID < kFonts; ++fontID) {
                const bool isActive = (fontID + round) % 2 == 0;
                CoreAgentNotificationCallback(
                    isActive ? kPluginCallback_FontActivated : kPluginCallback_FontDeactivated, &fontID);
            }
        }
        isDone = true;
    });
    while (!isDone)
        Process();
    agent.join();
    Process();
    std::map<std::string, std::string> last;
    for (const std::string& told : Told())
        last[told.substr(told.find(' ') + 1)] = told;
    EXPECT_EQ(last.size(), kFonts);
    for (const auto& [fontID, told] : last)
        EXPECT_EQ(told, (std::stoi(fontID) % 2 == 0 ? "FontActivated " : "FontDeactivated ") + fontID);
}
