#include "NotificationProcessor.h"

#include <algorithm>
#include <array>

#include "FontManagerInterface.h"
#include "MarquellGlobals.h"
#include "NoDestructor.h"
#include "NotificationQueue.h"
#include "Preferences.h"
#include "ScopeExit.h"
#include "TraceLog.h"

namespace {

bool Flag(const PluginNotification& notification, const char* key) {
    return cf::GetBool(notification.payload.get(), key).value_or(false);
}

int FontID(const PluginNotification& notification) {
    return static_cast<int>(
        cf::GetInt64(notification.payload.get(), kPluginNotification_FontActivation_Font_ID).value_or(0));
}

/// Where there was none to work in, which keeps services off, there may be one now. While they are on,
/// InitializeDefaultWorkgroup sees to it.
void ChooseWorkgroupIfNoneIs() {
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
    if (!MarquellGlobals::ArePluginServicesEnabled() && !fontManager.GetDefaultWorkgroupID() &&
        MarquellGlobals::IsLoggedIn() && MarquellGlobals::IsConnectedToCore() &&
        MarquellGlobals::GetSharedVPFInterface()->GetBoolPreference(preferences::EnablePlugin))
        fontManager.HandleSelectWorkgroup();
}

void RefreshWorkgroups() {
    if (HostAppInterface* hostApp = MarquellGlobals::GetSharedHostAppInterface())
        hostApp->OnWorkgroupsChanged();
}

void OnOnlineStateChanged(const PluginNotification& notification) {
    LogMessage(0, ">>> notification: Online state changed to '%s'",
               Flag(notification, kNotificationIsOnlineKey) ? "true" : "false");
}

void OnLoggedInStateChanged(const PluginNotification& notification) {
    const bool isLoggedIn = Flag(notification, kNotificationIsLoggedInKey);
    LogMessage(0, ">>> notification: Logged-in state changed to '%s'", isLoggedIn ? "true" : "false");
    MarquellGlobals::SetLoggedIn(isLoggedIn);
    MarquellGlobals::SetPluginServicesEnabled(isLoggedIn);
    MarquellGlobals::SetConnectedToCore(true);
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
    if (isLoggedIn) {
        fontManager.ForgetWorkgroupThatIsGone();  // it may have been somebody else's
        fontManager.HandleSelectWorkgroup();
    } else {  // nothing to choose from
        MarquellGlobals::GetSharedVPFInterface()->ShowMessageBox(message_boxes::kNotLoggedIn);
    }
    RefreshWorkgroups();
}

void OnPanelDataChanged(const PluginNotification&) {
    LogMessage(0, ">>> notification: Data changed");
}

void OnWorkgroupsChanged(const PluginNotification&) {
    LogMessage(0, ">>> notification: Workgroups changed");
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
    fontManager.ForgetWorkgroupThatIsGone();
    ChooseWorkgroupIfNoneIs();
    fontManager.InitializeDefaultWorkgroup();
    RefreshWorkgroups();
}

void OnAgentShutdown(const PluginNotification&) {
    LogMessage(0, ">>> notification: Agent shut down");
    CoreAgentInterface* const agent = FontManagerInterface::GetSharedInstance().GetFontManager();
    if (agent == nullptr || agent->CanReachAgent())  // another one has taken its place
        return;
    LogMessage(0, "Disabling plugin functionality");
    agent->LoseServices();
    LogMessage(0, "Informing user that plugin functionality will be disabled...");
    MarquellGlobals::GetSharedVPFInterface()->ShowMessageBox(message_boxes::kAgentNotRunning);
}

void OnFontActivated(const PluginNotification& notification) {
    LogMessage(0, ">>> notification: font %d activated", FontID(notification));
}

void OnFontDeactivated(const PluginNotification& notification) {
    LogMessage(0, ">>> notification: font %d deactivated", FontID(notification));
}

void OnBulkReplicationProgress(const PluginNotification&) {
    MarquellGlobals::SetBulkReplicationRunning(true);
}

void OnBulkReplicationStopped(const PluginNotification&) {
    MarquellGlobals::SetBulkReplicationRunning(false);
    ChooseWorkgroupIfNoneIs();
    RefreshWorkgroups();
}

void OnIncrementalReplicationProgress(const PluginNotification&) {
    MarquellGlobals::SetIncrementalReplicationRunning(true);
}

void OnIncrementalReplicationStopped(const PluginNotification&) {
    MarquellGlobals::SetIncrementalReplicationRunning(false);
    ChooseWorkgroupIfNoneIs();
    RefreshWorkgroups();
}

struct Reaction {
    std::string_view name;
    void (*react)(const PluginNotification& notification);
};

// Names that are not here concern the panels alone.
constexpr std::array<Reaction, 11> kReactions{
    {{kPluginNotification_OnlineStateChanged, OnOnlineStateChanged},
     {kPluginNotification_LoggedInStateChanged, OnLoggedInStateChanged},
     {kPluginNotification_PanelDataChanged, OnPanelDataChanged},
     {kPluginNotification_WorkgroupsChanged, OnWorkgroupsChanged},
     {kPluginNotification_AgentShutdown, OnAgentShutdown},
     {kPluginNotification_FontActivated, OnFontActivated},
     {kPluginNotification_FontDeactivated, OnFontDeactivated},
     {kPluginNotification_BulkReplicationProgress, OnBulkReplicationProgress},
     {kPluginNotification_BulkReplicationStopped, OnBulkReplicationStopped},
     {kPluginNotification_IncrementalReplicationProgress, OnIncrementalReplicationProgress},
     {kPluginNotification_IncrementalReplicationStopped, OnIncrementalReplicationStopped}}};

bool ConcernsPanels(std::string_view name) {
    return std::any_of(std::begin(kReportKinds), std::end(kReportKinds), [&](const ReportKind& kind) {
        return kind.name == name && kind.hearers == ReportHearers::kCoreAndPanels;
    });
}

}  // namespace

NotificationProcessor& NotificationProcessor::GetSharedInstance() {
    static NoDestructor<NotificationProcessor> shared;
    return *shared;
}

ErrorCode NotificationProcessor::ProcessNotifications() {
    const TurnHolder turn(mProcessing);
    if (!turn)
        return CoreErrorCodes::kSuccess;
    ErrorCode result = CoreErrorCodes::kSuccess;
    NotificationQueue& queue = NotificationQueue::GetSharedInstance();
    // One by one: a reaction may bring the agent back, and what waits of its end is dropped then.
    for (size_t left = queue.Count(); left > 0; --left) {
        const auto notification = queue.TakeNext();
        if (!notification)
            break;
        if (const ErrorCode code = Process(*notification))
            result = code;
    }
    return result;
}

ErrorCode NotificationProcessor::Process(const PluginNotification& notification) {
    for (const Reaction& reaction : kReactions) {
        if (reaction.name == notification.name)
            reaction.react(notification);
    }
    return mReceiver != nullptr && ConcernsPanels(notification.name) ? mReceiver->Receive(notification)
                                                                     : CoreErrorCodes::kSuccess;
}
