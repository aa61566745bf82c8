#include "CoreAgentInterface.h"

#include "AgentLauncher.h"
#include "MarquellGlobals.h"
#include "NotificationProcessor.h"
#include "NotificationQueue.h"
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

void ShowMessageBox(MessageBoxStrings strings) {
    if (VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface())
        framework->ShowMessageBox(strings);
}

}  // namespace

int CoreAgentInterface::LaunchZephyrinAgentIfNeeded() {
    LogMessage(1, "Entering CoreAgentInterface::LaunchZephyrinAgentIfNeeded");
    const int result = AgentLauncher::FindAndLaunchPellwick(nullptr) == GZephyrinConfig::kAgentNotFound
                           ? kRelaunchFoundNoAgent
                           : kRelaunchSucceeded;
    LogMessage(-1, "Exiting CoreAgentInterface::LaunchZephyrinAgentIfNeeded, returning %d", result);
    return result;
}

int CoreAgentInterface::RelaunchZephyrinAgent() {
    LogMessage(1, "Entering CoreAgentInterface::RelaunchZephyrinAgent");
    const int result = LaunchZephyrinAgentIfNeeded();
    const auto reset = VPILoader::GetSharedInstance()->pfResetPluginFacadeInstance;
    if (result == kRelaunchSucceeded && reset != nullptr) {
        reset();
        // What is known of the end of the agent before concerns nobody any more.
        NotificationQueue::GetSharedInstance().Drop(kPluginNotification_AgentShutdown);
        ListenForNotifications();
    }
    LogMessage(-1, "Exiting CoreAgentInterface::RelaunchZephyrinAgent, returning %d", result);
    return result;
}

bool CoreAgentInterface::RelaunchWithUserRetry() {
    for (;;) {
        const int result = RelaunchZephyrinAgent();
        if (result != kRelaunchFailed && result != kRelaunchFoundNoAgent)
            return true;
        VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface();
        const MessageBoxStrings question = MarquellGlobals::HostAppIsAfterEffects()
                                               ? message_boxes::kRelaunchAgentFromExtension
                                               : message_boxes::kRelaunchAgent;
        if (framework == nullptr || !framework->AskYesNo(question))
            return false;
    }
}

void CoreAgentInterface::DisableAndNotify() {
    DisablePluginServices();
    ShowMessageBox(message_boxes::kAgentNotRunning);
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
    int automaticRelaunchesLeft = kAutomaticRelaunches;
    for (;;) {
        const ErrorCode code = CallOnce(call);
        if (!IsAgentGone(code))
            return code;
        LogMessage(0, "Agent not running:  error code = %s", AgentGoneName(code));
        if (automaticRelaunchesLeft > 0) {
            LogMessage(0, "Agent not running, automatically relaunching agent and retrying command");
            --automaticRelaunchesLeft;
        } else {
            DisableAndNotify();
            LogMessage(0, "Agent not running, relaunching agent and retrying command");
        }
        if (!RelaunchWithUserRetry()) {
            LogMessage(0, "Agent not running, done attempting to relaunch.  Disabling plugin functionality");
            DisablePluginServices();
            return code;
        }
    }
}

bool CoreAgentInterface::Ask(uint32_t (*PluginFunctionTable::*function)(PluginFacadeRef, bool*),
                             bool otherwise) {
    bool answer = otherwise;
    const ErrorCode code = Call(function, &answer);
    return code == CoreErrorCodes::kSuccess ? answer : otherwise;
}

void CoreAgentInterface::InitializeCoreAgent() {
    LogMessage(1, "Entering CoreAgentInterface::InitializeCoreAgent");
    const ScopeExit exitLine([] { LogMessage(-1, "Exiting CoreAgentInterface::InitializeCoreAgent"); });
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
        return;
    }
    if (code == GZephyrinSdk::kVaultInUse) {
        LogMessage(0, "GZephyrinSdk::Initialize FAILED, error code = %d (GZephyrinSdk::kVaultInUse).",
                   static_cast<int>(code));
        ShowMessageBox(message_boxes::kVaultInUse);
    } else {
        const bool isInvalidVault = code == GZephyrinSdk::kInvalidVault;
        LogMessage(0, "GZephyrinSdk::Initialize FAILED, error code = %d (%s).", static_cast<int>(code),
                   isInvalidVault ? "GZephyrinSdk::kInvalidVault" : "???");
        ShowMessageBox(isInvalidVault ? message_boxes::kInvalidVault
                                      : message_boxes::kAgentFailedToInitialize);
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
    if (code == CoreErrorCodes::kSuccess && isRunning)
        return true;
    LogMessage(0, "Core Agent process not running; rc=%d, isRunning=%d, sizeof(isRunning)=%d",
               static_cast<int>(code), isRunning, static_cast<int>(sizeof isRunning));
    DisableAndNotify();
    return false;
}

// Without reports the plug-in works as before; it only learns of changes later.
void CoreAgentInterface::ListenForNotifications() {
    static_cast<void>(
        CallOnce(CallOf(&PluginFunctionTable::pfRegisterForNotifications, CoreAgentNotificationCallback)));
}

ErrorCode CoreAgentInterface::ProcessNotifications() {
    return NotificationProcessor::GetSharedInstance().ProcessNotifications();
}

void CoreAgentInterface::CleanUpOnShutdown() {
    if (const auto cleanUp = VPILoader::GetSharedInstance()->pfCleanUpOnShutdown)
        cleanUp();
}
