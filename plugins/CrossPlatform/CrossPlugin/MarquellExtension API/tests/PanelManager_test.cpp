#include "PanelManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "CapturedTrace.h"
#include "FakePlatform.h"

using testing::HasSubstr;

namespace {

/// Answers every call with its code, and notes it.
class FakePanel : public MarquellPanel {
public:
    explicit FakePanel(std::vector<std::string>& calls, ErrorCode code = 0, uint32_t port = 0)
        : mCalls(calls), mCode(code), mPort(port) {}
    ErrorCode SelectSocket(bool close) override { return Note(close ? "close" : "select"); }
    uint32_t GetSocketPort() override { return mPort; }
    ErrorCode SetEnabled(bool enabled) override { return Note(enabled ? "enable" : "disable"); }
    ErrorCode PopNotifications() override { return Note("pop"); }
    ErrorCode SendMessage(const std::string&) override { return Note("send"); }
    ErrorCode SendFontImages(CFDictionaryRef) override { return Note("images"); }

private:
    ErrorCode Note(const char* call) {
        mCalls.emplace_back(call);
        return mCode;
    }
    std::vector<std::string>& mCalls;
    ErrorCode mCode;
    uint32_t mPort;
};

class PanelManagerTest : public testing::Test {
protected:
    CapturedTrace trace;
    FakeClock clock;
    PanelManager manager;
    std::vector<std::string> first;
    std::vector<std::string> second;
};

}  // namespace

TEST_F(PanelManagerTest, EveryPanelHearsEverythingInOrderUntilOneFails) {
    EXPECT_EQ(manager.SetEnabled(true), 0u) << "nobody to tell";
    manager.AddPanel(std::make_unique<FakePanel>(first));
    manager.AddPanel(std::make_unique<FakePanel>(second, 0, 8081));
    EXPECT_EQ(manager.SetEnabled(true), 0u);
    EXPECT_EQ(manager.SelectSocket(true), 0u);
    EXPECT_EQ(manager.PopNotifications(), 0u);
    EXPECT_EQ(manager.GetSocketPort(), 8081u);
    EXPECT_EQ(first, (std::vector<std::string>{"enable", "close", "pop"}));
    EXPECT_EQ(second, first);
    std::vector<std::string> third;
    manager.AddPanel(std::make_unique<FakePanel>(third, CoreErrorCodes::kNotFound));
    manager.AddPanel(std::make_unique<FakePanel>(second));
    second.clear();
    EXPECT_EQ(manager.SelectSocket(false), CoreErrorCodes::kNotFound);
    EXPECT_EQ(second.size(), 1u) << "the panel behind the failed one hears nothing";
    EXPECT_THAT(trace.Text(), HasSubstr("Error='CoreErrorCodes::kNotFound'"));
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='(*it)->SelectSocket(closeListeningSocket)'"));
}

TEST_F(PanelManagerTest, RegistrationIsTriedAtGrowingIntervalsAndGivenUp) {
    int service = 0;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(nullptr));
    for (const uint32_t wait : {500, 1000, 2000, 4000, 8000, 8000, 8000, 8000, 8000, 8000, 8000}) {
        const size_t linesBefore = trace.LineCount();
        EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
        EXPECT_EQ(trace.LineCount(), linesBefore) << "given up too early";
        clock.ticks += wait - 1;
        EXPECT_FALSE(manager.TryRegisterPlugPlug(&service)) << "too early, does not count";
        clock.ticks += 1;
    }
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    EXPECT_EQ(trace.Text(),
              "Gave up registering PlugPlug after 12 attempts (PlugPlugSetup may not be ready)\n");
    clock.ticks += 100000;
    EXPECT_FALSE(manager.TryRegisterPlugPlug(&service));
    EXPECT_EQ(trace.LineCount(), 1u);
}

TEST_F(PanelManagerTest, ANullServiceIsReported) {
    EXPECT_EQ(manager.RegisterPlugPlug(nullptr), CoreErrorCodes::kNullPointer);
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='(plugPlug) == nullptr'"));
}
