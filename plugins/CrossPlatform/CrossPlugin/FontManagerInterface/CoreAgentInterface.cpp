#include "CoreAgentInterface.h"

#include <utility>

#include "AgentLauncher.h"
#include "HostPatience.h"
#include "MarquellGlobals.h"
#include "NotificationProcessor.h"
#include "NotificationQueue.h"
#include "ScopeExit.h"
#include "TraceLog.h"

namespace {

constexpr int kAutomaticRelaunches = 1;
constexpr int kRelaunchSucceeded = 0;
constexpr int kRelaunchFailed = 1;
constexpr int kRelaunchFoundNoAgent = 2;

bool IsAgentGone(ErrorCode code) {
    return code == GAgentIF::kShutdown || code == GIPCClient::kServiceUnavailable;
}

const char* AgentGoneName(ErrorCode code) {
    return code == GAgentIF::kShutdown ? "GAgentIF_kShutdown" : "GIPCClient_kServiceUnavailable";
}

void DisablePluginServices() {
    MarquellGlobals::SetPluginServicesEnabled(false);
    MarquellGlobals::SetConnectedToCore(false);
}

}  // namespace

int CoreAgentInterface::LaunchZephyrinAgentIfNeeded() {
    int result = kRelaunchFailed;
    const TraceScope trace(
        [&] {
            LogMessage(-1, "Exiting CoreAgentInterface::LaunchZephyrinAgentIfNeeded, returning %d", result);
        },
        "Entering CoreAgentInterface::LaunchZephyrinAgentIfNeeded");
    const bool isFound = AgentLauncher::FindAndLaunchPellwick(nullptr) != GZephyrinConfig::kAgentNotFound;
    return result = isFound ? kRelaunchSucceeded : kRelaunchFoundNoAgent;
}

int CoreAgentInterface::RelaunchZephyrinAgent() {
    int result = kRelaunchFailed;
    const TraceScope trace(
        [&] { LogMessage(-1, "Exiting CoreAgentInterface::RelaunchZephyrinAgent, returning %d", result); },
        "Entering CoreAgentInterface::RelaunchZephyrinAgent");
    result = LaunchZephyrinAgentIfNeeded();
    const auto reset = VPILoader::GetSharedInstance()->pfResetPluginFacadeInstance;
    if (result == kRelaunchSucceeded && reset != nullptr) {
        reset();
        OnAgentBack();
    }
    return result;
}

void CoreAgentInterface::OnAgentBack() {
    HostPatience::NoteRecovery();
    ListenForNotifications();
    // The report that the old agent has ended is out of date.
    NotificationQueue::GetSharedInstance().Drop(kPluginNotification_AgentShutdown);
}

bool CoreAgentInterface::MayLaunch() {
    if (mIsQuitting && std::exchange(mHasLaunchedWhileQuitting, true))
        return false;
    return HostPatience::AllowsLaunch();
}

bool CoreAgentInterface::RelaunchWithUserRetry() {
    while (MayLaunch()) {
        const int result = RelaunchZephyrinAgent();
        if (result != kRelaunchFailed && result != kRelaunchFoundNoAgent)
            return true;
        if (CanReachAgent()) {  // somebody else has started it
            OnAgentBack();
            return true;
        }
        if (mIsQuitting)
            return false;
        const MessageBoxStrings question = MarquellGlobals::HostAppIsAfterEffects()
                                               ? message_boxes::kRelaunchAgentFromExtension
                                               : message_boxes::kRelaunchAgent;
        if (!MarquellGlobals::GetSharedVPFInterface()->AskYesNo(question))
            return false;
        HostPatience::Renew();
    }
    return false;
}

void CoreAgentInterface::LoseServices() {
    mHasLostServices = mHasLostServices || MarquellGlobals::IsConnectedToCore();
    DisablePluginServices();
}

void CoreAgentInterface::DisableAndNotify() {
    LoseServices();
    if (!mIsQuitting)
        MarquellGlobals::GetSharedVPFInterface()->ShowMessageBox(message_boxes::kAgentNotRunning);
}

