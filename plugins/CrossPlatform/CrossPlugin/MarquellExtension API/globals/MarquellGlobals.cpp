#include "MarquellGlobals.h"

#include "FontManagerAccess.h"
#include "NoDestructor.h"
#include "PluginIdentity.h"
#include "Preferences.h"
#include "TraceLog.h"

namespace {

struct State {
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> sHostApp;
    std::optional<std::string> versionPrefixRequired;
    std::optional<std::string> hostAppMinimumVersion;
    std::optional<std::string> pluginVersion;
    std::optional<std::string> pluginInterfaceVersion;
    std::optional<std::string> pluginPath;
    std::string hostWindowName;

    bool servicesEnabled = false;
    bool connectedToCore = false;
    bool loggedIn = false;
    bool functionalityEnabled = false;
    bool bulkReplicationRunning = false;
    bool incrementalReplicationRunning = false;
    bool interfaceRecreated = false;
    int32_t startupCount = 0;

    std::unique_ptr<VPFInterface> vpfInterface;
    std::unique_ptr<FontActivationTracker> tracker;
    std::unique_ptr<HostAppInterface> hostApp;
};

State& Globals() {
    static NoDestructor<State> state;
    return *state;
}

/// Stands for the interface that could not be made.
VPFInterface& NoInterface() {
    static NoDestructor<VPFInterface> none;
    return *none;
}

std::unique_ptr<VPFInterface> MakeInterface(const State& globals) {
    try {
        return std::make_unique<VPFInterface>(VPFInterface::Identity{globals.sHostApp, globals.pluginVersion,
                                                                     globals.bundleIdentifier,
                                                                     globals.pluginInterfaceVersion});
    } catch (const std::exception& exception) {
        LogMessage(0, "ERROR:  the preference interface could not be made: %s", exception.what());
        return nullptr;
    }
}

bool IsRecreationDue() {
    const State& globals = Globals();
    return !globals.interfaceRecreated && globals.vpfInterface && !globals.vpfInterface->IsValid() &&
           globals.sHostApp && globals.pluginVersion && globals.bundleIdentifier &&
           globals.vpfInterface->GetFrameworkState() == VPFInterface::kIdentityUnknown;
}

/// A host that calls before it has said who it is gets an interface that knows no preferences. It must not
/// stay.
void ForgetInterfaceWithoutIdentity() {
    State& globals = Globals();
    if (!globals.vpfInterface || globals.vpfInterface->GetFrameworkState() != VPFInterface::kIdentityUnknown)
        return;
    LogMessage(0, "The preference interface was made before the plug-in said who it is; it is made anew");
    globals.tracker.reset();  // holds on to the interface
    globals.vpfInterface.reset();
}

void IdentifyPluginInterfaceVersion(const std::string& version) {
    LogMessage(0, "IdentifyPluginInterfaceVersion(%s)", version.c_str());
    Globals().pluginInterfaceVersion = version;
}

void IdentifyPluginVersion(const std::string& version) {
    const TraceScope trace([] { LogMessage(-1, "Exiting IdentifyPluginVersion()"); },
                           "Entering IdentifyPluginVersion('%s')", version.c_str());
    Globals().pluginVersion = version;
}

}  // namespace

