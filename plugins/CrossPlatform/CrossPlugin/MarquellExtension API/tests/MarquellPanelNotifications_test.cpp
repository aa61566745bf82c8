#include <gmock/gmock.h>

#include "PanelTest.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

class PanelNotificationsTest : public PanelTest {
protected:
    std::vector<std::string> Pop() {
        EXPECT_EQ(panel.PopNotifications(), 0u);
        return service.TakeMessages();
    }
    int Refreshes() {
        int count = 0;
        const std::string text = trace.Text();
        const std::string line = "Entering MarquellGlobals::RefreshActiveFontList\n";
        for (size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1))
            ++count;
        return count;
    }
};

/// A panel whose messages arrive as long as the test says so.
class UnreliablePanel : public MarquellPanel {
public:
    ErrorCode SelectSocket(bool) override { return 0; }
    uint32_t GetSocketPort() override { return 0; }
    ErrorCode SendFontImages(CFDictionaryRef) override { return 0; }
    ErrorCode SendMessage(const std::string& message) override {
        if (messagesUntilFailure-- == 0)
            return CoreErrorCodes::kNotFound;
        sent.push_back(message);
        return 0;
    }
    int messagesUntilFailure = -1;
    std::vector<std::string> sent;
};

}  // namespace

TEST_F(PanelNotificationsTest, NothingIsSentForNothing) {
    EXPECT_THAT(Pop(), IsEmpty());
    EXPECT_EQ(trace.Text(), "");
}

TEST_F(PanelNotificationsTest, FontEventsOfOneKindAreOneMessage) {
    panel.PushFontDeactivatedNotification(9);
    panel.PushFontActivatedNotification(4000000000);
    panel.PushFontActivatedNotification(7);
    panel.PushFontActivatedNotification(4000000000);
    EXPECT_THAT(Pop(), ElementsAre(R"({"messageID":24,"fontIDs":[7,4000000000]})",
                                   R"({"messageID":25,"fontIDs":[9]})"));
    EXPECT_THAT(Pop(), IsEmpty());
    panel.PushFontActivatedNotification(8);
    panel.PushFontMissingNotification(1);
    panel.PushFontNonCompliantNotification(2);
    EXPECT_THAT(Pop(), ElementsAre(R"({"messageID":24,"fontIDs":[8]})", R"({"messageID":45,"fontIDs":[1]})",
                                   R"({"messageID":60,"fontIDs":[2]})"))
        << "those that were told are not told again";
}

TEST_F(PanelNotificationsTest, EachPushHasItsNumberAndTheyAreSentInAscendingOrder) {
    for (int twice = 0; twice < 2; ++twice) {
        panel.PushFontServerReplicationStoppedNotification();
        panel.PushFontServerReplicationProgressNotification(nullptr);
        panel.PushServicesEnabledNotification(false);
        panel.PushServicesEnabledNotification(true);
        panel.PushOfflineDownloadFinishedNotification();
        panel.PushOnlineStateChangedNotification(true);
        panel.PushOnlineStateChangedNotification(false);
        panel.PushDataChangedNotification();
        panel.PushIncrementalReplicationStoppedNotification();
        panel.PushIncrementalReplicationProgressNotification(nullptr);
        panel.PushBulkReplicationStoppedNotification();
        panel.PushBulkReplicationProgressNotification(nullptr);
        panel.PushLoggedInStateChangedNotification(2);
        panel.PushSmartListsChangedNotification();
        panel.PushGoogleReplicationStoppedNotification();
        panel.PushGoogleReplicationProgressNotification(nullptr);
        panel.PushGoogleWebFontsEnabledNotificaton(false);
        panel.PushGoogleWebFontsEnabledNotificaton(true);
    }
    std::vector<std::string> expected;
    for (const int id : {22, 23, 28, 29, 43, 50, 52, 53, 54, 55, 56, 61, 62, 63, 64, 65, 68, 69})
        expected.push_back("{\"messageID\":" + std::to_string(id) + "}");
    EXPECT_EQ(Pop(), expected);
    EXPECT_THAT(trace.Text(),
                testing::StartsWith("PushOnlineStateChangedNotification() -- kGoOnlineNotification\n"
                                    "PushOnlineStateChangedNotification() -- kGoOfflineNotification\n"));
}

TEST_F(PanelNotificationsTest, WhileNotConnectedFontEventsAreDroppedAndTheRestWaits) {
    panel.PushFontActivatedNotification(1);
    panel.PushDataChangedNotification();
    MarquellGlobals::SetConnectedToCore(false);
    trace.Clear();
    panel.PushFontActivatedNotification(2);
    panel.PushFontMissingNotification(3);
    panel.PushGoogleWebFontsEnabledNotificaton(true);
    panel.PushSmartListsChangedNotification();
    EXPECT_THAT(Pop(), IsEmpty());
    EXPECT_EQ(trace.Text(), "PopNotifications() -- ERROR ConnectedToCore == false\n");
    MarquellGlobals::SetConnectedToCore(true);
    EXPECT_THAT(Pop(), ElementsAre(R"({"messageID":24,"fontIDs":[1]})", R"({"messageID":43})",
                                   R"({"messageID":56})"));
}

TEST_F(PanelNotificationsTest, FontsThatAreGoneRefreshTheListOncePerPop) {
    panel.PushFontActivatedNotification(1);
    panel.PushDataChangedNotification();
    Pop();
    EXPECT_EQ(Refreshes(), 0) << "nothing is gone";
    panel.PushFontDeactivatedNotification(1);
    panel.PushFontMissingNotification(2);
    panel.PushFontNonCompliantNotification(3);
    Pop();
    EXPECT_EQ(Refreshes(), 1);
    for (const auto push :
         {&MarquellPanel::PushFontDeactivatedNotification, &MarquellPanel::PushFontMissingNotification,
          &MarquellPanel::PushFontNonCompliantNotification}) {
        trace.Clear();
        (panel.*push)(1);
        Pop();
        EXPECT_EQ(Refreshes(), 1);
    }
}

TEST_F(PanelNotificationsTest, WhatCouldNotBeSentWaits) {
    UnreliablePanel unreliable;
    unreliable.PushFontActivatedNotification(1);
    unreliable.PushFontDeactivatedNotification(2);
    unreliable.PushFontDeactivatedNotification(3);
    unreliable.PushDataChangedNotification();
    unreliable.messagesUntilFailure = 1;
    EXPECT_EQ(unreliable.PopNotifications(), CoreErrorCodes::kNotFound);
    EXPECT_THAT(unreliable.sent, ElementsAre(R"({"messageID":24,"fontIDs":[1]})"));
    EXPECT_THAT(trace.Text(), HasSubstr("MarquellPanel"));
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='SendMessageW(responseMessage)'"));
    EXPECT_EQ(Refreshes(), 0);
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
    service.whileDispatching = [](const std::string&) { throw 1; };
    panel.PushFontActivatedNotification(3);
    EXPECT_ANY_THROW(panel.PopNotifications());
    service.whileDispatching = nullptr;
    service.events.clear();
    EXPECT_THAT(Pop(), ElementsAre(R"({"messageID":24,"fontIDs":[3]})"));
}
