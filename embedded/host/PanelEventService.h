// The panel event service of this host: events between the core and panels, all in this process.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "PlugPlug.h"

/// The type of the events with which panels send their messages.
inline constexpr char kPanelToPluginEvent[] = "com.vantorix.PanelToPlugin";

/// Main thread. Outlives every call of the core that it is handed to.
class PanelEventService {
public:
    using Receiver = std::function<void(const PlugPlugEvent& event)>;

    /// `receiver` gets every event that the core dispatches, from within the call that dispatches it.
    explicit PanelEventService(Receiver receiver);
    PanelEventService(const PanelEventService&) = delete;
    PanelEventService& operator=(const PanelEventService&) = delete;

    /// What RegisterPlugPlug and TryRegisterPlugPlug take.
    PlugPlugService* Handle() { return &mService; }
    /// Refuses so many registrations from now on, as a host does that is not ready for panels yet.
    void RefuseNext(uint32_t count) { mRefusals = count; }
    /// Sends an event as a panel does; false when nobody listens for its type.
    bool Send(const std::string& type, const std::string& data);

private:
    struct Service : PlugPlugService {
        PanelEventService* owner;
    };
    struct Listener {
        PlugPlugEventListener listener;
        void* context;
    };

    static PanelEventService& OwnerOf(PlugPlugService* service);
    int32_t AddListener(const char* type, Listener listener);
    int32_t Dispatch(const PlugPlugEvent& event);

    Service mService;
    Receiver mReceiver;
    std::multimap<std::string, Listener> mListeners;
    uint32_t mRefusals = 0;
};
