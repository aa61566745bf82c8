#include "FontManagerInterface.h"

#include "MarquellGlobals.h"
#include "NotificationQueue.h"
#include "TraceLog.h"
#include "VersionsAreCompatible.h"
#include "platform/DynamicLibrary.h"
#include "platform/VersionResource.h"

namespace {

constexpr size_t kLongestModulePath = 1024;

}  // namespace

std::string FontManagerInterface::StringValueFromVersionResourceCopy(const char* fieldName) {
    static const char addressInThisModule = 0;
    LogMessage(0, "Entering StringValueFromVersionResourceCopy(fieldName \"%s\")", fieldName);
    const std::string path =
        platform::Current<platform::DynamicLibraries>().PathOfModuleAt(&addressInThisModule);
    const bool isTooLong = path.size() >= kLongestModulePath;
    if (isTooLong)
        LogMessage(0, "*** ERROR:  Buffer not large enough for plugin DLL file path!");
    LogMessage(0, "Plugin DLL file path is \"%s\"%s", path.substr(0, kLongestModulePath - 1).c_str(),
               isTooLong ? " (TRUNCATED!!!)" : "");
    platform::SystemError error;
    size_t size = 0;
    const auto value = platform::Current<platform::VersionResources>().FromModuleAt(&addressInThisModule,
                                                                                    fieldName, error, &size);
    if (!error)
        LogMessage(0, "Got version resource info of size %d bytes.", static_cast<int>(size));
    return value.value_or("x.x.x.x");
}

FontManagerInterface& FontManagerInterface::GetSharedInstance() {
    static FontManagerInterface& shared =
        *std::unique_ptr<FontManagerInterface>(new FontManagerInterface).release();  // lives to process end
    return shared;
}

bool FontManagerInterface::CompatibleFontManagerIsRunning() {
    LogMessage(1,
               "Entering FontManagerInterface::CompatibleFontManagerIsRunning(); sm_pFontManager is 0x%08x",
               TraceAddress(sm_pFontManager));
    bool result = false;
    const GScopedLock lock(mFontManagerLock);
    if (lock.Status() == CoreErrorCodes::kSuccess)
        result = sm_pFontManager ? mIsCompatible : CreateFontManager();
    LogMessage(-1, "Exiting FontManagerInterface::CompatibleFontManagerIsRunning(); return code %d", result);
    return result;
}

bool FontManagerInterface::CreateFontManager() {
    std::string path;
    std::string version;
    uint32_t missingCount = 0;
    const bool isLoaded = VPILoader::GetSharedInstance()->IsLoaded(&path, &version, &missingCount);
    if (!isLoaded || missingCount > 0) {
        LogMessage(0, "ERROR:  interfaceLoaded(%s) %d function(s) missing from \"%s\"",
                   isLoaded ? "true" : "false", static_cast<int>(missingCount), path.c_str());
        return false;
    }
    sm_pFontManager = mFontManagers.emplace_back(std::make_unique<CoreAgentInterface>()).get();
    SetFontManagerAccess(this);
    NotificationQueue::GetSharedInstance().Open();
    sm_pFontManager->InitializeCoreAgent();
    const std::string pluginVersion = StringValueFromVersionResourceCopy("PrivateBuild");
    LogMessage(0, "VPI at location '%s' is version '%s' and plugin version is '%s'", path.c_str(),
               version.c_str(), pluginVersion.c_str());
    mIsCompatible = VersionsAreCompatible(pluginVersion, version);
    return mIsCompatible;
}

bool FontManagerInterface::IsUsable() {
    VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface();
    return sm_pFontManager && mIsCompatible && MarquellGlobals::IsPluginFunctional() &&
           preferences != nullptr && preferences->GetBoolPreference("EnablePlugin");
}

void FontManagerInterface::OnHostAppShuttingDown() {
    // Nothing is offered from here on.
    mDefaultWorkgroupID.reset();
    MarquellGlobals::SetPluginServicesEnabled(false);
    MarquellGlobals::SetConnectedToCore(false);
    if (!sm_pFontManager) {
        LogMessage(0, "*** UH-OH, sm_pFontManager is NULL in FontManagerInterface::OnHostAppShuttingDown");
        return;
    }
    const ScopeExit release([this] { ReleaseFontManager(); });
    VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface();
    if (preferences != nullptr && preferences->GetBoolPreference("CloseFontsOnHostAppQuit") && IsLoggedIn())
        MarquellGlobals::GetSharedFontActivationTracker()->CloseAllFonts(true);
}

