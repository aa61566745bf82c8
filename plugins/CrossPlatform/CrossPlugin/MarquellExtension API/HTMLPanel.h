// The panel as an HTML extension of the host: messages travel as events of the host's panel event service.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "HostCall.h"
#include "MarquellPanel.h"
#include "PlugPlug.h"

class HTMLPanel : public MarquellPanel {
public:
    /// `plugPlug` is not owned and outlives the panel. Null when it lacks one of its operations.
    static std::unique_ptr<HTMLPanel> Create(PlugPlugService* plugPlug);
    /// The same for a service that has them all. Null stands for none: nothing can be sent then.
    explicit HTMLPanel(PlugPlugService* plugPlug) : mPlugPlug(plugPlug) {}

    /// Has the panel's requests brought here from now on. Once. kNotInitialized when the service refuses.
    ErrorCode RegisterHandler();

    /// There is no socket: 0.
    ErrorCode SelectSocket(bool closeListeningSocket) override;
    uint32_t GetSocketPort() override;
    ErrorCode SendMessage(const std::string& message) override;
    ErrorCode SendFontImages(CFDictionaryRef fontPNGs) override;

private:
    struct FontImage {
        uint32_t fontID;
        std::string location;  ///< URL, empty for none
        std::string doubleResolutionLocation;
    };

    static void EventCallback(const PlugPlugEvent* event, void* context);
    /// Handles the message, after those that are being handled: a host may deliver what a panel answers from
    /// within the sending to it.
    void HandleInTurn(std::string message);
    void QueueFontImages(CFDictionaryRef fontPNGs);

    PlugPlugService* mPlugPlug;
    std::deque<std::string> mRequests;
    Turn mHandling;
    std::vector<FontImage> mPendingFontImages;
};
