// The operations of the core agent interface: each is one call through its wrapper.
#include "CoreAgentInterface.h"
#include "HostPatience.h"
#include "MarquellGlobals.h"
#include "Preferences.h"
#include "TraceLog.h"

#include <algorithm>

ErrorCode CoreAgentInterface::ActivateDocumentFontsByPath(const std::string& documentPath,
                                                          const DocumentFontLists& lists) {
    constexpr char kName[] = "CoreAgentInterface::ActivateDocumentFontsByPath";
    ErrorCode code = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ReturningCode(kName, code), "Entering %s(..., '%s', ...)", kName,
                           documentPath.c_str());
    const CFRef<CFStringRef> path = cf::String(documentPath);
    mHasActivatedFonts = true;  // perhaps even when it fails
    return code = Call(&PluginFunctionTable::pfActivateDocumentFontsByPath, path.get(), lists.requestedFonts,
                       lists.matchedFonts, lists.unmatchedFonts, lists.reportedFonts);
}

ErrorCode CoreAgentInterface::ActivateFontByID(CFDictionaryRef font, const std::string& documentIdentifier,
                                               CFMutableArrayRef matchedFonts) {
    constexpr char kName[] = "CoreAgentInterface::ActivateFontByID";
    ErrorCode code = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ReturningCode(kName, code), "Entering %s(..., '%s', ...)", kName,
                           documentIdentifier.c_str());
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    cf::Append(fonts, font);
    return code = Activate(fonts.get(), documentIdentifier, matchedFonts);
}

ErrorCode CoreAgentInterface::ActivateFontsByID(CFArrayRef fonts, const std::string& documentIdentifier,
                                                CFMutableArrayRef matchedFonts) {
    constexpr char kName[] = "CoreAgentInterface::ActivateFontsByID";
    ErrorCode code = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ReturningCode(kName, code),
                           "Entering %s(CFArrayGetCount(fonts)=%d, documentIdentifier='%s', ...)", kName,
                           static_cast<int>(cf::Count(fonts)), documentIdentifier.c_str());
    return code = Activate(fonts, documentIdentifier, matchedFonts);
}

ErrorCode CoreAgentInterface::Activate(CFArrayRef fonts, const std::string& documentIdentifier,
                                       CFMutableArrayRef matchedFonts) {
    const CFRef<CFStringRef> identifier = cf::String(documentIdentifier);
    const bool isGlobal =
        MarquellGlobals::GetSharedVPFInterface()->GetBoolPreference(preferences::ActivateGlobally);
    const CFRef<CFStringRef> mode = cf::String(isGlobal ? kGS_ActivateGlobally : kGS_ActivateLocally);
    mHasActivatedFonts = true;  // perhaps even when it fails
    return Call(&PluginFunctionTable::pfActivateFonts, fonts, identifier.get(), mode.get(), matchedFonts);
}

ErrorCode CoreAgentInterface::KeepFonts() {
    const CFRef<CFStringRef> mode = cf::String(kGS_ActivateGlobally);
    return Call(&PluginFunctionTable::pfActivateFonts, static_cast<CFArrayRef>(nullptr),
                static_cast<CFStringRef>(nullptr), mode.get(), static_cast<CFMutableArrayRef>(nullptr));
}

ErrorCode CoreAgentInterface::DeactivateFonts(CFArrayRef fonts, uint64_t context,
                                              CFMutableArrayRef deactivatedFonts) {
    constexpr char kName[] = "CoreAgentInterface::DeactivateFonts";
    ErrorCode code = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ReturningCode(kName, code), "Entering %s(CFArrayGetCount(fonts)=%d, ...)", kName,
                           static_cast<int>(cf::Count(fonts)));
    return code = Call(&PluginFunctionTable::pfDeactivateFonts, fonts, context, deactivatedFonts);
}