namespace MarquellGlobals {

void SetUpPluginIdentity(const std::string& identifierOrPath, const std::string& versionPrefixRequired,
                         const std::function<std::string()>& interfaceVersion) {
    const PluginIdentity identity = IdentifyPlugin(identifierOrPath);
    State& globals = Globals();
    globals.bundleIdentifier = identifierOrPath;
    IdentifyPluginInterfaceVersion(interfaceVersion());
    SetHostApp(identity.hostApp);
    globals.versionPrefixRequired = versionPrefixRequired;
    globals.hostAppMinimumVersion = identity.hostAppMinimumVersion;
    IdentifyPluginVersion(identity.pluginVersion);
    globals.pluginPath = identity.pluginPath;
    ForgetInterfaceWithoutIdentity();
}

void SetHostApp(const std::optional<std::string>& name) {
    State& globals = Globals();
    globals.sHostApp = name;
    if (!name && globals.bundleIdentifier)
        globals.sHostApp = MapBundleIDtoHostApp(*globals.bundleIdentifier);
    if (globals.sHostApp)
        globals.hostWindowName = HostWindowName(*globals.sHostApp);
}

std::string GetPluginBundleIdentifier() {
    return Globals().bundleIdentifier.value_or("");
}
std::string GetPluginHostApp() {
    return Globals().sHostApp.value_or("");
}
std::string GetVersionPrefixRequired() {
    return Globals().versionPrefixRequired.value_or("");
}
std::string GetHostAppMinimumVersion() {
    return Globals().hostAppMinimumVersion.value_or("");
}
std::string GetPluginVersion() {
    return Globals().pluginVersion.value_or("");
}
std::string GetPluginInterfaceVersion() {
    return Globals().pluginInterfaceVersion.value_or("");
}
std::string GetPluginPath() {
    return Globals().pluginPath.value_or("");
}
std::string GetHostWindowName() {
    return Globals().hostWindowName;
}

HostKind GetHostKind() {
    return HostKindFromName(GetPluginHostApp());
}
bool HostAppIsInDesign() {
    return GetHostKind() == HostKind::kInDesign;
}
bool HostAppIsInCopy() {
    return GetHostKind() == HostKind::kInCopy;
}
bool HostAppIsIllustrator() {
    return GetHostKind() == HostKind::kIllustrator;
}
bool HostAppIsPhotoshop() {
    return GetHostKind() == HostKind::kPhotoshop;
}
bool HostAppIsAfterEffects() {
    return IsAfterEffectsName(GetPluginHostApp());
}

bool HostAppIsSketch() {
    const std::string hostApp = GetPluginHostApp();
    const bool isSketch = IsSketchName(hostApp);
    LogMessage(0, "%s() returning %d because GetPluginHostApp() returned '%s'",
               "MarquellGlobals::HostAppIsSketch", isSketch, hostApp.c_str());
    return isSketch;
}

std::string GetHostShortCode() {
    return HostShortCode(GetPluginHostApp());
}

void SetPluginServicesEnabled(bool enable) {
    LogMessage(0, "Calling MarquellGlobals::SetPluginServicesEnabled( enable=%d )", enable);
    Globals().servicesEnabled = enable;
}

void SetConnectedToCore(bool connected) {
    LogMessage(0, "Calling MarquellGlobals::SetConnectedToCore(connected=%d)", connected);
    Globals().connectedToCore = connected;
}

void SetLoggedIn(bool loggedIn) {
    LogMessage(0, "Calling MarquellGlobals::SetLoggedIn(loggedIn=%d)", loggedIn);
    Globals().loggedIn = loggedIn;
}

void SetPluginFunctionalityEnabled(bool enable) {
    Globals().functionalityEnabled = enable;
}

void SetBulkReplicationRunning(bool isReplicating) {
    LogMessage(0, "Calling MarquellGlobals::SetBulkReplicationRunning(isReplicating=%d)", isReplicating);
    Globals().bulkReplicationRunning = isReplicating;
}

void SetIncrementalReplicationRunning(bool isReplicating) {
    LogMessage(0, "Calling MarquellGlobals::SetIncrementalReplicationRunning(isReplicating=%d)",
               isReplicating);
    Globals().incrementalReplicationRunning = isReplicating;
}

bool ArePluginServicesEnabled() {
    return Globals().servicesEnabled;
}
bool IsConnectedToCore() {
    return Globals().connectedToCore;
}
bool IsLoggedIn() {
    return Globals().loggedIn;
}
bool IsPluginFunctionalityEnabled() {
    return Globals().functionalityEnabled;
}
bool IsBulkReplicationRunning() {
    return Globals().bulkReplicationRunning;
}
bool IsIncrementalReplicationRunning() {
    return Globals().incrementalReplicationRunning;
}
bool IsPluginFunctional() {
    return ArePluginServicesEnabled() && IsLoggedIn() && IsPluginFunctionalityEnabled();
}

int32_t CountStartup() {
    return ++Globals().startupCount;
}

VPFInterface* GetSharedVPFInterface() {
    State& globals = Globals();
    if (IsRecreationDue()) {
        LogMessage(0, "Recreating VPFInterface after plugin globals became available");
        globals.tracker.reset();  // holds on to the interface
        globals.vpfInterface.reset();
        globals.interfaceRecreated = true;
    }
    if (!globals.vpfInterface) {
        if (!globals.sHostApp)
            LogMessage(0, "ERROR: sHostApp is NULL in %s()", "MarquellGlobals::GetSharedVPFInterface");
        globals.vpfInterface = MakeInterface(globals);
    }
    return globals.vpfInterface ? globals.vpfInterface.get() : &NoInterface();
}

FontActivationTracker* GetSharedFontActivationTracker() {
    State& globals = Globals();
    if (!globals.tracker)
        globals.tracker = std::make_unique<FontActivationTracker>(GetSharedVPFInterface());
    return globals.tracker.get();
}

HostAppInterface* GetSharedHostAppInterface() {
    return Globals().hostApp.get();
}
void SetSharedHostAppInterface(std::unique_ptr<HostAppInterface> hostApp) {
    Globals().hostApp = std::move(hostApp);
}

bool SaveDocumentFonts(const std::string& path, bool replace, CFStringRef hint) {
    constexpr char kName[] = "MarquellGlobals::SaveDocumentFonts";
    std::optional<bool> success;
    const TraceScope trace(
        [&] {
            if (success)
                LogMessage(-1, "Exiting %s success=%d", kName, *success);
            else
                LogMessage(-1, "Exiting %s not valid, not enabled, or not logged in", kName);
        },
        "Entering %s (path=%s, hint=0x%08x)", kName, path.c_str(), TraceAddress(hint));
    if (HostAppInterface* hostApp = GetSharedHostAppInterface())
        hostApp->ShowProgressHint("...SaveDocumentFonts() hint");
    VPFInterface* preferences = GetSharedVPFInterface();
    FontManagerAccess* fontManager = GetFontManagerAccess();
    if (!IsPluginFunctional() || !preferences->GetBoolPreference(preferences::EnablePlugin) ||
        fontManager == nullptr || !fontManager->IsLoggedIn())
        return false;
    LogMessage(0, "Calling VPI SaveDocumentFonts");
    success = false;
    success = fontManager->SaveDocumentFonts(path, replace, hint);
    return *success;
}

void RefreshActiveFontList(void (*callback)(void*), void* context) {
    static constexpr char kName[] = "MarquellGlobals::RefreshActiveFontList";
    const TraceScope trace([] { LogMessage(-1, "Exiting %s", kName); }, "Entering %s", kName);
    if (callback != nullptr) {
        callback(context);
        callback(context);
    }
}

void ResetForTesting() {
    Globals().tracker.reset();
    Globals() = State{};
}

}  // namespace MarquellGlobals
