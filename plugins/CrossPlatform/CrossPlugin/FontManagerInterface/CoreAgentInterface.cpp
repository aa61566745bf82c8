#include "CoreAgentInterface.h"

#include "AgentLauncher.h"
#include "MarquellGlobals.h"
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
    if (result == kRelaunchSucceeded && reset != nullptr)
        reset();
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

ErrorCode CoreAgentInterface::ActivateDocumentFontsByPath(const std::string& documentPath,
                                                          const DocumentFontLists& lists,
                                                          CFMutableArrayRef matchedFonts) {
    constexpr char kName[] = "CoreAgentInterface::ActivateDocumentFontsByPath";
    LogMessage(1, "Entering %s(..., '%s', ...)", kName, documentPath.c_str());
    const CFRef<CFStringRef> path = cf::String(documentPath);
    const ErrorCode code =
        Call(&PluginFunctionTable::pfActivateDocumentFontsByPath, path.get(), lists.requestedFonts,
             matchedFonts, lists.unmatchedFonts, lists.reportedFonts);
    LogMessage(-1, "%s() returning %d", kName, static_cast<int>(code));
    return code;
}

ErrorCode CoreAgentInterface::ActivateFontsByID(CFArrayRef fonts, const std::string& documentIdentifier,
                                                CFMutableArrayRef matchedFonts) {
    constexpr char kName[] = "CoreAgentInterface::ActivateFontsByID";
    LogMessage(1, "Entering %s(CFArrayGetCount(fonts)=%d, documentIdentifier='%s', ...)", kName,
               static_cast<int>(cf::Count(fonts)), documentIdentifier.c_str());
    const CFRef<CFStringRef> identifier = cf::String(documentIdentifier);
    const CFRef<CFStringRef> mode = cf::String(kGS_ActivateLocally);
    const ErrorCode code =
        Call(&PluginFunctionTable::pfActivateFonts, fonts, identifier.get(), mode.get(), matchedFonts);
    LogMessage(-1, "%s() returning %d", kName, static_cast<int>(code));
    return code;
}

ErrorCode CoreAgentInterface::DeactivateFonts(CFArrayRef fonts, uint64_t context,
                                              CFMutableArrayRef deactivatedFonts) {
    LogMessage(1, "Entering CoreAgentInterface::DeactivateFonts(CFArrayGetCount(fonts)=%d, ...)",
               static_cast<int>(cf::Count(fonts)));
    const ErrorCode code = Call(&PluginFunctionTable::pfDeactivateFonts, fonts, context, deactivatedFonts);
    LogMessage(-1, "CoreAgentInterface::DeactivateFonts() returning %d", static_cast<int>(code));
    return code;
}

ErrorCode CoreAgentInterface::GetClientFontActivationStates(const std::vector<uint32_t>& databaseIDs,
                                                            PluginActivationStates& states) {
    const CFRef<CFMutableArrayRef> ids = cf::MutableArray();
    for (const uint32_t databaseID : databaseIDs)
        cf::Append(ids, databaseID);
    const CFRef<CFMutableDictionaryRef> answers = cf::MutableDictionary();
    const ErrorCode code =
        Call(&PluginFunctionTable::pfGetClientFontActivationStates, ids.get(), answers.get());
    for (const uint32_t databaseID : databaseIDs) {
        const CFRef<CFNumberRef> key = cf::Number(databaseID);
        if (const auto answer = cf::ToBool(CFDictionaryGetValue(answers.get(), key.get())))
            states[databaseID] = *answer;
    }
    return code;
}

ErrorCode CoreAgentInterface::SaveDocumentFonts(const std::string& documentPath, bool replace,
                                                CFStringRef fontUsage) {
    const CFRef<CFStringRef> path = cf::String(documentPath);
    return Call(&PluginFunctionTable::pfSaveDocumentFonts, path.get(), replace, fontUsage);
}

bool CoreAgentInterface::IsLoggedIn() {
    return Ask(&PluginFunctionTable::pfGetIsLoggedIn, false);
}
bool CoreAgentInterface::IsRunningStandalone() {
    return Ask(&PluginFunctionTable::pfGetRunningStandalone, false);
}

bool CoreAgentInterface::CanExportFromWorkgroup(CFArrayRef fonts) {
    bool canExport = false;
    return Call(&PluginFunctionTable::pfCanExportFonts, fonts, &canExport) == CoreErrorCodes::kSuccess &&
           canExport;
}

bool CoreAgentInterface::AreSchemaVersionsInSync() {
    const bool areInSync = Ask(&PluginFunctionTable::pfGetAreSchemaVersionsInSync, false);
    if (!areInSync)
        LogMessage(0, "WARNING:  CoreAgentInterface::AreSchemaVersionsInSync() returning FALSE");
    return areInSync;
}

ErrorCode CoreAgentInterface::GetAllWorkgroupsForUser(const WorkgroupFilter& filter,
                                                      std::vector<Workgroup>& workgroups) {
    LogMessage(1,
               "Entering CoreAgentInterface::GetAllWorkgroupsForUser(..., includeAllWorkgroup=%d, "
               "includeSystemWorkgroup=%d, includeTypekitLibrary=%d)",
               filter.includeAllWorkgroup, filter.includeSystemWorkgroup, filter.includeTypekitLibrary);
    const CFRef<CFMutableArrayRef> records = cf::MutableArray();
    const ErrorCode code = Call(&PluginFunctionTable::pfGetAllWorkgroupsForUser, records.get());
    LogMessage(0, "%d workgroups found", static_cast<int>(cf::Count(records.get())));
    for (CFIndex index = 0; index < cf::Count(records.get()); ++index) {
        const auto record = cf::Get<CFDictionaryRef>(records.get(), index);
        Workgroup workgroup;
        workgroup.id = static_cast<int32_t>(cf::GetInt64(record, kGS_WorkgroupIDKey).value_or(0));
        workgroup.type = static_cast<int32_t>(cf::GetInt64(record, kGS_WorkgroupTypeKey).value_or(-1));
        workgroup.name = cf::GetString(record, kGS_WorkgroupNameKey);
        if ((workgroup.type == kWorkgroupType_All && !filter.includeAllWorkgroup) ||
            (workgroup.type == kWorkgroupType_System && !filter.includeSystemWorkgroup) ||
            (workgroup.type == kWorkgroupType_TypekitLibrary && !filter.includeTypekitLibrary))
            continue;
        LogMessage(0, "Adding '%s' to user's workgroup list.", workgroup.name.c_str());
        workgroups.push_back(std::move(workgroup));
    }
    LogMessage(-1, "CoreAgentInterface::GetAllWorkgroupsForUser() returning %d", static_cast<int>(code));
    return code;
}

void CoreAgentInterface::CleanUpOnShutdown() {
    if (const auto cleanUp = VPILoader::GetSharedInstance()->pfCleanUpOnShutdown)
        cleanUp();
}