ErrorCode CoreAgentInterface::GetClientFontActivationStates(const std::vector<uint32_t>& databaseIDs,
                                                            PluginActivationStates& states) {
    const CFRef<CFMutableArrayRef> ids = cf::NumberArray(databaseIDs);
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

bool CoreAgentInterface::canShowPostscriptReplacements() {
    constexpr int32_t kPermission = kPermission_ShowPostscriptReplacements;
    bool isPermitted = false;
    return Call(&PluginFunctionTable::pfMotherMayI, kPermission, &isPermitted) == CoreErrorCodes::kSuccess &&
           isPermitted;
}

bool CoreAgentInterface::AreSchemaVersionsInSync() {
    const bool areInSync = Ask(&PluginFunctionTable::pfGetAreSchemaVersionsInSync, false);
    if (!areInSync)
        LogMessage(0, "WARNING:  CoreAgentInterface::AreSchemaVersionsInSync() returning FALSE");
    return areInSync;
}

ErrorCode CoreAgentInterface::CollectFontsUsedByCurrentDocument(const std::string& documentPath,
                                                                const std::string& destinationFolder,
                                                                CFArrayRef fonts,
                                                                const CollectingProgress& progress) {
    const auto count = static_cast<int>(cf::Count(fonts));
    constexpr char kName[] = "CoreAgentInterface::CollectFontsUsedByCurrentDocument";
    ErrorCode code = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ReturningCode(kName, code), "Entering %s('%s', '%s', fontInfo array length=%d)",
                           kName, documentPath.c_str(), destinationFolder.c_str(), count);
    return code = count > 0 ? CollectFonts(destinationFolder, fonts, progress)
                            : MakeEmptyFolder(destinationFolder);
}

// In parts, so that the user sees how far it has come and can stop it; the list of the fonts is written for each.
ErrorCode CoreAgentInterface::CollectFonts(const std::string& destinationFolder, CFArrayRef fonts,
                                           const CollectingProgress& progress) {
    const CFRef<CFStringRef> folder = cf::String(destinationFolder);
    const auto count = static_cast<int>(cf::Count(fonts));
    constexpr int kMostParts = 20;
    const int step = (count + kMostParts - 1) / kMostParts;
    ErrorCode result = CoreErrorCodes::kSuccess;
    for (int done = 0; done < count; done += step) {
        if (!progress(done, count))
            return GZephyrinExportFonts::kTaskStopped;
        HostPatience::Renew();  // there is a bar to look at
        const CFRef<CFMutableArrayRef> part = cf::MutableArray();
        CFArrayAppendArray(part.get(), fonts, CFRangeMake(done, std::min(step, count - done)));
        const ErrorCode code = Call(&PluginFunctionTable::pfExportFonts, part.get(), folder.get(), nullptr);
        if (result == CoreErrorCodes::kSuccess)
            result = code;
        if (code != CoreErrorCodes::kSuccess && code != GZephyrinExportFonts::kFontUnavailableToExport)
            break;
    }
    progress(count, count);
    return result;
}

ErrorCode CoreAgentInterface::MakeEmptyFolder(const std::string& path) {
    LogMessage(0, "No fonts to collect.  Creating empty destination folder, if it does not already exist.");
    const VPILoader& library = *VPILoader::GetSharedInstance();
    if (library.pfOSDoesDirectoryExist == nullptr || library.pfOSCreateDirectory == nullptr)
        return CoreErrorCodes::kNotImplemented;
    bool exists = false;
    const ErrorCode code = library.pfOSDoesDirectoryExist(path.c_str(), &exists);
    return code == CoreErrorCodes::kSuccess && exists ? code : library.pfOSCreateDirectory(path.c_str());
}

ErrorCode CoreAgentInterface::CreateTopLevelSet(const std::string& name, int32_t workgroupID,
                                                int32_t& setID) {
    const CFRef<CFStringRef> text = cf::String(name);
    return Call(&PluginFunctionTable::pfCreateTopLevelSet, text.get(), workgroupID, &setID);
}