void FontManagerInterface::ReleaseFontManager() {
    const GScopedLock lock(mFontManagerLock);
    if (lock.Status() != CoreErrorCodes::kSuccess || sm_pFontManager == nullptr)
        return;
    sm_pFontManager->CleanUpOnShutdown();
    NotificationQueue::GetSharedInstance().Close();
    SetFontManagerAccess(nullptr);
    sm_pFontManager = nullptr;
}

bool FontManagerInterface::IsLoggedIn() {
    return sm_pFontManager && sm_pFontManager->IsLoggedIn();
}

ErrorCode FontManagerInterface::ActivateDocumentFonts(const std::string& documentPath,
                                                      const DocumentFontLists& lists,
                                                      CFMutableArrayRef matchedFonts) {
    return sm_pFontManager ? sm_pFontManager->ActivateDocumentFontsByPath(documentPath, lists, matchedFonts)
                           : kErrorMarquellNotRunning;
}

ErrorCode FontManagerInterface::ActivateFontsByID(CFArrayRef fonts, const std::string& documentIdentifier,
                                                  CFMutableArrayRef matchedFonts) {
    return sm_pFontManager ? sm_pFontManager->ActivateFontsByID(fonts, documentIdentifier, matchedFonts)
                           : kErrorMarquellNotRunning;
}

PluginActivationStates FontManagerInterface::GetPluginActivationStates(
    const std::vector<uint32_t>& databaseIDs) {
    PluginActivationStates states;
    if (sm_pFontManager) {
        // What it cannot tell is left out; the tracker counts that as still activated.
        static_cast<void>(sm_pFontManager->GetClientFontActivationStates(databaseIDs, states));
        LogMessage(0, "FontManagerInterface::GetClientFontActivationStates returning a map with %d entries",
                   static_cast<int>(states.size()));
    }
    return states;
}

int16_t FontManagerInterface::XTDeactivateFont(CFDictionaryRef font, uint64_t context) {
    if (!sm_pFontManager)
        return static_cast<int16_t>(kErrorMarquellNotRunning);
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    cf::Append(fonts, font);
    // The 16-bit status has no room for the font manager's codes; any failure is a plain error.
    return sm_pFontManager->DeactivateFonts(fonts.get(), context, nullptr) == CoreErrorCodes::kSuccess ? 0
                                                                                                       : -1;
}

ErrorCode FontManagerInterface::DeactivateFonts(CFArrayRef fonts, uint64_t context,
                                                CFMutableArrayRef deactivatedFonts) {
    return sm_pFontManager ? sm_pFontManager->DeactivateFonts(fonts, context, deactivatedFonts)
                           : kErrorMarquellNotRunning;
}

bool FontManagerInterface::SaveDocumentFonts(const std::string& documentPath, bool replace,
                                             CFStringRef hint) {
    return sm_pFontManager &&
           sm_pFontManager->SaveDocumentFonts(documentPath, replace, hint) == CoreErrorCodes::kSuccess;
}

bool FontManagerInterface::ShowSaveFolderDialog(const std::string& initialPath, std::string& inOutSavePath) {
    constexpr char kPrompt[] =
        "Choose the destination for collecting fonts.  Collected fonts will be placed in a sub-folder there.";
    LogMessage(1, "Entering ShowSaveFolderDialog(..., initial path \"%s\")", initialPath.c_str());
    VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface();
    std::string folder;
    bool isChosen = framework != nullptr && framework->ChooseFolder(kPrompt, initialPath, folder);
    if (!isChosen) {
        LogMessage(0, "SHBrowseForFolder returned NULL.  Hopefully that means the user cancelled.");
    } else if (folder.empty()) {
        LogMessage(0, "*** UH-OH, SHGetPathFromIDList returned NULL.");
        isChosen = false;
    } else {
        inOutSavePath = folder;
    }
    LogMessage(-1, "Exiting ShowSaveFolderDialog, returning %d, with inOutSavePath = \"%s\"", isChosen,
               inOutSavePath.c_str());
    return isChosen;
}