ErrorCode CoreAgentInterface::GiveUp(ErrorCode code) {
    LogMessage(0, "Agent not running, done attempting to relaunch.  Disabling plugin functionality");
    LoseServices();
    mHasGivenUp = true;
    return code;
}

bool CoreAgentInterface::OnUserAction() {
    if (mIsQuitting || IsRecovering())
        return false;
    mHasGivenUp = false;
    bool disablesDialogs = false;
    if (!mHasLostServices || !CanReachAgent() ||
        !MarquellGlobals::RunningInCompatibleHostApp(disablesDialogs))
        return false;
    OnAgentBack();
    const bool isLoggedIn = IsLoggedIn();
    if (!mIsReachable)
        return false;
    LogMessage(0, "The agent can be reached again.  Enabling plugin functionality");
    ServicesAreBack();
    MarquellGlobals::SetLoggedIn(isLoggedIn);
    MarquellGlobals::SetPluginServicesEnabled(isLoggedIn);
    MarquellGlobals::SetConnectedToCore(true);
    if (HostAppInterface* hostApp = MarquellGlobals::GetSharedHostAppInterface())
        hostApp->OnWorkgroupsChanged();
    return true;
}

bool CoreAgentInterface::IsReachable() {
    return mIsReachable || CanReachAgent();
}

bool CoreAgentInterface::CanReachAgent() {
    // One that was silent the last time is given a moment only.
    if (mIsReachable ? !HostPatience::AllowsRequest() : !HostPatience::AllowsQuestion())
        return false;
    bool isRunning = false;
    const ErrorCode code = CallOnce(CallOf(&PluginFunctionTable::pfGetIsCoreAgentProcessRunning, &isRunning));
    mIsReachable = code == CoreErrorCodes::kSuccess && isRunning;
    return mIsReachable;
}

bool CoreAgentInterface::IsUndelivered(ErrorCode code) {
    return IsAgentGone(code) || code == GIPCClient::kReplyTimeout;
}

ErrorCode CoreAgentInterface::CallOnce(const AgentCall& call) {
    const auto getFacade = VPILoader::GetSharedInstance()->pfGetPluginFacadeInstance;
    if (getFacade == nullptr)
        return CoreErrorCodes::kSuccess;
    PluginFacadeRef facade = nullptr;
    if (const ErrorCode code = getFacade(&facade))
        return code;
    return call(facade);
}

ErrorCode CoreAgentInterface::CallAgent(const AgentCall& call) {
    if (!HostPatience::AllowsRequest()) {
        LogMessage(0, "The host has waited for too long already, the agent is not asked");
        return GIPCClient::kReplyTimeout;
    }
    int automaticRelaunchesLeft = kAutomaticRelaunches;
    bool mayReconnect = true;
    for (;;) {
        const ErrorCode code = CallOnce(call);
        mIsReachable = !IsAgentGone(code);
        if (mIsReachable)
            return code;
        LogMessage(0, "Agent not running:  error code = %s", AgentGoneName(code));
        // The host may call from behind a dialog of the call that is bringing the agent back.
        if (IsRecovering() || mHasGivenUp)
            return code;
        if (std::exchange(mayReconnect, false) && CanReachAgent()) {
            LogMessage(0, "Agent can be reached again, retrying command");
            HostPatience::NoteRecovery();
            continue;
        }
        if (!HostPatience::AllowsLaunch()) {
            LogMessage(0, "The host has waited for too long already, the agent is not started");
            return GiveUp(code);
        }
        const TurnHolder recovery(mRecovery);
        if (automaticRelaunchesLeft > 0) {
            LogMessage(0, "Agent not running, automatically relaunching agent and retrying command");
            --automaticRelaunchesLeft;
        } else {
            DisableAndNotify();
            LogMessage(0, "Agent not running, relaunching agent and retrying command");
        }
        if (!RelaunchWithUserRetry())
            return GiveUp(code);
    }
}

bool CoreAgentInterface::Ask(uint32_t (*PluginFunctionTable::*function)(PluginFacadeRef, bool*),
                             bool otherwise) {
    bool answer = otherwise;
    const ErrorCode code = Call(function, &answer);
    return code == CoreErrorCodes::kSuccess ? answer : otherwise;
}

