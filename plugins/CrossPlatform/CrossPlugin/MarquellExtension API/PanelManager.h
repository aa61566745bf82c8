// The owner of the panels that the plug-in shows inside the host: registers them with the host's panel event
// service, and hands to all of them what any of them has to know.
//
// Main thread, except for the creation of the shared instance.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ErrorCodes.h"
#include "MarquellPanel.h"

class PanelManager {
public:
    /// Made on first use, lives to process end. Any thread.
    static PanelManager& GetSharedInstance();

    PanelManager() = default;
    PanelManager(const PanelManager&) = delete;
    PanelManager& operator=(const PanelManager&) = delete;

    /// Registers the HTML panels with the host's service. 0 also when that was done before; kNullPointer for
    /// null. In this version there are no HTML panels: kNotImplemented.
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

    /// The port of the first panel that has one, else 0.
    uint32_t GetSocketPort();

private:
    template <class Call>
    ErrorCode TellPanels(const char* expression, int line, Call call);
    void PutOffNextAttempt(uint32_t now);

    std::vector<std::unique_ptr<MarquellPanel>> mPanels;
    bool mRegistered = false;
    bool mGaveUp = false;
    int32_t mAttempts = 0;
    uint32_t mNextAttemptTick = 0;  ///< milliseconds as of the system's tick counter; 0 for no wait
};
