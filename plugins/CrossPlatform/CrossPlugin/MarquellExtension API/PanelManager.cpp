#include "PanelManager.h"

#include <algorithm>

#include "FailureReport.h"
#include "TraceLog.h"
#include "platform/Clock.h"

namespace {

constexpr char kLogCategory[] = "Miscellaneous";
constexpr int32_t kMostAttempts = 12;
constexpr uint32_t kFirstWait = 500;  // milliseconds; doubled with every attempt, at most this often:
constexpr int32_t kMostDoublings = 4;

}  // namespace

PanelManager& PanelManager::GetSharedInstance() {
    static PanelManager& shared = *std::make_unique<PanelManager>().release();
    return shared;
}

ErrorCode PanelManager::RegisterPlugPlug(void* plugPlug) {
    RETURN_IF_NULL(plugPlug);
    return mRegistered ? CoreErrorCodes::kSuccess : CoreErrorCodes::kNotImplemented;
}

bool PanelManager::TryRegisterPlugPlug(void* plugPlug) {
    if (mRegistered || mGaveUp || plugPlug == nullptr)
        return mRegistered;
    const uint32_t now = platform::Current<platform::Clock>().TickCount();
    if (mNextAttemptTick != 0 && now < mNextAttemptTick)
        return false;
    ++mAttempts;
    if (RegisterPlugPlug(plugPlug) == CoreErrorCodes::kSuccess)
        return true;
    PutOffNextAttempt(now);
    return false;
}

void PanelManager::PutOffNextAttempt(uint32_t now) {
    if (mAttempts < kMostAttempts) {
        mNextAttemptTick = now + (kFirstWait << std::min(mAttempts - 1, kMostDoublings));
        return;
    }
    mGaveUp = true;
    LogMessage(0, "Gave up registering PlugPlug after %d attempts (PlugPlugSetup may not be ready)",
               mAttempts);
}

void PanelManager::AddPanel(std::unique_ptr<MarquellPanel> panel) {
    mPanels.push_back(std::move(panel));
}

template <class Call>
ErrorCode PanelManager::TellPanels(const char* expression, int line, Call call) {
    for (const auto& panel : mPanels) {
        const ErrorCode code = call(*panel);
        if (code != CoreErrorCodes::kSuccess) {
            ReportFailure(kLogCategory, CheckLocation{expression, __FILE__, line}, code);
            return code;
        }
    }
    return CoreErrorCodes::kSuccess;
}

ErrorCode PanelManager::SelectSocket(bool closeListeningSocket) {
    return TellPanels("(*it)->SelectSocket(closeListeningSocket)", __LINE__,
                      [=](MarquellPanel& panel) { return panel.SelectSocket(closeListeningSocket); });
}

ErrorCode PanelManager::SetEnabled(bool enabled) {
    return TellPanels("(*it)->SetEnabled(enabled)", __LINE__,
                      [=](MarquellPanel& panel) { return panel.SetEnabled(enabled); });
}

ErrorCode PanelManager::PopNotifications() {
    return TellPanels("(*it)->PopNotifications()", __LINE__,
                      [](MarquellPanel& panel) { return panel.PopNotifications(); });
}

uint32_t PanelManager::GetSocketPort() {
    for (const auto& panel : mPanels) {
        if (const uint32_t port = panel->GetSocketPort())
            return port;
    }
    return 0;
}
