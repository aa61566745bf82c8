// A panel whose messages arrive as long as the test says so.
#pragma once

#include <functional>

#include "MarquellPanel.h"

class RecordingPanel : public MarquellPanel {
public:
    uint32_t port = 0;
    int messagesUntilFailure = -1;
    std::function<void()> whileSending;
    std::vector<std::string> sent;

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
};
