#include "CommonFunctionality.h"
#include "FontManagerInterface.h"
#include "GMutex.h"
#include "MarquellGlobals.h"
#include "TraceLog.h"
#include "platform/Windowing.h"

namespace {

constexpr ErrorCode kStartupFailed = 0xFFFFFFFF;
constexpr ErrorCode kNoPreferenceInterface = 2;
constexpr char kName[] = "CommonFunctionality::Startup";

/// The message for a start-up that failed, as far as one was chosen.
using ChosenMessage = const MessageBoxStrings*;

void DisableServices() {
    MarquellGlobals::SetPluginServicesEnabled(false);
    MarquellGlobals::SetConnectedToCore(false);
}

void DisableFunctionality() { LogMessage(0, "Disabling plugin functionality"); }

ErrorCode CheckHostAndFontManager(bool& allowDialogs, ChosenMessage& message) {
    bool disableDialogs = false;
    const bool isHostCompatible = MarquellGlobals::RunningInCompatibleHostApp(disableDialogs);
    if (disableDialogs)
        allowDialogs = false;
    const bool isFontManagerReached = FontManagerInterface::GetSharedInstance().CompatibleFontManagerIsRunning();
    if (isHostCompatible && isFontManagerReached)
        return CoreErrorCodes::kSuccess;
    DisableServices();
    if (allowDialogs)
        message = isHostCompatible ? &message_boxes::kFontManagerUnreachable : &message_boxes::kIncompatibleHost;
    return kStartupFailed;
}

void SetUpFramework(VPFInterface& framework, ChosenMessage message) {
    framework.SetParentWindowForUi(MarquellGlobals::GetHostAppMainWindow());
    SetLogFile((MarquellGlobals::GetPluginHostApp() + ".log").c_str());
    if (framework.GetBoolPreference("EnableLogging"))
        EnableLogging();
    if (message != nullptr)
        framework.ShowMessageBox(*message);
}

void CheckFrameworkState(const VPFInterface& framework, bool allowDialogs) {
    const VPFInterface::FrameworkState state = framework.GetFrameworkState();
    if (state != VPFInterface::kLibraryNotFound && state != VPFInterface::kFactoryUnusable &&
        state != VPFInterface::kPreferencesUnusable)
        return;
    if (allowDialogs)
        platform::Current<platform::Windowing>().ShowStringResourceNotice(framework.FrameworkPath(),
                                                                          kFrameworkFailureStringID);
    DisableServices();
}

void CheckLogin(VPFInterface& framework, CoreAgentInterface& agent) {
    if (agent.IsLoggedIn()) {
        LogMessage(0, "login check at startup:  Logged in");
        return;
    }
    LogMessage(0, "login check at startup:  NOT logged in...");
    DisableFunctionality();
    MarquellGlobals::SetLoggedIn(false);
    if (!MarquellGlobals::HostAppIsAfterEffects())
        framework.ShowMessageBox(message_boxes::kNotLoggedIn);
}

void CheckWorkgroups(FontManagerInterface& fontManager, bool allowDialogs) {
    LogMessage(0, "checking for workgroups at startup");
    if (fontManager.IsWorkgroupAvailable()) {
        MarquellGlobals::SetPluginFunctionalityEnabled(true);
        return;
    }
    DisableFunctionality();
    MarquellGlobals::SetPluginFunctionalityEnabled(false);
    if (allowDialogs)
        CommonFunctionality::ShowNoWorkgroupMessage();
}

void CheckLoginAndWorkgroups(VPFInterface& framework, bool allowDialogs) {
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
    CoreAgentInterface* agent = fontManager.GetFontManager();
    if (agent == nullptr || !MarquellGlobals::IsPluginFunctional())
        return;
    CheckLogin(framework, *agent);
    if (MarquellGlobals::IsPluginFunctional() && framework.GetBoolPreference("EnablePlugin") &&
        agent->IsLoggedIn() && !agent->IsRunningStandalone())
        CheckWorkgroups(fontManager, allowDialogs);
}

ErrorCode DoStartup(bool allowDialogs) {
    MarquellGlobals::SetLoggedIn(true);
    MarquellGlobals::SetPluginServicesEnabled(true);
    MarquellGlobals::SetConnectedToCore(true);
    MarquellGlobals::SetPluginFunctionalityEnabled(true);
    ChosenMessage message = nullptr;
    ErrorCode result = CheckHostAndFontManager(allowDialogs, message);
    if (VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface()) {
        SetUpFramework(*framework, message);
        CheckFrameworkState(*framework, allowDialogs);
        CheckLoginAndWorkgroups(*framework, allowDialogs);
    } else {
        result = kNoPreferenceInterface;
        DisableServices();
    }
    FontManagerInterface::GetSharedInstance().InitializeWorkgroupAtStartup();
    return result;
}

}  // namespace

ErrorCode CommonFunctionality::Startup(bool allowDialogs) {
    static GMutex startupLock;
    static int callCount = 0;
    LogMessage(1, "Entering %s(allowDialogs=%d)", kName, allowDialogs);
    const GScopedLock lock(startupLock);
    // A lock that this thread holds already: the host called back from behind a start-up dialog.
    if (++callCount >= 2 || lock.Status() != CoreErrorCodes::kSuccess) {
        LogMessage(-1, "Early return from %s() because it has been called %d times", kName, callCount);
        return kStartupFailed;
    }
    const ErrorCode result = DoStartup(allowDialogs);
    LogMessage(-1, "Exiting %s()", kName);
    return result;
}
