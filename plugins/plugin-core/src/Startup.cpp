#include "Startup.h"

#include <string>

#include "AgentLauncher.h"
#include "CommonFunctionality.h"
#include "FontManagerInterface.h"
#include "GMutex.h"
#include "GeneralInterface.h"
#include "LocalizedStrings.h"
#include "MarquellGlobals.h"
#include "NotificationProcessor.h"
#include "PanelManager.h"
#include "PluginCoreInterface.h"
#include "PluginIdentity.h"
#include "Preferences.h"
#include "Settings.h"
#include "StringConversion.h"
#include "TraceLog.h"
#include "platform/DynamicLibrary.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Windowing.h"

namespace {

constexpr char kName[] = "CommonFunctionality::Startup";
const char kAddressInThisModule = 0;

/// The message for a start-up that failed, as far as one was chosen.
using ChosenMessage = const MessageBoxStrings*;

void DisableServices() {
    MarquellGlobals::SetPluginServicesEnabled(false);
    MarquellGlobals::SetConnectedToCore(false);
}

/// A panel that could not be told was reported; start-up goes on without it.
void TellPanels(bool isAvailable) {
    static_cast<void>(PanelManager::GetSharedInstance().SetEnabled(isAvailable));
}

void LogDisabling() {
    LogMessage(0, "Disabling plugin functionality");
}

ErrorCode CheckHostAndFontManager(bool& allowDialogs, ChosenMessage& message) {
    bool disableDialogs = false;
    const bool isHostCompatible = MarquellGlobals::RunningInCompatibleHostApp(disableDialogs);
    if (disableDialogs)
        allowDialogs = false;
    const bool isFontManagerReached =
        FontManagerInterface::GetSharedInstance().CompatibleFontManagerIsRunning();
    if (isHostCompatible && isFontManagerReached)
        return CoreErrorCodes::kSuccess;
    DisableServices();
    if (allowDialogs)
        message =
            isHostCompatible ? &message_boxes::kFontManagerUnreachable : &message_boxes::kIncompatibleHost;
    return PLUGINCORE_NOT_STARTED;
}

/// Of a plug-in that serves no known host application it is the plug-in's own.
std::string NameOfLog() {
    std::string name = MarquellGlobals::GetPluginHostApp();
    if (name.empty())
        name = platform::NamePart(MarquellGlobals::GetPluginBundleIdentifier());
    return name.empty() ? "Unknown" : name;
}

void SetUpFramework(VPFInterface& framework, ChosenMessage message) {
    framework.SetParentWindowForUi(MarquellGlobals::GetHostAppMainWindow());
    SetLogFile((NameOfLog() + ".log").c_str());
    if (framework.GetBoolPreference(preferences::EnableLogging))
        EnableLogging();
    if (message != nullptr)
        framework.ShowMessageBox(*message);
}

/// Where the surroundings say how the framework is to ask, and not by windows, nothing waits behind one of ours.
bool AreWindowsWelcome() {
    const std::string presenter = platform::EnvironmentVariable("PLUGINCORE_PRESENTER");
    return (presenter.empty() || presenter == "native") &&
           platform::EnvironmentVariable("PLUGINCORE_ANSWERS").empty();
}

void CheckFrameworkState(const VPFInterface& framework, bool allowDialogs) {
    const VPFInterface::FrameworkState state = framework.GetFrameworkState();
    if (state != VPFInterface::kLibraryNotFound && state != VPFInterface::kFactoryUnusable &&
        state != VPFInterface::kPreferencesUnusable)
        return;
    // Where no notice can be shown, the trace alone has it.
    const std::string text(localized::EnglishText(localized::kFrameworkFailure));
    LogMessage(0, "ERROR:  %s", text.c_str());
    if (allowDialogs && AreWindowsWelcome())
        platform::Current<platform::Windowing>().ShowStringResourceNotice(framework.FrameworkPath(),
                                                                          localized::kFrameworkFailure, text);
    DisableServices();
}

void CheckLogin(VPFInterface& framework, CoreAgentInterface& agent) {
    if (agent.IsLoggedIn()) {
        LogMessage(0, "login check at startup:  Logged in");
        return;
    }
    LogMessage(0, "login check at startup:  NOT logged in...");
    LogDisabling();
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
    LogDisabling();
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
    if (MarquellGlobals::IsPluginFunctional() && framework.GetBoolPreference(preferences::EnablePlugin) &&
        agent->IsLoggedIn() && !agent->IsRunningStandalone())
        CheckWorkgroups(fontManager, allowDialogs);
}

ErrorCode DoStartup(bool allowDialogs) {
    CommonFunctionality::SharedHostAppInterface();
    NotificationProcessor::GetSharedInstance().SetReceiver(&PanelManager::GetSharedInstance());
    MarquellGlobals::SetLoggedIn(true);
    MarquellGlobals::SetPluginServicesEnabled(true);
    MarquellGlobals::SetConnectedToCore(true);
    MarquellGlobals::SetPluginFunctionalityEnabled(true);
    TellPanels(true);
    ChosenMessage message = nullptr;
    ErrorCode result = CheckHostAndFontManager(allowDialogs, message);
    if (VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface(); framework->IsMade()) {
        SetUpFramework(*framework, message);
        CheckFrameworkState(*framework, allowDialogs);
        CheckLoginAndWorkgroups(*framework, allowDialogs);
    } else {
        result = PLUGINCORE_NO_PREFERENCES;
        DisableServices();
    }
    FontManagerInterface::GetSharedInstance().InitializeDefaultWorkgroup();
    return result;
}

/// The agent is gone: nothing can be offered until it is back. Nobody is told, since nothing was on offer.
ErrorCode ReportAgentMissing() {
    DisableServices();
    TellPanels(false);
    return CoreErrorCodes::kUnknownError;
}

/// The agent runs and the user is logged in: everything is available again.
ErrorCode Reenable(CoreAgentInterface& agent, bool allowDialogs, bool& isEnabled) {
    MarquellGlobals::SetLoggedIn(true);
    MarquellGlobals::SetPluginServicesEnabled(true);
    MarquellGlobals::SetConnectedToCore(true);
    agent.ServicesAreBack();
    agent.ListenForNotifications();
    TellPanels(true);
    if (GeneralInterface* hostApp = CommonFunctionality::SharedHostAppInterface())
        hostApp->Refresh(true, true);
    isEnabled =
        agent.IsRunningStandalone() || FontManagerInterface::GetSharedInstance().IsWorkgroupAvailable();
    if (isEnabled)
        return CoreErrorCodes::kSuccess;
    if (allowDialogs)
        CommonFunctionality::ShowNoWorkgroupMessage();
    return CoreErrorCodes::kUnknownError;
}

/// Its work is done on the first call alone.
ErrorCode CommonStartup(bool allowDialogs) {
    static GMutex startupLock;
    int earlierCalls = 0;
    const TraceScope trace(
        [&] {
            if (earlierCalls > 0)
                LogMessage(-1, "Early return from %s() because it has been called %d times", kName,
                           earlierCalls);
            else
                LogMessage(-1, "Exiting %s()", kName);
        },
        "Entering %s(allowDialogs=%d)", kName, allowDialogs);
    const GScopedLock lock(startupLock);
    const int callCount = MarquellGlobals::CountStartup();
    // A lock that this thread holds already: the host called back from behind a start-up dialog.
    if (callCount >= 2 || lock.Status() != CoreErrorCodes::kSuccess) {
        earlierCalls = callCount;
        return PLUGINCORE_NOT_STARTED;
    }
    return DoStartup(allowDialogs);
}

/// The version of the font manager's interface library, which is loaded for it.
std::string LoadedInterfaceVersion() {
    return cf::ToUtf8(AdoptCF(VPILoader::GetSharedInstance()->VersionStringRef()).get());
}

}  // namespace

