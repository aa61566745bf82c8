// The owner of the panels that the plug-in shows inside the host: registers them with the host's panel event
// service, and hands to all of them what any of them has to know.
//
// Main thread, except for the creation of the shared instance.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ErrorCodes.h"
#include "HostCall.h"
#include "MarquellPanel.h"
#include "NotificationProcessor.h"

class PanelManager : public NotificationReceiver {
public:
    /// Made on first use, lives to process end. Any thread.
    static PanelManager& GetSharedInstance();

    PanelManager() = default;
    PanelManager(const PanelManager&) = delete;
    PanelManager& operator=(const PanelManager&) = delete;

    /// Makes the HTML panel and registers it with the host's service, a PlugPlugService that outlives the
    /// library. 0 also when that was done before; kNullPointer for null, kNotInitialized when the service
    /// refuses.
    ErrorCode RegisterPlugPlug(void* plugPlug);
    /// The same from the host's idle loop, whose service may take a while to be ready: attempts are made at
    /// growing intervals, and no more after the twelfth failure. Whether the panels are registered.
    bool TryRegisterPlugPlug(void* plugPlug);
    /// Takes over a panel, which hears of everything from now on, after those that were added before.
    void AddPanel(std::unique_ptr<MarquellPanel> panel);

    // What is told to every panel, in order. The first one that fails ends it with its code.
    ErrorCode SelectSocket(bool closeListeningSocket);
    ErrorCode SetEnabled(bool enabled);
    ErrorCode PopNotifications();

    ErrorCode PushLoggedInStateChangedNotification(int32_t serverType);
    ErrorCode PushOnlineStateChangedNotification(bool isOnline);
    ErrorCode PushGoogleWebFontsEnabledNotificaton(bool enabled);
#define DECLARE_FONT_PUSH(what, id, report) ErrorCode Push##what##Notification(uint32_t fontID);
#define DECLARE_PROGRESS_PUSH(what, id, report) ErrorCode Push##what##Notification(CFDictionaryRef details);
#define DECLARE_PUSH(what, id, report) ErrorCode Push##what##Notification();
    PANEL_FONT_NOTIFICATIONS(DECLARE_FONT_PUSH)
    PANEL_PROGRESS_NOTIFICATIONS(DECLARE_PROGRESS_PUSH)
    PANEL_PLAIN_NOTIFICATIONS(DECLARE_PUSH)
#undef DECLARE_FONT_PUSH
#undef DECLARE_PROGRESS_PUSH
#undef DECLARE_PUSH
    ErrorCode SendFontImages(CFDictionaryRef fontPNGs);

    /// Tells the panels what the font manager's agent reported.
    ErrorCode Receive(const PluginNotification& notification) override;

    /// The host quits: panels are not served any more, and the files that they were given are removed. The
    /// panels themselves stay, since the host's service may still call them.
    void Close();

    /// The port of the first panel that has one, else 0.
    uint32_t GetSocketPort();

private:
    template <class Call>
    ErrorCode TellPanels(const char* expression, int line, Call call);
    void PutOffNextAttempt(uint32_t now);

    std::vector<std::unique_ptr<MarquellPanel>> mPanels;
    Turn mRegistering;
    bool mRegistered = false;
    bool mGaveUp = false;
    int32_t mAttempts = 0;
    uint32_t mNextAttemptTick = 0;  ///< milliseconds as of the system's tick counter; 0 for no wait
};
