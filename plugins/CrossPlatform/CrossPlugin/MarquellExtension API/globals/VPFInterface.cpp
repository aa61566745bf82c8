#include "VPFInterface.h"

#include "HostCall.h"
#include "HostPatience.h"
#include "TraceLog.h"
#include "platform/Clock.h"
#include "platform/DynamicLibrary.h"
#include "platform/Files.h"

namespace {

const char* OrNull(const std::optional<std::string>& text) {
    return text ? text->c_str() : "NULL";
}

/// Lasts while the framework shows something. A framework that answers at once has shown nothing, since there
/// may be no user to show it to.
class Showing {
public:
    ~Showing() {
        if (Now() - mBegin >= kNoticeable)
            HostPatience::Renew();
    }

private:
    static constexpr uint32_t kNoticeable = 100;  // milliseconds
    static uint32_t Now() { return platform::Current<platform::Clock>().TickCount(); }

    const uint32_t mBegin = Now();
    const WithinHost mHost;
};

std::string FolderOfThisModule() {
    static const char anchor = 0;
    return platform::FolderPart(platform::Current<platform::DynamicLibraries>().PathOfModuleAt(&anchor));
}

}  // namespace

VPFInterface::VPFInterface(const Identity& identity) {
    Identify(identity);
    mState = BindFramework(identity);
}

VPFInterface::VPFInterface(const Identity& identity, VantorixPluginFramework* framework)
    : mState(framework != nullptr ? kBound : kLibraryNotFound), mFramework(framework) {
    Identify(identity);
}

VPFInterface::~VPFInterface() {
    if (mFramework != nullptr)
        mFramework->Release();
}

void VPFInterface::Identify(const Identity& identity) {
    LogMessage(0,
               "VPFInterface::VPFInterface(hostApp='%s', pluginVersion='%s', pluginBundleIdentifier='%s', "
               "vantorixPluginInterfaceVersion='%s')",
               OrNull(identity.hostApp), OrNull(identity.pluginVersion),
               OrNull(identity.pluginBundleIdentifier), OrNull(identity.pluginInterfaceVersion));
    mIdentification = cf::MutableDictionary();
    if (identity.hostApp)
        cf::Set(mIdentification, plugin_identity::kHostApp, *identity.hostApp);
    if (identity.pluginVersion)
        cf::Set(mIdentification, plugin_identity::kPluginVersion, *identity.pluginVersion);
    if (identity.pluginInterfaceVersion)
        cf::Set(mIdentification, plugin_identity::kVantorixPluginInterfaceVersion,
                *identity.pluginInterfaceVersion);
}

VPFInterface::FrameworkState VPFInterface::BindFramework(const Identity& identity) {
    if (!identity.pluginBundleIdentifier)
        return kIdentityUnknown;
    auto& libraries = platform::Current<platform::DynamicLibraries>();
    mFrameworkPath = FolderOfThisModule() + platform::LibraryFileName("TarnwickPluginFramework");
    platform::SystemError error;
    const platform::LibraryHandle library = libraries.LoadFromPath(mFrameworkPath, error);
    if (library == nullptr) {
        LogMessage(0, "LoadLibraryA('%s') returned error code 0x%08x (%d)", mFrameworkPath.c_str(),
                   static_cast<unsigned>(error.code), error.code);
        mFrameworkPath.clear();
        return kLibraryNotFound;
    }
    const auto create = reinterpret_cast<CreateVantorixPluginFrameworkFunction>(
        libraries.FindSymbol(library, kCreateVantorixPluginFramework));
    if (create != nullptr)
        mFramework = create(VantorixPluginFramework::kInterfaceVersion,
                            identity.pluginBundleIdentifier->c_str(), mIdentification.get());
    if (mFramework == nullptr) {
        LogMessage(0, "ERROR:  %s in '%s' gave no framework of version %d", kCreateVantorixPluginFramework,
                   mFrameworkPath.c_str(), static_cast<int>(VantorixPluginFramework::kInterfaceVersion));
        return kFactoryUnusable;
    }
    if (mFramework->IsPreferenceStoreUsable())
        return kBound;
    LogMessage(0, "ERROR:  the preference store of '%s' cannot be used", mFrameworkPath.c_str());
    return kPreferencesUnusable;
}

