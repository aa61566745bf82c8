#include "FontManagerInterface.h"

#include <algorithm>
#include <utility>

#include "MarquellGlobals.h"
#include "NoDestructor.h"
#include "NotificationQueue.h"
#include "Preferences.h"
#include "ScopeExit.h"
#include "TraceLog.h"
#include "VersionsAreCompatible.h"
#include "platform/Clock.h"
#include "platform/DynamicLibrary.h"
#include "platform/VersionResource.h"

namespace {

constexpr size_t kLongestModulePath = 1024;
constexpr uint32_t kLongestCatchUpInterval = 16000;  // milliseconds

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
    static NoDestructor<FontManagerInterface> shared;
    return *shared;
}

bool FontManagerInterface::CompatibleFontManagerIsRunning() {
    bool result = false;
    const TraceScope trace(
        [&] {
            LogMessage(-1, "Exiting FontManagerInterface::CompatibleFontManagerIsRunning(); return code %d",
                       result);
        },
        "Entering FontManagerInterface::CompatibleFontManagerIsRunning(); sm_pFontManager is 0x%08x",
        TraceAddress(sm_pFontManager));
    const bool isNew = CreateFontManager();
    result = sm_pFontManager != nullptr;
    // Not under the lock: messages may show, behind which the host may quit.
    if (isNew && result)
        sm_pFontManager->InitializeCoreAgent();
    return result;
}

bool FontManagerInterface::CreateFontManager() {
    const GScopedLock lock(mFontManagerLock);
    if (lock.Status() != CoreErrorCodes::kSuccess || sm_pFontManager != nullptr)
        return false;
    std::string path;
    std::string version;
    uint32_t missingCount = 0;
    const bool isLoaded = VPILoader::GetSharedInstance()->IsLoaded(&path, &version, &missingCount);
    if (!isLoaded || missingCount > 0) {
        LogMessage(0, "ERROR:  interfaceLoaded(%s) %d function(s) missing from \"%s\"",
                   isLoaded ? "true" : "false", static_cast<int>(missingCount), path.c_str());
        return false;
    }
    auto fontManager = std::make_unique<CoreAgentInterface>();
    const std::string pluginVersion = StringValueFromVersionResourceCopy("PrivateBuild");
    LogMessage(0, "VPI at location '%s' is version '%s' and plugin version is '%s'", path.c_str(),
               version.c_str(), pluginVersion.c_str());
    if (!VersionsAreCompatible(pluginVersion, version))
        return false;  // nothing of such a library is called, its log included
    VPILoader::GetSharedInstance()->LogIntoFontManager();
    sm_pFontManager = mFontManagers.emplace_back(std::move(fontManager)).get();
    SetFontManagerAccess(this);
    NotificationQueue::GetSharedInstance().Open();
    return true;
}

bool FontManagerInterface::IsUsable() {
    return sm_pFontManager != nullptr && MarquellGlobals::IsPluginFunctional() &&
           MarquellGlobals::GetSharedVPFInterface()->GetBoolPreference(preferences::EnablePlugin);
}

void FontManagerInterface::OnUserAction() {
    if (sm_pFontManager && sm_pFontManager->OnUserAction() && !mDefaultWorkgroupID)
        InitializeDefaultWorkgroup();
    CatchUp();
}

bool FontManagerInterface::CatchUp() {
    if (cf::Count(mFontsToLetGo.get()) == 0)
        return true;
    if (!IsRunning())
        return false;
    const CFRef<CFMutableArrayRef> fonts = std::exchange(mFontsToLetGo, cf::MutableArray());
    LogMessage(0, "Letting go of %d font(s) that the agent could not be told of before",
               static_cast<int>(cf::Count(fonts.get())));
    return !CoreAgentInterface::IsUndelivered(DeactivateFonts(fonts.get(), 0, nullptr));
}

ErrorCode FontManagerInterface::OnIdle() {
    if (sm_pFontManager == nullptr)
        return CoreErrorCodes::kSuccess;
    const ErrorCode code = sm_pFontManager->ProcessNotifications();
    FontActivationTracker& tracker = *MarquellGlobals::GetSharedFontActivationTracker();
    if (sm_pFontManager == nullptr || sm_pFontManager->IsRecovering() ||
        (cf::Count(mFontsToLetGo.get()) == 0 && !tracker.HasClosesToCatchUp()))
        return code;
    const uint32_t now = platform::Current<platform::Clock>().TickCount();
    if (now - mLastCatchUpTick < mCatchUpInterval)
        return code;
    mLastCatchUpTick = now;
    mCatchUpInterval = std::min(mCatchUpInterval * 2, kLongestCatchUpInterval);
    if (sm_pFontManager->CanReachAgent()) {
        mCatchUpInterval = kFirstCatchUpInterval;
        tracker.CatchUp();
        CatchUp();
    }
    return code;
}

