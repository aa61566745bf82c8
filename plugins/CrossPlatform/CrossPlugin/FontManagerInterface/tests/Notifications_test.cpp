#include "FacadeTest.h"
#include "NotificationProcessor.h"
#include "NotificationQueue.h"

using testing::ElementsAre;

namespace {

class FakeReceiver : public NotificationReceiver {
public:
    ErrorCode Receive(const PluginNotification& notification) override {
        names.emplace_back(notification.name);
        payloads.push_back(notification.payload);
        return CoreErrorCodes::kSuccess;
    }
    std::vector<std::string> names;
    std::vector<CFRef<CFDictionaryRef>> payloads;
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
    /// What the panels got: names without what all begin with, and the fonts or their images.
    std::vector<std::string> Told() {
        std::vector<std::string> told;
        for (size_t index = 0; index < receiver.names.size(); ++index) {
            const CFDictionaryRef payload = receiver.payloads[index].get();
            const auto fontID = cf::GetInt64(payload, kPluginNotification_FontActivation_Font_ID);
            told.push_back(receiver.names[index].substr(receiver.names[index].find('_') + 1) +
                           (fontID ? " " + std::to_string(*fontID) : ""));
            const auto images = cf::GetDictionary(payload, kPluginNotification_FontPNGs);
            for (const char* each : {"1", "2", "3", "last", "one more"})
                told.back() += cf::GetString(images, each);
        }
        return told;
    }
    ErrorCode Process() { return fontManager.GetFontManager()->ProcessNotifications(); }

    FakeReceiver receiver;
};

}  // namespace

TEST_F(NotificationsTest, ReportsBecomePayloadsThatOutliveThem) {
    constexpr auto kFontID = kPluginNotification_FontActivation_Font_ID;
    const uint32_t fontID = 4000000000;
    const bool truth = true;
    const CFRef<CFMutableDictionaryRef> details = cf::MutableDictionary();
    const std::tuple<PluginNotificationType, const void*, const char*, std::optional<int64_t>> reports[] = {
        {kPluginCallback_WentOnline, nullptr, "isOnline", 1},
        {kPluginCallback_WentOffline, nullptr, "isOnline", 0},
        {kPluginCallback_LoggedIn, details.get(), "isLoggedIn", 1},
        {kPluginCallback_LoggedIn, details.get(), "numFonts", 3},
        {kPluginCallback_TaskProgress, details.get(), "numFonts", 3},
        {kPluginCallback_TaskProgress, nullptr, "numFonts", std::nullopt},
        {kPluginCallback_FontMissing, &fontID, kFontID, fontID},
        {kPluginCallback_FontMissing, nullptr, kFontID, std::nullopt},
        {kPluginCallback_Enabled, &truth, "isEnabled", 1}};
    NotificationQueue& queue = NotificationQueue::GetSharedInstance();
    for (const auto& [type, data, key, value] : reports) {
        cf::Set(details, "numFonts", 3);
        Report(type, data);
        cf::Set(details, "numFonts", 4);
        EXPECT_EQ(cf::GetInt64(queue.TakeNext()->payload.get(), key), value) << type;
    }
    for (const int32_t unknown : {-1, kPluginCallback_Enabled + 1, INT32_MAX, INT32_MIN})
        CoreAgentNotificationCallback(unknown, nullptr);
    Report(kPluginCallback_Enabled);
    queue.Close();
    Report(kPluginCallback_Enabled);
    EXPECT_EQ(queue.Count(), 0u);
}

TEST_F(NotificationsTest, ALogoutSwitchesThePluginOffAndALoginOnAgain) {
    Report(kPluginCallback_LoggedOut);
    Process();
    EXPECT_FALSE(MarquellGlobals::IsLoggedIn());
    EXPECT_FALSE(MarquellGlobals::ArePluginServicesEnabled());
    EXPECT_TRUE(MarquellGlobals::IsConnectedToCore());
    EXPECT_THAT(framework.shownBoxes, ElementsAre(std::pair(609u, 611u)));
    EXPECT_THAT(trace.Text(), testing::HasSubstr(">>> notification: Logged-in state changed to 'false'\n"));
    Report(kPluginCallback_LoggedIn);
    Process();
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional());
    EXPECT_EQ(framework.shownBoxes.size(), 1u);
    EXPECT_EQ(refreshes, 2);
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
}

