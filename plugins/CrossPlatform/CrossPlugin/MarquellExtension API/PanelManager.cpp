#include "PanelManager.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <type_traits>

#include "FontID.h"
#include "HTMLPanel.h"
#include "NoDestructor.h"
#include "PanelLimits.h"
#include "PanelLog.h"
#include "PluginNotifications.h"
#include "ScopeExit.h"
#include "TraceLog.h"
#include "platform/Clock.h"

namespace {

bool Flag(CFDictionaryRef payload, const char* key) {
    return cf::GetBool(payload, key).value_or(false);
}

struct Forward {
    std::string_view name;
    ErrorCode (*forward)(PanelManager& panels, CFDictionaryRef payload);
};

/// A push that takes the payload or nothing.
template <auto Push>
ErrorCode ForwardTo(PanelManager& panels, CFDictionaryRef payload) {
    if constexpr (std::is_invocable_v<decltype(Push), PanelManager&, CFDictionaryRef>)
        return (panels.*Push)(payload);
    else
        return (panels.*Push)();
}

template <auto Push>
ErrorCode ForwardFont(PanelManager& panels, CFDictionaryRef payload) {
    const auto fontID = FontIDIn(payload, kPluginNotification_FontActivation_Font_ID);
    return fontID ? (panels.*Push)(*fontID) : CoreErrorCodes::kSuccess;
}

ErrorCode ForwardOnlineState(PanelManager& panels, CFDictionaryRef payload) {
    return panels.PushOnlineStateChangedNotification(Flag(payload, kNotificationIsOnlineKey));
}

ErrorCode ForwardLoggedInState(PanelManager& panels, CFDictionaryRef payload) {
    return panels.PushLoggedInStateChangedNotification(
        static_cast<int32_t>(cf::GetInt64(payload, kNotificationServerTypeKey).value_or(0)));
}

ErrorCode ForwardWebFontsEnabled(PanelManager& panels, CFDictionaryRef payload) {
    return panels.PushGoogleWebFontsEnabledNotificaton(Flag(payload, kNotificationIsEnabledKey));
}

ErrorCode ForwardEnabled(PanelManager& panels, CFDictionaryRef payload) {
    return panels.SetEnabled(Flag(payload, kNotificationIsEnabledKey));
}

ErrorCode ForwardFontImages(PanelManager& panels, CFDictionaryRef payload) {
    return panels.SendFontImages(cf::GetDictionary(payload, kPluginNotification_FontPNGs));
}

using Panels = PanelManager;

#define FORWARD_FONT(what, id, report) \
    {kPluginNotification_##report, ForwardFont<&Panels::Push##what##Notification>},
#define FORWARD(what, id, report) \
    {kPluginNotification_##report, ForwardTo<&Panels::Push##what##Notification>},
// The tasks of the font manager are nothing that panels show.
constexpr Forward kForwards[] = {
    PANEL_FONT_NOTIFICATIONS(FORWARD_FONT) PANEL_PROGRESS_NOTIFICATIONS(FORWARD)
        PANEL_PLAIN_NOTIFICATIONS(FORWARD)  //
    {kPluginNotification_OnlineStateChanged, ForwardOnlineState},
    {kPluginNotification_LoggedInStateChanged, ForwardLoggedInState},
    {kPluginNotification_UserPermissionsChanged, ForwardTo<&Panels::PushDataChangedNotification>},
    {kPluginNotification_GoogleWebFontsEnabled, ForwardWebFontsEnabled},
    {kPluginNotification_PreviewPNGsRendered, ForwardFontImages},
    {kPluginNotification_Enabled, ForwardEnabled}};
#undef FORWARD_FONT
#undef FORWARD

}  // namespace

PanelManager& PanelManager::GetSharedInstance() {
    static NoDestructor<PanelManager> shared;
    return *shared;
}

ErrorCode PanelManager::RegisterPlugPlug(void* plugPlug) {
    RETURN_IF_NULL(plugPlug);
    if (mRegistered)
        return CoreErrorCodes::kSuccess;
    const TurnHolder turn(mRegistering);
    if (!turn)  // a service that comes back here from within
        return CoreErrorCodes::kNotInitialized;
    auto htmlPanel = HTMLPanel::Create(static_cast<PlugPlugService*>(plugPlug));
    RETURN_IF_NULL(htmlPanel);
    mPanels.reserve(mPanels.size() + 1);  // once it is registered, nothing may keep the panel from staying
    RETURN_IF_FAILED(htmlPanel->RegisterHandler());
    AddPanel(std::move(htmlPanel));
    mRegistered = true;
    return CoreErrorCodes::kSuccess;
}

bool PanelManager::TryRegisterPlugPlug(void* plugPlug) {
    if (mRegistered || mRegistering.IsTaken() || mGaveUp || plugPlug == nullptr)
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
    if (mAttempts < panel_limits::kMostAttempts) {
        const int32_t doublings = std::min(mAttempts - 1, panel_limits::kMostDoublings);
        mNextAttemptTick = now + (panel_limits::kFirstWait << doublings);
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
    // By index: a panel that calls the host may bring another one about.
    for (size_t index = 0; index < mPanels.size(); ++index) {
        const ErrorCode code = call(*mPanels[index]);
        if (code != CoreErrorCodes::kSuccess) {
            ReportFailure(kLogCategory, CheckLocation{expression, __FILE__, line}, code);
            return code;
        }
    }
    return CoreErrorCodes::kSuccess;
}

/// Makes the call to every panel; its text stands in the report of the first that fails.
#define TELL_PANELS(call) \
    TellPanels("(*it)->" #call, __LINE__, [&](MarquellPanel& panel) { return panel.call; })

ErrorCode PanelManager::SelectSocket(bool closeListeningSocket) {
    return TELL_PANELS(SelectSocket(closeListeningSocket));
}

ErrorCode PanelManager::SetEnabled(bool enabled) {
    return TELL_PANELS(SetEnabled(enabled));
}

ErrorCode PanelManager::PopNotifications() {
    return TELL_PANELS(PopNotifications());
}

ErrorCode PanelManager::PushLoggedInStateChangedNotification(int32_t serverType) {
    return TELL_PANELS(PushLoggedInStateChangedNotification(serverType));
}

ErrorCode PanelManager::PushOnlineStateChangedNotification(bool isOnline) {
    return TELL_PANELS(PushOnlineStateChangedNotification(isOnline));
}

ErrorCode PanelManager::PushGoogleWebFontsEnabledNotificaton(bool enabled) {
    return TELL_PANELS(PushGoogleWebFontsEnabledNotificaton(enabled));
}

#define FORWARD_FONT_PUSH(what, id, report)                             \
    ErrorCode PanelManager::Push##what##Notification(uint32_t fontID) { \
        return TELL_PANELS(Push##what##Notification(fontID));           \
    }
#define FORWARD_PROGRESS_PUSH(what, id, report)                                 \
    ErrorCode PanelManager::Push##what##Notification(CFDictionaryRef details) { \
        return TELL_PANELS(Push##what##Notification(details));                  \
    }
#define FORWARD_PUSH(what, id, report)                   \
    ErrorCode PanelManager::Push##what##Notification() { \
        return TELL_PANELS(Push##what##Notification());  \
    }
PANEL_FONT_NOTIFICATIONS(FORWARD_FONT_PUSH)
PANEL_PROGRESS_NOTIFICATIONS(FORWARD_PROGRESS_PUSH)
PANEL_PLAIN_NOTIFICATIONS(FORWARD_PUSH)
#undef FORWARD_FONT_PUSH
#undef FORWARD_PROGRESS_PUSH
#undef FORWARD_PUSH

ErrorCode PanelManager::SendFontImages(CFDictionaryRef fontPNGs) {
    return TELL_PANELS(SendFontImages(fontPNGs));
}

#undef TELL_PANELS

uint32_t PanelManager::GetSocketPort() {
    for (const auto& panel : mPanels) {
        if (const uint32_t port = panel->GetSocketPort())
            return port;
    }
    return 0;
}

ErrorCode PanelManager::Receive(const PluginNotification& notification) {
    const auto found = std::find_if(std::begin(kForwards), std::end(kForwards),
                                    [&](const Forward& each) { return each.name == notification.name; });
    return found != std::end(kForwards) ? found->forward(*this, notification.payload.get())
                                        : CoreErrorCodes::kSuccess;
}

void PanelManager::Close() {
    for (const auto& panel : mPanels)
        panel->Close();
}
