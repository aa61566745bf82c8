#include "PanelManager.h"

#include <gmock/gmock.h>

#include "PanelTest.h"
#include "PluginNotifications.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// Answers every call with its code, and notes it.
class FakePanel : public MarquellPanel {
public:
    explicit FakePanel(std::vector<std::string>& calls, ErrorCode code = 0, uint32_t port = 0)
        : mCalls(calls), mCode(code), mPort(port) {}

    ErrorCode SelectSocket(bool close) override { return Note("SelectSocket", close); }
    uint32_t GetSocketPort() override { return mPort; }
    ErrorCode SetEnabled(bool enabled) override { return Note("SetEnabled", enabled); }
    ErrorCode PopNotifications() override { return Note("PopNotifications"); }
    ErrorCode SendMessage(const std::string&) override { return 0; }
    ErrorCode SendFontImages(CFDictionaryRef images) override {
        return Note("SendFontImages", cf::Count(images));
    }
    ErrorCode PushLoggedInStateChangedNotification(int32_t serverType) override {
        return Note("PushLoggedInStateChangedNotification", serverType);
    }
    ErrorCode PushOnlineStateChangedNotification(bool isOnline) override {
        return Note("PushOnlineStateChangedNotification", isOnline);
    }
    ErrorCode PushGoogleWebFontsEnabledNotificaton(bool enabled) override {
        return Note("PushGoogleWebFontsEnabledNotificaton", enabled);
    }
#define NOTE_FONT(name)                        \
    ErrorCode name(uint32_t fontID) override { \
        return Note(#name, fontID);            \
    }
    NOTE_FONT(PushFontActivatedNotification)
    NOTE_FONT(PushFontDeactivatedNotification)
    NOTE_FONT(PushFontMissingNotification)
    NOTE_FONT(PushFontNonCompliantNotification)
#undef NOTE_FONT
#define NOTE_PROGRESS(name)                            \
    ErrorCode name(CFDictionaryRef details) override { \
        return Note(#name, cf::Count(details));        \
    }
    NOTE_PROGRESS(PushBulkReplicationProgressNotification)
    NOTE_PROGRESS(PushIncrementalReplicationProgressNotification)
    NOTE_PROGRESS(PushGoogleReplicationProgressNotification)
    NOTE_PROGRESS(PushFontServerReplicationProgressNotification)
#undef NOTE_PROGRESS
#define NOTE_CHANGE(name)       \
    ErrorCode name() override { \
        return Note(#name);     \
    }
    NOTE_CHANGE(PushBulkReplicationStoppedNotification)
    NOTE_CHANGE(PushIncrementalReplicationStoppedNotification)
    NOTE_CHANGE(PushGoogleReplicationStoppedNotification)
    NOTE_CHANGE(PushFontServerReplicationStoppedNotification)
    NOTE_CHANGE(PushDataChangedNotification)
    NOTE_CHANGE(PushSmartListsChangedNotification)
    NOTE_CHANGE(PushOfflineDownloadFinishedNotification)
#undef NOTE_CHANGE

    std::function<void()> whileCalled;

private:
    template <class... Argument>
    ErrorCode Note(const char* call, Argument... argument) {
        std::string text = call;
        ((text += " " + std::to_string(argument)), ...);
        mCalls.push_back(text);
        if (whileCalled)
            whileCalled();
        return mCode;
    }

    std::vector<std::string>& mCalls;
    ErrorCode mCode;
    uint32_t mPort;
};

/// What is told to every panel: the call as it stands in reports, and as a panel notes it.
struct Broadcast {
    const char* expression;
    const char* noted;
    std::function<ErrorCode(PanelManager&)> call;
};

const CFRef<CFDictionaryRef>& OneDetail() {
    static const CFRef<CFDictionaryRef> details = [] {
        const CFRef<CFMutableDictionaryRef> dictionary = cf::MutableDictionary();
        cf::Set(dictionary, kPluginNotification_NumFonts, 12);
        return dictionary;
    }();
    return details;
}

using Panels = PanelManager;

const Broadcast kBroadcasts[] = {
    {"SelectSocket(closeListeningSocket)", "SelectSocket 1", [](Panels& p) { return p.SelectSocket(true); }},
    {"SetEnabled(enabled)", "SetEnabled 1", [](Panels& p) { return p.SetEnabled(true); }},
    {"PopNotifications()", "PopNotifications", [](Panels& p) { return p.PopNotifications(); }},
    {"PushLoggedInStateChangedNotification(serverType)", "PushLoggedInStateChangedNotification -2",
     [](Panels& p) { return p.PushLoggedInStateChangedNotification(-2); }},
    {"PushOnlineStateChangedNotification(isOnline)", "PushOnlineStateChangedNotification 1",
     [](Panels& p) { return p.PushOnlineStateChangedNotification(true); }},
    {"PushGoogleWebFontsEnabledNotificaton(enabled)", "PushGoogleWebFontsEnabledNotificaton 1",
     [](Panels& p) { return p.PushGoogleWebFontsEnabledNotificaton(true); }},
    {"PushFontActivatedNotification(fontID)", "PushFontActivatedNotification 4294967295",
     [](Panels& p) { return p.PushFontActivatedNotification(4294967295); }},
    {"PushFontDeactivatedNotification(fontID)", "PushFontDeactivatedNotification 5",
     [](Panels& p) { return p.PushFontDeactivatedNotification(5); }},
    {"PushFontMissingNotification(fontID)", "PushFontMissingNotification 5",
     [](Panels& p) { return p.PushFontMissingNotification(5); }},
    {"PushFontNonCompliantNotification(fontID)", "PushFontNonCompliantNotification 5",
     [](Panels& p) { return p.PushFontNonCompliantNotification(5); }},
    {"PushBulkReplicationProgressNotification(details)", "PushBulkReplicationProgressNotification 1",
     [](Panels& p) { return p.PushBulkReplicationProgressNotification(OneDetail().get()); }},
    {"PushBulkReplicationStoppedNotification()", "PushBulkReplicationStoppedNotification",
     [](Panels& p) { return p.PushBulkReplicationStoppedNotification(); }},
    {"PushIncrementalReplicationProgressNotification(details)",
     "PushIncrementalReplicationProgressNotification 1",
     [](Panels& p) { return p.PushIncrementalReplicationProgressNotification(OneDetail().get()); }},
    {"PushIncrementalReplicationStoppedNotification()", "PushIncrementalReplicationStoppedNotification",
     [](Panels& p) { return p.PushIncrementalReplicationStoppedNotification(); }},
    {"PushGoogleReplicationProgressNotification(details)", "PushGoogleReplicationProgressNotification 1",
     [](Panels& p) { return p.PushGoogleReplicationProgressNotification(OneDetail().get()); }},
    {"PushGoogleReplicationStoppedNotification()", "PushGoogleReplicationStoppedNotification",
     [](Panels& p) { return p.PushGoogleReplicationStoppedNotification(); }},
    {"PushFontServerReplicationProgressNotification(details)",
     "PushFontServerReplicationProgressNotification 1",
     [](Panels& p) { return p.PushFontServerReplicationProgressNotification(OneDetail().get()); }},
    {"PushFontServerReplicationStoppedNotification()", "PushFontServerReplicationStoppedNotification",
     [](Panels& p) { return p.PushFontServerReplicationStoppedNotification(); }},
    {"PushDataChangedNotification()", "PushDataChangedNotification",
     [](Panels& p) { return p.PushDataChangedNotification(); }},
    {"PushSmartListsChangedNotification()", "PushSmartListsChangedNotification",
     [](Panels& p) { return p.PushSmartListsChangedNotification(); }},
    {"PushOfflineDownloadFinishedNotification()", "PushOfflineDownloadFinishedNotification",
     [](Panels& p) { return p.PushOfflineDownloadFinishedNotification(); }},
    {"SendFontImages(fontPNGs)", "SendFontImages 1",
     [](Panels& p) { return p.SendFontImages(OneDetail().get()); }},
};

class PanelManagerTest : public testing::Test {
protected:
    FakePanel* Add(std::vector<std::string>& calls, ErrorCode code = 0, uint32_t port = 0) {
        auto panel = std::make_unique<FakePanel>(calls, code, port);
        FakePanel* const added = panel.get();
        manager.AddPanel(std::move(panel));
        return added;
    }

    CapturedTrace trace;
    FakeClock clock;
    FakePlugPlug service;
    PanelManager manager;
    std::vector<std::string> first;
    std::vector<std::string> second;
};

}  // namespace

// ---- Telling all panels

TEST_F(PanelManagerTest, EveryPanelHearsEverythingInOrder) {
    for (const Broadcast& each : kBroadcasts)
        EXPECT_EQ(each.call(manager), 0u) << "nobody to tell";
    Add(first);
    Add(second, 0, 8081);
    Add(second, 0, 8082);
    for (const Broadcast& each : kBroadcasts) {
        first.clear();
        second.clear();
        EXPECT_EQ(each.call(manager), 0u);
        EXPECT_THAT(first, ElementsAre(each.noted));
        EXPECT_THAT(second, ElementsAre(each.noted, each.noted));
    }
    EXPECT_EQ(manager.GetSocketPort(), 8081u);
    EXPECT_EQ(trace.Text(), "");
}

TEST_F(PanelManagerTest, TheFirstFailureEndsTheTellingAndIsReported) {
    Add(first, CoreErrorCodes::kNotFound);
    Add(second);
    for (const Broadcast& each : kBroadcasts) {
        trace.Clear();
        EXPECT_EQ(each.call(manager), CoreErrorCodes::kNotFound) << each.expression;
        EXPECT_THAT(trace.Text(), HasSubstr("[Miscellaneous]\t[Error]\tError='CoreErrorCodes::kNotFound'"));
        EXPECT_THAT(trace.Text(), HasSubstr(std::string("Expression='(*it)->") + each.expression + "'"));
        EXPECT_EQ(trace.LineCount(), 1u);
    }
    EXPECT_EQ(first.size(), std::size(kBroadcasts)) << "it is offered the next one all the same";
    EXPECT_THAT(second, IsEmpty());
}

TEST_F(PanelManagerTest, APanelMayBringAnotherOneAbout) {
    FakePanel* panel = Add(first);
    panel->whileCalled = [&] {
        panel->whileCalled = nullptr;
        for (int count = 0; count < 20; ++count)
            Add(second);
    };
    EXPECT_EQ(manager.PopNotifications(), 0u);
    EXPECT_EQ(second.size(), 20u);
}

// ---- Registration

TEST_F(PanelManagerTest, OnePanelIsRegisteredHoweverOftenTheHostAsks) {
    service.whileAdding = [&] {
        EXPECT_EQ(manager.RegisterPlugPlug(&service), 0u) << "from within";
        service.Deliver(R"({"messageID":16})");
    };
    EXPECT_EQ(manager.RegisterPlugPlug(&service), 0u);
    EXPECT_EQ(manager.RegisterPlugPlug(&service), 0u);
    EXPECT_TRUE(manager.TryRegisterPlugPlug(&service));
    EXPECT_TRUE(manager.TryRegisterPlugPlug(nullptr));
    EXPECT_EQ(service.listenedTo.size(), 1u);
    EXPECT_EQ(service.events.size(), 1u) << "what comes during the registration is answered";
    EXPECT_EQ(manager.SetEnabled(true), 0u);
    EXPECT_EQ(service.events.size(), 2u);
    EXPECT_EQ(service.events[1].data, R"({"messageID":30,"isEnabled":true})");
    EXPECT_EQ(manager.GetSocketPort(), 0u);
}

TEST_F(PanelManagerTest, AServiceThatCannotBeUsedIsReported) {
    EXPECT_EQ(manager.RegisterPlugPlug(nullptr), CoreErrorCodes::kNullPointer);
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='(plugPlug) == nullptr'"));
    PlugPlugService noListeners{nullptr, service.DispatchEvent};
    PlugPlugService noDispatch{service.AddEventListener, nullptr};
    for (PlugPlugService* unusable : {&noListeners, &noDispatch}) {
        trace.Clear();
        EXPECT_EQ(manager.RegisterPlugPlug(unusable), CoreErrorCodes::kNullPointer);
        EXPECT_THAT(trace.Text(), HasSubstr("Expression='(htmlPanel) == nullptr'"));
    }
    service.answerToListeners = 1;
    EXPECT_EQ(manager.RegisterPlugPlug(&service), CoreErrorCodes::kNotInitialized);
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='htmlPanel->RegisterHandler()'"));
    EXPECT_EQ(manager.SetEnabled(true), 0u);
    EXPECT_THAT(service.events, IsEmpty()) << "the panel was not kept";
    service.answerToListeners = 0;
    EXPECT_EQ(manager.RegisterPlugPlug(&service), 0u) << "later it may";
}

TEST_F(PanelManagerTest, RegistrationIsTriedAtGrowingIntervalsAndGivenUp) {
    service.answerToListeners = 1;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(nullptr)) << "no attempt";
    size_t attempts = 0;
    for (const uint32_t wait : {500, 1000, 2000, 4000, 8000, 8000, 8000, 8000, 8000, 8000, 8000}) {
        EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
        EXPECT_EQ(service.listenedTo.size(), ++attempts);
        clock.ticks += wait - 1;
        EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
        EXPECT_EQ(service.listenedTo.size(), attempts) << "too early, does not count";
        clock.ticks += 1;
    }
    constexpr char kGaveUp[] =
        "Gave up registering PlugPlug after 12 attempts (PlugPlugSetup may not be ready)\n";
    EXPECT_THAT(trace.Text(), testing::Not(HasSubstr("Gave up")));
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    EXPECT_THAT(trace.Text(), testing::EndsWith(kGaveUp));
    trace.Clear();
    clock.ticks += 100000;
    service.answerToListeners = 0;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service)) << "for good";
    EXPECT_EQ(service.listenedTo.size(), 12u);
    EXPECT_EQ(trace.Text(), "");
    EXPECT_EQ(manager.RegisterPlugPlug(&service), 0u) << "asked directly, it is tried";
    EXPECT_TRUE(manager.TryRegisterPlugPlug(&service));
}