TEST_F(NotificationsTest, ServicesAreOnAgainAsSoonAsThereIsAWorkgroup) {
    for (const auto news : {kPluginCallback_WorkgroupsChanged, kPluginCallback_BulkReplicationStopped,
                            kPluginCallback_IncrementalReplicationStopped}) {
        library.workgroups.clear();
        Report(kPluginCallback_WorkgroupsChanged);
        Report(kPluginCallback_LoggedIn);
        Process();
        EXPECT_FALSE(MarquellGlobals::IsPluginFunctional()) << "there is none";
        library.workgroups = {{9, kWorkgroupType_FontLibrary, "Other"}};
        Report(news);
        Process();
        EXPECT_TRUE(MarquellGlobals::IsPluginFunctional()) << news;
    }
    library.codes["GetAllWorkgroupsForUser"].assign(2, GIPCClient::kReplyTimeout);
    Report(kPluginCallback_LoggedIn);
    Process();
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional()) << "it cannot be told that it is gone";
    EXPECT_TRUE(framework.shownDialogs.empty());
    library.workgroups = {{7, kWorkgroupType_FontLibrary, "A"}, {8, kWorkgroupType_FontLibrary, "B"}};
    for (const size_t asked : {1, 2}) {  // with services on, and off since nothing was chosen
        Report(kPluginCallback_WorkgroupsChanged);
        Process();
        EXPECT_EQ(framework.shownDialogs.size(), asked) << "a user who chooses nothing is asked once";
    }
}

TEST_F(NotificationsTest, TheHostIsRefreshedWhenAReplicationIsOver) {
    for (const auto type :
         {kPluginCallback_BulkReplicationProgress, kPluginCallback_BulkReplicationStopped,
          kPluginCallback_IncrementalReplicationProgress, kPluginCallback_IncrementalReplicationStopped}) {
        Report(type);
        Process();
        EXPECT_EQ(MarquellGlobals::IsBulkReplicationRunning(),
                  type == kPluginCallback_BulkReplicationProgress);
        EXPECT_EQ(MarquellGlobals::IsIncrementalReplicationRunning(),
                  type == kPluginCallback_IncrementalReplicationProgress);
    }
    EXPECT_EQ(refreshes, 2);
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

TEST_F(NotificationsTest, NewsOfTheSameThingIsToldOnceAndAsItIsNow) {
    ReportFont(kPluginCallback_FontActivated, 1);
    ReportFont(kPluginCallback_FontMissing, 1);
    ReportFont(kPluginCallback_FontActivated, 2);
    ReportFont(kPluginCallback_DesignActivationNonCompliant, 1);
    ReportFont(kPluginCallback_FontDeactivated, 1);
    Report(kPluginCallback_WentOnline);
    ReportFont(kPluginCallback_FontMissing, 1);
    for (const auto type :
         {kPluginCallback_BulkReplicationProgress, kPluginCallback_TaskStarted,
          kPluginCallback_BulkReplicationStopped, kPluginCallback_TaskFinished, kPluginCallback_WentOffline,
          kPluginCallback_BulkReplicationProgress, kPluginCallback_BulkReplicationStopped})
        Report(type);
    Process();
    EXPECT_THAT(Told(), ElementsAre("FontActivated 2", "DesignActivationNonCompliant 1", "FontDeactivated 1",
                                    "FontMissing 1", "TaskStarted", "TaskFinished", "OnlineStateChanged",
                                    "BulkReplicationProgress", "BulkReplicationStopped"));
    EXPECT_EQ(cf::GetBool(receiver.payloads[6].get(), "isOnline"), false);
}

TEST_F(NotificationsTest, ImagesOfFontsAreJoinedUpToALimit) {
    ReportImages({"1", "2"}, " old");
    Report(kPluginCallback_SmartListsChanged);
    ReportImages({"2", "3"}, " new");
    Process();
    ReportImages({"2"}, " next");
    Process();
    std::vector<std::string> fontIDs;
    while (fontIDs.size() < NotificationQueue::kMostImages - 1)
        fontIDs.push_back(std::to_string(fontIDs.size() + 1));
    ReportImages(fontIDs, " x");
    ReportImages({"last"}, " y");
    ReportImages({"one more"}, " z");
    Process();
    EXPECT_THAT(Told(),
                ElementsAre("SmartListsChanged", "PreviewPNGsRendered old new new",
                            "PreviewPNGsRendered next", "PreviewPNGsRendered x x x y", "PanelDataChanged"));
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
