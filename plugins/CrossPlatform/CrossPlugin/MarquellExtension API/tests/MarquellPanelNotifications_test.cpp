
#include "PanelTest.h"
#include "RecordingPanel.h"

using testing::ElementsAre, testing::IsEmpty;

namespace {

class PanelNotificationsTest : public PanelTest {
protected:
    std::vector<std::string> Pop() {
        EXPECT_EQ(panel.PopNotifications(), 0u);
        return service.TakeMessages();
    }
    bool IsListRefreshed() {
        return trace.Text().find("Entering MarquellGlobals::RefreshActiveFontList\n") != std::string::npos;
    }
};

}  // namespace

TEST_F(PanelNotificationsTest, FontEventsOfOneKindAreOneMessage) {
    panel.PushFontDeactivatedNotification(9);
    panel.PushFontActivatedNotification(4000000000);
    panel.PushFontActivatedNotification(7);
    panel.PushFontActivatedNotification(4000000000);
    EXPECT_THAT(Pop(), ElementsAre(R"({"messageID":24,"fontIDs":[7,4000000000]})",
                                   R"({"messageID":25,"fontIDs":[9]})"));
    panel.PushFontActivatedNotification(8);
    panel.PushFontMissingNotification(1);
    panel.PushFontNonCompliantNotification(2);
    EXPECT_THAT(Pop(), ElementsAre(R"({"messageID":24,"fontIDs":[8]})", R"({"messageID":45,"fontIDs":[1]})",
                                   R"({"messageID":60,"fontIDs":[2]})"))
        << "those that were told are not told again";
}

TEST_F(PanelNotificationsTest, StatesAreToldOnceInAscendingOrder) {
    for (const bool isOn : {false, true, false, true}) {
        panel.PushServicesEnabledNotification(isOn);
        panel.PushOnlineStateChangedNotification(isOn);
        panel.PushGoogleWebFontsEnabledNotificaton(isOn);
    }
    std::vector<std::string> expected;
    for (const int id : {22, 23, 61, 62, 64, 65})
        expected.push_back("{\"messageID\":" + std::to_string(id) + "}");
    EXPECT_EQ(Pop(), expected);
    EXPECT_THAT(Pop(), IsEmpty());
}

TEST_F(PanelNotificationsTest, WhileNotConnectedFontEventsAreDroppedAndTheRestWaits) {
    panel.PushFontActivatedNotification(1);
    panel.PushDataChangedNotification();
    MarquellGlobals::SetConnectedToCore(false);
    panel.PushFontActivatedNotification(2);
    panel.PushFontMissingNotification(3);
    panel.PushGoogleWebFontsEnabledNotificaton(true);
    panel.PushSmartListsChangedNotification();
    EXPECT_THAT(Pop(), IsEmpty());
    MarquellGlobals::SetConnectedToCore(true);
    EXPECT_THAT(Pop(), ElementsAre(R"({"messageID":24,"fontIDs":[1]})", R"({"messageID":43})",
                                   R"({"messageID":56})"));
}

TEST_F(PanelNotificationsTest, FontsThatAreGoneRefreshTheList) {
    panel.PushFontActivatedNotification(1);
    panel.PushDataChangedNotification();
    Pop();
    EXPECT_FALSE(IsListRefreshed()) << "nothing is gone";
    for (const auto push :
         {&MarquellPanel::PushFontDeactivatedNotification, &MarquellPanel::PushFontMissingNotification,
          &MarquellPanel::PushFontNonCompliantNotification}) {
        trace.Clear();
        (panel.*push)(1);
        Pop();
        EXPECT_TRUE(IsListRefreshed());
    }
}

TEST_F(PanelNotificationsTest, WhatCouldNotBeSentWaits) {
    RecordingPanel unreliable;
    unreliable.PushFontActivatedNotification(1);
    unreliable.PushFontDeactivatedNotification(2);
    unreliable.PushFontDeactivatedNotification(3);
    unreliable.PushDataChangedNotification();
    unreliable.messagesUntilFailure = 1;
    EXPECT_EQ(unreliable.PopNotifications(), CoreErrorCodes::kNotFound);
    EXPECT_THAT(unreliable.sent, ElementsAre(R"({"messageID":24,"fontIDs":[1]})"));
    EXPECT_THAT(trace.Text(), testing::HasSubstr("Expression='SendMessageW(responseMessage)'"));
    EXPECT_FALSE(IsListRefreshed());
    unreliable.PushFontDeactivatedNotification(1);
    unreliable.sent.clear();
    EXPECT_EQ(unreliable.PopNotifications(), 0u);
    EXPECT_THAT(unreliable.sent, ElementsAre(R"({"messageID":25,"fontIDs":[1,2,3]})", R"({"messageID":56})"));
}

TEST_F(PanelNotificationsTest, AHostThatComesBackWhileItIsToldDoesNotNest) {
    int depth = 0;
    service.whileDispatching = [&](const std::string&) {
        ASSERT_EQ(++depth, 1);
        panel.PushFontActivatedNotification(static_cast<uint32_t>(service.events.size() + 100));
        panel.PushDataChangedNotification();
        EXPECT_EQ(panel.PopNotifications(), 0u);
        --depth;
    };
    panel.PushFontActivatedNotification(1);
    panel.PushFontDeactivatedNotification(2);
    EXPECT_THAT(Pop(), ElementsAre(R"({"messageID":24,"fontIDs":[1]})", R"({"messageID":25,"fontIDs":[2]})"));
    service.whileDispatching = nullptr;
    EXPECT_THAT(Pop(), ElementsAre(R"({"messageID":24,"fontIDs":[101,102]})", R"({"messageID":56})"))
        << "what came meanwhile is told at the next call";
}
