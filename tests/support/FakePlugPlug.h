// The host's panel event service, inside the test. It delivers at once.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "PlugPlug.h"

class FakePlugPlug : public PlugPlugService {
public:
    struct Event {
        std::string address;  ///< type, scope, application and extension ("none" for null)
        std::string data;
    };

    FakePlugPlug() : PlugPlugService{&Add, &Dispatch} {}
    FakePlugPlug(const FakePlugPlug&) = delete;
    FakePlugPlug& operator=(const FakePlugPlug&) = delete;

    int32_t answerToListeners = 0;  ///< 0 = success
    std::function<void()> whileAdding;
    std::function<void(const std::string& data)> whileDispatching;
    std::vector<std::string> listenedTo;
    std::vector<Event> events;  ///< dispatched

    std::vector<std::string> TakeMessages() {
        std::vector<std::string> messages;
        for (const Event& event : events)
            messages.push_back(event.data);
        events.clear();
        return messages;
    }

    /// What a panel sends; null for an event without data.
    void Deliver(const char* data) {
        mBuffer = data != nullptr ? data : "";
        const PlugPlugEvent event{"com.vantorix.PanelToPlugin", 1, "HTML", nullptr,
                                  data != nullptr ? mBuffer.c_str() : nullptr};
        mListener(&event, mContext);
    }
    void Deliver(const std::string& data) { Deliver(data.c_str()); }

    PlugPlugEventListener Listener() const { return mListener; }
    void* Context() const { return mContext; }

private:
    static int32_t Add(PlugPlugService* self, const char* type, PlugPlugEventListener listener,
                       void* context) {
        auto* service = static_cast<FakePlugPlug*>(self);
        service->listenedTo.emplace_back(type);
        service->mListener = listener;
        service->mContext = context;
        if (service->whileAdding)
            service->whileAdding();
        return service->answerToListeners;
    }
    static int32_t Dispatch(PlugPlugService* self, const PlugPlugEvent* event) {
        auto* service = static_cast<FakePlugPlug*>(self);
        const char* extension = event->extensionId != nullptr ? event->extensionId : "none";
        service->events.push_back(
            {event->type + ("/" + std::to_string(event->scope)) + "/" + event->appId + "/" + extension,
             event->data});
        if (service->whileDispatching)
            service->whileDispatching(event->data);
        return 0;
    }

    std::string mBuffer;  ///< used again for each delivery, also one from within another
    PlugPlugEventListener mListener = nullptr;
    void* mContext = nullptr;
};
