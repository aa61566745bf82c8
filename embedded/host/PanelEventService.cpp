#include "PanelEventService.h"

#include <exception>
#include <utility>
#include <vector>

namespace {

constexpr int32_t kSuccess = 0;
constexpr int32_t kFailure = 1;
constexpr int32_t kApplicationScope = 1;

}  // namespace

PanelEventService::PanelEventService(Receiver receiver)
    : mService{{[](PlugPlugService* self, const char* type, PlugPlugEventListener listener, void* context) {
                    return OwnerOf(self).AddListener(type, {listener, context});
                },
                [](PlugPlugService* self, const PlugPlugEvent* event) {
                    return event != nullptr ? OwnerOf(self).Dispatch(*event) : kFailure;
                }},
               this},
      mReceiver(std::move(receiver)) {}

PanelEventService& PanelEventService::OwnerOf(PlugPlugService* service) {
    return *static_cast<Service*>(service)->owner;
}

int32_t PanelEventService::AddListener(const char* type, Listener listener) {
    if (type == nullptr || listener.listener == nullptr)
        return kFailure;
    if (mRefusals > 0) {
        --mRefusals;
        return kFailure;
    }
    mListeners.emplace(type, listener);
    return kSuccess;
}

int32_t PanelEventService::Dispatch(const PlugPlugEvent& event) {
    try {
        mReceiver(event);
        return kSuccess;
    } catch (const std::exception&) {  // nothing is thrown into the core
        return kFailure;
    }
}

bool PanelEventService::Send(const std::string& type, const std::string& data) {
    // A listener may register others.
    std::vector<Listener> listeners;
    const auto [first, last] = mListeners.equal_range(type);
    for (auto each = first; each != last; ++each)
        listeners.push_back(each->second);
    const PlugPlugEvent event{type.c_str(), kApplicationScope, "HTML", "", data.c_str()};
    for (const Listener& each : listeners)
        each.listener(&event, each.context);
    return !listeners.empty();
}