ErrorCode CoreAgentInterface::AddFontsToSet(CFArrayRef fonts, int32_t setID) {
    const CFRef<CFMutableArrayRef> fontIDs = cf::MutableArray();
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts)) {
        if (const auto id = cf::GetInt64(font, kGS_DatabaseIDKey))
            cf::Append(fontIDs, *id);
    }
    const CFRef<CFMutableArrayRef> setIDs = cf::MutableArray();
    cf::Append(setIDs, setID);
    return Call(&PluginFunctionTable::pfAddFontsToSets, fontIDs.get(), setIDs.get());
}

ErrorCode CoreAgentInterface::GetFontsByPostscriptName(const std::string& name, int32_t workgroupID,
                                                       CFMutableArrayRef fonts) {
    const CFRef<CFStringRef> text = cf::String(name);
    return Call(&PluginFunctionTable::pfGetFontsByPostscriptName, text.get(), workgroupID, fonts);
}

ErrorCode CoreAgentInterface::GetGlyphscanInfo(uint32_t databaseID, std::string& xml) {
    CFStringRef text = nullptr;
    const ErrorCode code = Call(&PluginFunctionTable::pfGetGlyphscanXMPData, databaseID, &text);
    xml = cf::ToUtf8(AdoptCF(text).get());
    return code;
}

ErrorCode CoreAgentInterface::GetFontConflicts(const std::vector<uint32_t>& databaseIDs,
                                               CFMutableArrayRef conflicts) {
    const CFRef<CFMutableArrayRef> ids = cf::NumberArray(databaseIDs);
    return Call(&PluginFunctionTable::pfGetFontConflicts, ids.get(), conflicts);
}

int32_t CoreAgentInterface::GetSystemWorkgroupID() {
    static int32_t systemWorkgroupID = kWorkgroupID_Unknown;  // one for the life of the process
    if (systemWorkgroupID != kWorkgroupID_Unknown) {
        LogMessage(0,
                   "CoreAgentInterface::GetSystemWorkgroupID : Returning cached System workgroup ID of %d.",
                   systemWorkgroupID);
        return systemWorkgroupID;
    }
    WorkgroupFilter filter;
    filter.includeSystemWorkgroup = true;
    std::vector<Workgroup> workgroups;
    if (GetAllWorkgroupsForUser(filter, workgroups) != CoreErrorCodes::kSuccess)
        return kWorkgroupID_Unknown;
    for (const Workgroup& workgroup : workgroups) {
        if (workgroup.type == kWorkgroupType_System)
            systemWorkgroupID = workgroup.id;
    }
    return systemWorkgroupID;
}

ErrorCode CoreAgentInterface::GetAllWorkgroupsForUser(const WorkgroupFilter& filter,
                                                      std::vector<Workgroup>& workgroups) {
    constexpr char kName[] = "CoreAgentInterface::GetAllWorkgroupsForUser";
    ErrorCode code = CoreErrorCodes::kUnknownError;
    const TraceScope trace(
        ReturningCode(kName, code),
        "Entering %s(..., includeAllWorkgroup=%d, includeSystemWorkgroup=%d, includeTypekitLibrary=%d)",
        kName, filter.includeAllWorkgroup, filter.includeSystemWorkgroup, filter.includeTypekitLibrary);
    const CFRef<CFMutableArrayRef> records = cf::MutableArray();
    code = Call(&PluginFunctionTable::pfGetAllWorkgroupsForUser, records.get());
    LogMessage(0, "%d workgroups found", static_cast<int>(cf::Count(records.get())));
    for (const CFDictionaryRef record : cf::Elements<CFDictionaryRef>(records.get())) {
        Workgroup workgroup = WorkgroupFromRecord(record);
        if ((workgroup.type == kWorkgroupType_All && !filter.includeAllWorkgroup) ||
            (workgroup.type == kWorkgroupType_System && !filter.includeSystemWorkgroup) ||
            (workgroup.type == kWorkgroupType_TypekitLibrary && !filter.includeTypekitLibrary))
            continue;
        LogMessage(0, "Adding '%s' to user's workgroup list.", workgroup.name.c_str());
        workgroups.push_back(std::move(workgroup));
    }
    return code;
}