void CoreAgentInterface::InitializeCoreAgent() {
    const TraceScope trace([] { LogMessage(-1, "Exiting CoreAgentInterface::InitializeCoreAgent"); },
                           "Entering CoreAgentInterface::InitializeCoreAgent");
    if (!IsAgentProcessRunning())
        return;
    const ErrorCode code = InitializeSdk();
    if (code == CoreErrorCodes::kSuccess) {
        LogMessage(0, "GZephyrinSdk::Initialize SUCCEEDED.");
        ListenForNotifications();
        MarquellGlobals::SetPluginServicesEnabled(true);
        MarquellGlobals::SetConnectedToCore(true);
    } else {
        ReportInitializationFailure(code);
    }
}

ErrorCode CoreAgentInterface::InitializeSdk() {
    const std::string hostApp = MarquellGlobals::GetPluginHostApp();
    const std::string version = MarquellGlobals::GetPluginVersion();
    return CallOnce(CallOf(&PluginFunctionTable::pfInitAppInstance, hostApp.c_str(), version.c_str()));
}

void CoreAgentInterface::ReportInitializationFailure(ErrorCode code) {
    if (code == GZephyrinConfig::kAgentNotFound) {
        LogMessage(0, "Core Agent process not found");
        DisableAndNotify();
        return;
    }
    if (code == GZephyrinConfig::kAgentRunningInWrongMode) {
        LogMessage(0, "Core Agent process running in wrong mode");
    } else if (code == GZephyrinSdk::kVaultInUse) {
        LogMessage(0, "GZephyrinSdk::Initialize FAILED, error code = %d (GZephyrinSdk::kVaultInUse).",
                   static_cast<int>(code));
        MarquellGlobals::GetSharedVPFInterface()->ShowMessageBox(message_boxes::kVaultInUse);
    } else {
        const bool isInvalidVault = code == GZephyrinSdk::kInvalidVault;
        LogMessage(0, "GZephyrinSdk::Initialize FAILED, error code = %d (%s).", static_cast<int>(code),
                   isInvalidVault ? "GZephyrinSdk::kInvalidVault" : "???");
        MarquellGlobals::GetSharedVPFInterface()->ShowMessageBox(
            isInvalidVault ? message_boxes::kInvalidVault : message_boxes::kAgentFailedToInitialize);
    }
    LogMessage(0,
               "Disabling plug-in services in CoreAgentInterface::InitializeCoreAgent() because of SDK "
               "initialization error %d.",
               static_cast<int>(code));
    DisablePluginServices();
}

bool CoreAgentInterface::IsAgentProcessRunning() {
    bool isRunning = false;
    const ErrorCode code = CallOnce(CallOf(&PluginFunctionTable::pfGetIsCoreAgentProcessRunning, &isRunning));
    mIsReachable = code == CoreErrorCodes::kSuccess && isRunning;
    if (mIsReachable)
        return true;
    LogMessage(0, "Core Agent process not running; rc=%d, isRunning=%d, sizeof(isRunning)=%d",
               static_cast<int>(code), isRunning, static_cast<int>(sizeof isRunning));
    DisableAndNotify();
    return false;
}

void CoreAgentInterface::ListenForNotifications() {
    const ErrorCode code =
        CallOnce(CallOf(&PluginFunctionTable::pfRegisterForNotifications, CoreAgentNotificationCallback));
    if (code != CoreErrorCodes::kSuccess)
        LogMessage(0, "WARNING:  changes at the font manager are not heard of; error code = %d",
                   static_cast<int>(code));
}

ErrorCode CoreAgentInterface::ProcessNotifications() {
    // Behind the question whether to start the agent again, its end is no news.
    return IsRecovering() ? CoreErrorCodes::kSuccess
                          : NotificationProcessor::GetSharedInstance().ProcessNotifications();
}

void CoreAgentInterface::CleanUpOnShutdown() {
    if (mHasActivatedFonts && !CanReachAgent() && MayLaunch())
        LaunchZephyrinAgentIfNeeded();
    if (const auto cleanUp = VPILoader::GetSharedInstance()->pfCleanUpOnShutdown)
        cleanUp();
}