TEST_F(PanelManagerTest, AServiceThatBecomesReadyIsFoundAtTheNextAttempt) {
    service.answerToListeners = 1;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    service.answerToListeners = 0;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    clock.ticks += 500;
    EXPECT_TRUE(manager.TryRegisterPlugPlug(&service));
    EXPECT_EQ(service.listenedTo.size(), 2u);
}

TEST_F(PanelManagerTest, TheWaitIsComparedAsTheTickCounterStands) {
    service.answerToListeners = 1;
    clock.ticks = UINT32_MAX - 100;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    // The next attempt is due at tick 399 after the counter wraps; until it wraps every tick is past that.
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    EXPECT_EQ(service.listenedTo.size(), 2u);
    clock.ticks = 0;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    EXPECT_EQ(service.listenedTo.size(), 2u) << "the second wait, 1000, ends at 899";
    clock.ticks = 899;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    EXPECT_EQ(service.listenedTo.size(), 3u);
}

// ---- What the agent reports

TEST_F(PanelManagerTest, ReportsOfTheAgentReachThePanels) {
    struct Report {
        std::string_view name;
        const char* noted;  ///< empty for those that panels need not know
    };
    constexpr Report kReports[] = {
        {kPluginNotification_OnlineStateChanged, "PushOnlineStateChangedNotification 1"},
        {kPluginNotification_LoggedInStateChanged, "PushLoggedInStateChangedNotification 2"},
        {kPluginNotification_PanelDataChanged, "PushDataChangedNotification"},
        {kPluginNotification_WorkgroupsChanged, ""},
        {kPluginNotification_AgentShutdown, ""},
        {kPluginNotification_FontActivated, "PushFontActivatedNotification 4294967295"},
        {kPluginNotification_FontDeactivated, "PushFontDeactivatedNotification 4294967295"},
        {kPluginNotification_FontMissing, "PushFontMissingNotification 4294967295"},
        {kPluginNotification_DesignActivationNonCompliant, "PushFontNonCompliantNotification 4294967295"},
        {kPluginNotification_UserPermissionsChanged, "PushDataChangedNotification"},
        {kPluginNotification_TaskStarted, ""},
        {kPluginNotification_TaskProgress, ""},
        {kPluginNotification_TaskFinished, ""},
        {kPluginNotification_TaskError, ""},
        {kPluginNotification_BulkReplicationProgress, "PushBulkReplicationProgressNotification 5"},
        {kPluginNotification_BulkReplicationStopped, "PushBulkReplicationStoppedNotification"},
        {kPluginNotification_IncrementalReplicationProgress,
         "PushIncrementalReplicationProgressNotification 5"},
        {kPluginNotification_IncrementalReplicationStopped, "PushIncrementalReplicationStoppedNotification"},
        {kPluginNotification_GoogleReplicationProgress, "PushGoogleReplicationProgressNotification 5"},
        {kPluginNotification_GoogleReplicationStopped, "PushGoogleReplicationStoppedNotification"},
        {kPluginNotification_FontServerReplicationProgress,
         "PushFontServerReplicationProgressNotification 5"},
        {kPluginNotification_FontServerReplicationStopped, "PushFontServerReplicationStoppedNotification"},
        {kPluginNotification_GoogleWebFontsEnabled, "PushGoogleWebFontsEnabledNotificaton 1"},
        {kPluginNotification_PreviewPNGsRendered, "SendFontImages 1"},
        {kPluginNotification_SmartListsChanged, "PushSmartListsChangedNotification"},
        {kPluginNotification_OfflineDownloadFinished, "PushOfflineDownloadFinishedNotification"},
        {kPluginNotification_Enabled, "SetEnabled 1"},
    };
    Add(first);
    const CFRef<CFMutableDictionaryRef> payload = cf::MutableDictionary();
    cf::Set(payload, kNotificationIsOnlineKey, true);
    cf::Set(payload, kNotificationIsEnabledKey, true);
    cf::Set(payload, kNotificationServerTypeKey, 2);
    cf::Set(payload, kPluginNotification_FontActivation_Font_ID, int64_t{4294967295});
    cf::Set(payload, kPluginNotification_FontPNGs, OneDetail());
    for (const Report& report : kReports) {
        first.clear();
        EXPECT_EQ(manager.Receive({report.name, payload}), 0u);
        const std::vector<std::string> expected(*report.noted != '\0' ? 1 : 0, report.noted);
        EXPECT_EQ(first, expected) << report.name;
        EXPECT_EQ(manager.Receive({report.name, cf::MutableDictionary()}), 0u) << "nothing in it";
    }
    first.clear();
    EXPECT_EQ(manager.Receive({"kPluginNotification_OfTomorrow", payload}), 0u);
    cf::Set(payload, kPluginNotification_FontActivation_Font_ID, int64_t{4294967296});
    EXPECT_EQ(manager.Receive({kPluginNotification_FontActivated, payload}), 0u);
    EXPECT_EQ(manager.Receive({kPluginNotification_FontActivated, cf::MutableDictionary()}), 0u);
    EXPECT_THAT(first, IsEmpty()) << "no font of this font manager";
    Add(second, CoreErrorCodes::kNotFound);
    EXPECT_EQ(manager.Receive({kPluginNotification_SmartListsChanged, payload}), CoreErrorCodes::kNotFound);
}