void FontManagerInterface::OnHostAppQuitting() {
    if (sm_pFontManager)
        sm_pFontManager->BeginQuitting();
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
    if (!IsLoggedIn())
        return;
    if (MarquellGlobals::GetSharedVPFInterface()->GetBoolPreference(preferences::CloseFontsOnHostAppQuit))
        MarquellGlobals::GetSharedFontActivationTracker()->CloseAllFonts(true);
    else
        static_cast<void>(sm_pFontManager->KeepFonts());  // reported where it failed
}

void FontManagerInterface::ReleaseFontManager() {
    const GScopedLock lock(mFontManagerLock);
    if (lock.Status() != CoreErrorCodes::kSuccess || sm_pFontManager == nullptr)
        return;
    sm_pFontManager->CleanUpOnShutdown();
    mFontsToLetGo = cf::MutableArray();  // they go with this process
    NotificationQueue::GetSharedInstance().Close();
    SetFontManagerAccess(nullptr);
    sm_pFontManager = nullptr;
}

bool FontManagerInterface::IsLoggedIn() {
    return sm_pFontManager && sm_pFontManager->IsLoggedIn();
}

ErrorCode FontManagerInterface::ActivateDocumentFonts(const std::string& documentPath,
                                                      const DocumentFontLists& lists) {
    // In this order: one of the fonts may be among those that are still to be let go of.
    return CatchUp() && sm_pFontManager  // a question may show behind which the host quits
               ? sm_pFontManager->ActivateDocumentFontsByPath(documentPath, lists)
               : kErrorMarquellNotRunning;
}

ErrorCode FontManagerInterface::ActivateFontsByID(CFArrayRef fonts, const std::string& documentIdentifier,
                                                  CFMutableArrayRef matchedFonts) {
    return CatchUp() && sm_pFontManager
               ? sm_pFontManager->ActivateFontsByID(fonts, documentIdentifier, matchedFonts)
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
    return DeactivateFonts(fonts.get(), context, nullptr) == CoreErrorCodes::kSuccess ? 0 : -1;
}

ErrorCode FontManagerInterface::DeactivateFonts(CFArrayRef fonts, uint64_t context,
                                                CFMutableArrayRef deactivatedFonts) {
    if (!sm_pFontManager)
        return kErrorMarquellNotRunning;
    const ErrorCode code = sm_pFontManager->DeactivateFonts(fonts, context, deactivatedFonts);
    if (CoreAgentInterface::IsUndelivered(code) && fonts != nullptr)
        CFArrayAppendArray(mFontsToLetGo.get(), fonts, CFRangeMake(0, CFArrayGetCount(fonts)));
    return code;
}

bool FontManagerInterface::SaveDocumentFonts(const std::string& documentPath, bool replace,
                                             CFStringRef hint) {
    return sm_pFontManager &&
           sm_pFontManager->SaveDocumentFonts(documentPath, replace, hint) == CoreErrorCodes::kSuccess;
}

bool FontManagerInterface::ShowSaveFolderDialog(const std::string& initialPath, std::string& inOutSavePath) {
    constexpr char kPrompt[] =
        "Choose the destination for collecting fonts.  Collected fonts will be placed in a sub-folder there.";
    bool isChosen = false;
    const TraceScope trace(
        [&] {
            LogMessage(-1, "Exiting ShowSaveFolderDialog, returning %d, with inOutSavePath = \"%s\"",
                       isChosen, inOutSavePath.c_str());
        },
        "Entering ShowSaveFolderDialog(..., initial path \"%s\")", initialPath.c_str());
    std::string folder;
    isChosen = MarquellGlobals::GetSharedVPFInterface()->ChooseFolder(kPrompt, initialPath, folder);
    if (!isChosen) {
        LogMessage(0, "SHBrowseForFolder returned NULL.  Hopefully that means the user cancelled.");
    } else if (folder.empty()) {
        LogMessage(0, "*** UH-OH, SHGetPathFromIDList returned NULL.");
        isChosen = false;
    } else {
        inOutSavePath = folder;
    }
    return isChosen;
}
