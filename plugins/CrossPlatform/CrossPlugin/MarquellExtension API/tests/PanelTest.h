// A panel that is registered with a host's service, and connected to a font manager that does as it is told.
#pragma once

#include "FakePlugPlug.h"
#include "FontManagerWorld.h"
#include "HTMLPanel.h"

/// A panel whose messages arrive as long as the test says so.
class RecordingPanel : public MarquellPanel {
public:
    ErrorCode SelectSocket(bool close) override { return SendMessage(close ? "close" : "select"); }
    uint32_t GetSocketPort() override { return port; }
    ErrorCode SendFontImages(CFDictionaryRef images) override {
        return SendMessage(std::to_string(cf::Count(images)) + " images");
    }
    ErrorCode SendMessage(const std::string& message) override {
        if (messagesUntilFailure-- == 0)
            return CoreErrorCodes::kNotFound;
        sent.push_back(message);
        if (whileSending)
            whileSending();
        return 0;
    }

    uint32_t port = 0;
    int messagesUntilFailure = -1;
    std::function<void()> whileSending;
    std::vector<std::string> sent;
};

class PanelTest : public FontManagerWorld {
protected:
    PanelTest() {
        EXPECT_TRUE(MakeFunctional());
        EXPECT_EQ(panel.RegisterHandler(), 0u);
        Forget();
    }

    /// The replies to one request.
    std::vector<std::string> Send(const std::string& message) {
        service.Deliver(message);
        return service.TakeMessages();
    }
    /// Forgets what was called, sent and logged.
    void Forget() {
        library.panelCalls.clear();
        service.events.clear();
        trace.Clear();
    }

    FakePlugPlug service;
    HTMLPanel panel{&service};
};