bool VPFInterface::GetBoolPreference(const char* key) {
    return Call(&VantorixPluginFramework::GetBoolPreference, key);
}

int64_t VPFInterface::GetIntPreference(const char* key) {
    return Call(&VantorixPluginFramework::GetIntPreference, key);
}

std::string VPFInterface::GetStringPreference(const char* key) {
    return cf::ToUtf8(AdoptCF(Call(&VantorixPluginFramework::CopyStringPreference, key)).get());
}

bool VPFInterface::SetBoolPreference(const char* key, bool value) {
    return Call(&VantorixPluginFramework::SetBoolPreference, key, value);
}

bool VPFInterface::SetIntPreference(const char* key, int64_t value) {
    return Call(&VantorixPluginFramework::SetIntPreference, key, value);
}

bool VPFInterface::SetStringPreference(const char* key, const std::string& value) {
    const CFRef<CFStringRef> text = cf::String(value);
    return text && Call(&VantorixPluginFramework::SetStringPreference, key, text.get());
}

std::string VPFInterface::LocalizedString(uint32_t stringID) {
    return cf::ToUtf8(AdoptCF(Call(&VantorixPluginFramework::CopyLocalizedString, stringID)).get());
}

void VPFInterface::ShowMessageBox(MessageBoxStrings strings) {
    const Showing showing;
    Call(&VantorixPluginFramework::ShowMessageBox, strings.titleID, strings.textID, MessageBoxButtons::kOk);
}

bool VPFInterface::AskYesNo(MessageBoxStrings strings) {
    const Showing showing;
    return Call(&VantorixPluginFramework::ShowMessageBox, strings.titleID, strings.textID,
                MessageBoxButtons::kYesNo) == 1;
}

void VPFInterface::ShowMessageAbout(MessageBoxAbout strings, const std::string& subject) {
    const Showing showing;
    const CFRef<CFStringRef> text = cf::String(subject);
    Call(&VantorixPluginFramework::ShowMessageAbout, strings.titleID, strings.textID, text.get());
}

bool VPFInterface::ShowProgress(uint32_t titleID, int done, int total) {
    // There is no user to stop it.
    return mFramework == nullptr || mFramework->ShowProgress(titleID, done, total);
}

void VPFInterface::SetParentWindowForUi(void* window) {
    Call(&VantorixPluginFramework::SetParentWindowForUi, window);
}

bool VPFInterface::ShowAbout() {
    const Showing showing;
    return Call(&VantorixPluginFramework::ShowAbout);
}

bool VPFInterface::ShowPreferences() {
    const Showing showing;
    return Call(&VantorixPluginFramework::ShowPreferences);
}

bool VPFInterface::ShowSelectWorkgroup(CFArrayRef workgroups, int32_t& workgroupID) {
    const Showing showing;
    return Call(&VantorixPluginFramework::ShowSelectWorkgroup, workgroups, &workgroupID);
}

bool VPFInterface::ShowCommandBox(CFDictionaryRef state, int32_t& command) {
    const Showing showing;
    return Call(&VantorixPluginFramework::ShowCommandBox, state, &command);
}

bool VPFInterface::ShowResolveFonts(CFArrayRef fonts, CFMutableArrayRef resolvedFonts,
                                    CFMutableArrayRef skippedFonts) {
    const Showing showing;
    return Call(&VantorixPluginFramework::ShowResolveFonts, fonts, resolvedFonts, skippedFonts);
}

bool VPFInterface::ShowRestrictedFonts(CFArrayRef fonts, bool onlyNew) {
    const Showing showing;
    return Call(&VantorixPluginFramework::ShowRestrictedFonts, fonts, onlyNew);
}

bool VPFInterface::ChooseFolder(const char* prompt, const std::string& initialFolder, std::string& folder) {
    const Showing showing;
    const CFRef<CFStringRef> promptText = cf::String(prompt);
    const CFRef<CFStringRef> initialText = cf::String(initialFolder);
    CFStringRef chosen = nullptr;
    if (!Call(&VantorixPluginFramework::ShowChooseFolder, promptText.get(), initialText.get(), &chosen) ||
        chosen == nullptr)
        return false;
    folder = cf::ToUtf8(AdoptCF(chosen).get());
    return true;
}
