#include "PanelManager.h"

#include "PanelTest.h"
#include "RecordingPanel.h"
#include "Records.h"

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty;

namespace {

class PanelManagerTest : public PanelTest {
protected:
    RecordingPanel& Add(uint32_t port = 0) {
        auto owned = std::make_unique<RecordingPanel>();
        RecordingPanel& added = *owned;
        added.port = port;
        manager.AddPanel(std::move(owned));
        return added;
    }

    FakeClock clock;
    FakePlugPlug service;
    PanelManager manager;
};

}  // namespace

TEST_F(PanelManagerTest, EveryPanelIsToldInOrderUntilOneFails) {
    const std::pair<const char*, std::function<ErrorCode()>> kCalls[] = {
        {"(*it)->SelectSocket(closeListeningSocket)", [&] { return manager.SelectSocket(true); }},
        {"(*it)->SetEnabled(enabled)", [&] { return manager.SetEnabled(true); }},
        {"(*it)->PopNotifications()", [&] { return manager.PopNotifications(); }},
        {"(*it)->SendFontImages(fontPNGs)", [&] { return manager.SendFontImages(nullptr); }},
    };
    const auto push = [&] { return manager.PushLoggedInStateChangedNotification(-2); };
    for (const auto& [expression, call] : kCalls)
        EXPECT_EQ(call(), 0u) << "nobody to tell";
    RecordingPanel& first = Add();
    RecordingPanel& second = Add(8081);
    Add(8082);
    EXPECT_EQ(push(), 0u);
    for (const auto& [expression, call] : kCalls)
        EXPECT_EQ(call(), 0u);
    EXPECT_THAT(first.sent, ElementsAre("close", R"({"messageID":30,"isEnabled":true})",
                                        R"({"messageID":50})", "0 images"));
    EXPECT_EQ(second.sent, first.sent);
    EXPECT_EQ(manager.GetSocketPort(), 8081u);
    for (const auto& [expression, call] : kCalls) {
        EXPECT_EQ(push(), 0u);
        first.messagesUntilFailure = 0;
        EXPECT_EQ(call(), CoreErrorCodes::kNotFound) << expression;
        EXPECT_THAT(trace.Text(), HasSubstr("Expression='" + std::string(expression) + "'"));
    }
    EXPECT_EQ(second.sent, first.sent) << "not told after a failure";
    RecordingPanel* last = nullptr;
    first.whileSending = [&] { last = &Add(); };
    EXPECT_EQ(manager.SetEnabled(true), 0u);
    EXPECT_EQ(last->sent.size(), 1u) << "one panel may bring another about";
}

TEST_F(PanelManagerTest, OnePanelIsRegisteredHoweverOftenTheHostAsks) {
    service.whileAdding = [&] {
        EXPECT_FALSE(manager.TryRegisterPlugPlug(&service)) << "from within";
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
}

TEST_F(PanelManagerTest, AServiceThatCannotBeUsedIsReported) {
    PlugPlugService noListeners{nullptr, service.DispatchEvent};
    PlugPlugService noDispatch{service.AddEventListener, nullptr};
    for (PlugPlugService* unusable : {static_cast<PlugPlugService*>(nullptr), &noListeners, &noDispatch})
        EXPECT_EQ(manager.RegisterPlugPlug(unusable), CoreErrorCodes::kNullPointer);
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
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    EXPECT_THAT(trace.Text(),
                testing::EndsWith(
                    "Gave up registering PlugPlug after 12 attempts (PlugPlugSetup may not be ready)\n"));
    clock.ticks += 100000;
    service.answerToListeners = 0;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service)) << "for good";
    EXPECT_EQ(service.listenedTo.size(), 12u);
    EXPECT_EQ(manager.RegisterPlugPlug(&service), 0u) << "asked directly, it is tried";
    EXPECT_TRUE(manager.TryRegisterPlugPlug(&service));
}

TEST_F(PanelManagerTest, ReportsOfTheAgentBecomeMessagesOfThePanels) {
    const std::pair<std::string_view, const char*> kReports[] = {
        // clang-format off
        {kPluginNotification_OnlineStateChanged, R"({"messageID":62})"},
        {kPluginNotification_LoggedInStateChanged, R"({"messageID":50})"},
        {kPluginNotification_PanelDataChanged, R"({"messageID":56})"},
        {kPluginNotification_WorkgroupsChanged, nullptr},
        {kPluginNotification_AgentShutdown, nullptr},
        {kPluginNotification_FontActivated, R"({"messageID":24,"fontIDs":[4294967295]})"},
        {kPluginNotification_FontDeactivated, R"({"messageID":25,"fontIDs":[4294967295]})"},
        {kPluginNotification_FontMissing, R"({"messageID":45,"fontIDs":[4294967295]})"},
        {kPluginNotification_DesignActivationNonCompliant, R"({"messageID":60,"fontIDs":[4294967295]})"},
        {kPluginNotification_UserPermissionsChanged, R"({"messageID":56})"},
        {kPluginNotification_TaskProgress, nullptr},
        {kPluginNotification_BulkReplicationProgress, R"({"messageID":52})"},
        {kPluginNotification_FontServerReplicationStopped, R"({"messageID":69})"},
        {kPluginNotification_GoogleWebFontsEnabled, R"({"messageID":22})"},
        {kPluginNotification_PreviewPNGsRendered, "1 images"},
        {kPluginNotification_SmartListsChanged, R"({"messageID":43})"},
        {kPluginNotification_Enabled, R"({"messageID":30,"isEnabled":true})"},
        {"kPluginNotification_OfTomorrow", nullptr},
        // clang-format on
    };
    RecordingPanel& told = Add();
    const auto payload = Record(kNotificationIsOnlineKey, true, kNotificationIsEnabledKey, true,
                                kPluginNotification_FontActivation_Font_ID, int64_t{4294967295},
                                kPluginNotification_FontPNGs, Record("1", "/1.png"));
    for (const auto& [name, message] : kReports) {
        told.sent.clear();
        EXPECT_EQ(manager.Receive({name, payload}), 0u);
        manager.PopNotifications();
        EXPECT_EQ(told.sent, std::vector<std::string>(message != nullptr ? 1 : 0, message ? message : ""))
            << name;
    }
    told.sent.clear();
    for (const auto& [name, message] : kReports)
        EXPECT_EQ(manager.Receive({name, cf::MutableDictionary()}), 0u) << "nothing in it";
    manager.PopNotifications();
    EXPECT_THAT(told.sent, testing::IsSupersetOf({R"({"messageID":23})", R"({"messageID":61})"}));
    told.sent.clear();
    cf::Set(payload, kPluginNotification_FontActivation_Font_ID, int64_t{4294967296});
    EXPECT_EQ(manager.Receive({kPluginNotification_FontActivated, payload}), 0u);
    manager.PopNotifications();
    EXPECT_THAT(told.sent, IsEmpty()) << "no font of this font manager";
    told.messagesUntilFailure = 0;
    EXPECT_EQ(manager.Receive({kPluginNotification_Enabled, payload}), CoreErrorCodes::kNotFound);
}