ErrorCode InitializeFromIdentifier(const char* pluginIdentifier, const char* versionPrefixRequired) {
    // A host may unload the core while panels and the font manager can still call it.
    platform::KeepModuleLoaded(&kAddressInThisModule);
    constexpr char kOldHostName[] = "AfterEffectsCC2015";
    constexpr char kItsIdentifier[] = "com.vantorix.AutoActivationPlugin.AE13";
    const std::string prefix = versionPrefixRequired != nullptr ? versionPrefixRequired : "";
    std::string identifier = pluginIdentifier != nullptr ? pluginIdentifier : "";
    const bool namesMinimum = !GetFileVersionString(identifier, "HostAppMinimumVersion").empty();
    const bool allowDialogs = namesMinimum || !prefix.empty();
    if (identifier == kOldHostName) {
        LogMessage(0, "Translating '%s' into '%s' to support older plugins.", OrNull(pluginIdentifier),
                   kItsIdentifier);
        identifier = kItsIdentifier;
    }
    if (pluginIdentifier == nullptr || versionPrefixRequired == nullptr || !IsValidUtf8(identifier) ||
        !IsValidUtf8(prefix))
        return CoreErrorCodes::kInvalidParam;
    MarquellGlobals::SetUpPluginIdentity(identifier, prefix, LoadedInterfaceVersion);
    Settings::RegisterDefaults();
    return CommonStartup(allowDialogs);
}

ErrorCode CheckPluginIsEnabled(bool allowDialogs, bool& isEnabled) {
    isEnabled = false;
    if (!MarquellGlobals::GetSharedVPFInterface()->GetBoolPreference(preferences::EnablePlugin))
        return CoreErrorCodes::kUnknownError;
    const bool wasLoggedIn = MarquellGlobals::IsLoggedIn();
    if (MarquellGlobals::IsPluginFunctional()) {  // logged in, too
        isEnabled = true;
        return CoreErrorCodes::kSuccess;
    }
    CoreAgentInterface* agent = FontManagerInterface::GetSharedInstance().GetFontManager();
    std::string agentFolder;
    if (agent == nullptr || AgentLauncher::GetPathToRunningProcessExe("Pellwick", agentFolder) != 0)
        return ReportAgentMissing();
    if (agent->IsLoggedIn())
        return Reenable(*agent, allowDialogs, isEnabled);
    MarquellGlobals::SetLoggedIn(false);
    if (allowDialogs && wasLoggedIn)
        CommonFunctionality::ShowNotLoggedInMessage();
    return CoreErrorCodes::kUnknownError;
}
