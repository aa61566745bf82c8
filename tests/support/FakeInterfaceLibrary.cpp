#include "FakeInterfaceLibrary.h"

#include <CoreFoundation++/CFRef.h>

#include <algorithm>
#include <mutex>
#include <type_traits>

namespace {

FakeInterfaceLibrary* current = nullptr;

/// One call at a time: the trace reaches Log from whatever thread writes it.
std::recursive_mutex callsLock;

/// Notes the call and answers with the next code of its script.
ErrorCode Answer(const char* symbol) {
    current->calls.emplace_back(symbol);
    if (const ErrorCode code = current->answer ? current->answer(symbol) : CoreErrorCodes::kSuccess)
        return code;
    auto& codes = current->codes[symbol];
    if (codes.empty())
        return CoreErrorCodes::kSuccess;
    const ErrorCode code = codes.front();
    codes.pop_front();
    return code;
}

void AppendFonts(CFMutableArrayRef fonts, int64_t activationState) {
    for (const auto& [databaseID, name] : current->fonts) {
        const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
        cf::Set(font, kGS_PostScriptNameKey, name);
        cf::Set(font, kGS_DatabaseIDKey, databaseID);
        cf::Set(font, kGS_ActivationStateKey, activationState);
        cf::Set(font, kGS_FontKindKey, "OpenType - TT");
        cf::Set(font, kGS_LocationKey, current->remoteFonts.contains(databaseID) ? 0 : 1);
        if (current->fontVersions.contains(databaseID))
            cf::Set(font, kGS_VersionKey, current->fontVersions[databaseID]);
        if (fonts != nullptr)
            cf::Append(fonts, font);
    }
}

void AppendUnmatchedFonts(CFMutableArrayRef fonts) {
    for (const std::string& name : current->unmatchedFonts) {
        const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
        cf::Set(font, kGS_PostScriptNameKey, name);
        if (current->replacementID != 0) {
            const CFRef<CFMutableDictionaryRef> replacement = cf::MutableDictionary();
            cf::Set(replacement, kGS_DatabaseIDKey, current->replacementID);
            const CFRef<CFMutableDictionaryRef> replacements = cf::MutableDictionary();
            cf::Set(replacements, "Replacement", replacement);
            cf::Set(font, kGS_PossibleReplacementsKey, replacements);
        }
        cf::Append(fonts, font);
    }
}

enum SymbolIndex {
#define INDEX_OF(symbol, parameters) kIndexOf##symbol,
    TARNWICK_PLUGIN_FUNCTIONS(INDEX_OF)
#undef INDEX_OF
};

template <int kIndex>
using Symbol = std::integral_constant<int, kIndex>;

// What a successful call does: nothing, unless there is an overload for its symbol.
template <int kIndex, class... Arguments>
void Perform(Symbol<kIndex>, Arguments...) {}

void Perform(Symbol<kIndexOfGetIsLoggedIn>, PluginFacadeRef, bool* outIsLoggedIn) {
    *outIsLoggedIn = current->isLoggedIn;
}
void Perform(Symbol<kIndexOfGetRunningStandalone>, PluginFacadeRef, bool* outIsStandalone) {
    *outIsStandalone = current->isStandalone;
}
void Perform(Symbol<kIndexOfGetIsCoreAgentProcessRunning>, PluginFacadeRef, bool* outIsRunning) {
    *outIsRunning = current->isAgentRunning;
}
void Perform(Symbol<kIndexOfCanExportFonts>, PluginFacadeRef, CFArrayRef, bool* outCanExport) {
    *outCanExport = current->canExport;
}
void Perform(Symbol<kIndexOfMotherMayI>, PluginFacadeRef, int32_t permission, bool* outIsPermitted) {
    *outIsPermitted = current->permissions.contains(permission);
}
void Perform(Symbol<kIndexOfGetAreSchemaVersionsInSync>, PluginFacadeRef, bool* outAreInSync) {
    *outAreInSync = current->areSchemaVersionsInSync;
}
void Perform(Symbol<kIndexOfLog>, PluginThreadInstanceRef, const char* text) {
    current->log += text;
}
void Perform(Symbol<kIndexOfBeginLogging>, PluginThreadInstanceRef, const char* logFileName) {
    current->logFile = logFileName;
}
void Perform(Symbol<kIndexOfActivateDocumentFontsByPath>, PluginFacadeRef, CFStringRef, CFArrayRef,
             CFMutableArrayRef matchedFonts, CFMutableArrayRef unmatchedFonts,
             CFMutableArrayRef reportedFonts) {
    AppendFonts(matchedFonts, current->activationStateBefore);
    AppendFonts(reportedFonts, current->activationStateAfter);
    AppendUnmatchedFonts(unmatchedFonts);
}
void Perform(Symbol<kIndexOfActivateFonts>, PluginFacadeRef, CFArrayRef, CFStringRef, CFStringRef,
             CFMutableArrayRef matchedFonts) {
    AppendFonts(matchedFonts, current->activationStateBefore);
}
void Perform(Symbol<kIndexOfGetFontsByPostscriptName>, PluginFacadeRef, CFStringRef, int32_t,
             CFMutableArrayRef fonts) {
    AppendFonts(fonts, current->activationStateBefore);
}
void Perform(Symbol<kIndexOfGetGlyphscanXMPData>, PluginFacadeRef, uint32_t fontID, CFStringRef* outNewXML) {
    if (current->fingerprints.contains(fontID))
        *outNewXML = cf::String(current->fingerprints[fontID]).release();
}
void Perform(Symbol<kIndexOfGetClientFontActivationStates>, PluginFacadeRef, CFArrayRef,
             CFMutableDictionaryRef states) {
    for (const auto& [databaseID, isActive] : current->activationStates)
        CFDictionarySetValue(states, cf::Number(databaseID).get(), cf::Bool(isActive));
}
void Perform(Symbol<kIndexOfGetAllWorkgroupsForUser>, PluginFacadeRef, CFMutableArrayRef workgroups) {
    for (const auto& [id, type, name] : current->workgroups) {
        const CFRef<CFMutableDictionaryRef> workgroup = cf::MutableDictionary();
        cf::Set(workgroup, kGS_WorkgroupIDKey, id);
        cf::Set(workgroup, kGS_WorkgroupTypeKey, type);
        cf::Set(workgroup, kGS_WorkgroupNameKey, name);
        cf::Append(workgroups, workgroup);
    }
}
void Perform(Symbol<kIndexOfCreateTopLevelSet>, PluginFacadeRef, CFStringRef name, int32_t workgroupID,
             int32_t* outSetID) {
    current->sets.emplace_back(workgroupID, cf::ToUtf8(name));
    *outSetID = static_cast<int32_t>(current->sets.size());
}
void Perform(Symbol<kIndexOfAddFontsToSets>, PluginFacadeRef, CFArrayRef fontIDs, CFArrayRef) {
    for (CFIndex index = 0; index < cf::Count(fontIDs); ++index)
        current->fontsInSets.push_back(*cf::ToInt64(CFArrayGetValueAtIndex(fontIDs, index)));
}
void Perform(Symbol<kIndexOfExportFonts>, PluginFacadeRef, CFArrayRef fonts, CFStringRef destinationFolder,
             CFMutableArrayRef) {
    for (CFIndex index = 0; index < cf::Count(fonts); ++index)
        current->exportedTo.push_back(cf::ToUtf8(destinationFolder));
}
void Perform(Symbol<kIndexOfOSCreateDirectory>, const char* path) {
    current->foldersMade.emplace_back(path);
}

// ---- What panels ask for

std::string Text(int64_t number) {
    return std::to_string(number);
}
std::string Text(CFStringRef string) {
    return "'" + cf::ToUtf8(string) + "'";
}
std::string Text(CFArrayRef numbers) {
    std::string text;
    for (CFIndex index = 0; index < cf::Count(numbers); ++index)
        text +=
            (index > 0 ? "," : "") + Text(cf::ToInt64(CFArrayGetValueAtIndex(numbers, index)).value_or(-1));
    return "[" + text + "]";
}

template <class First, class... Others>
void NotePanelCall(const char* symbol, First first, Others... others) {
    std::string text = std::string(symbol) + "(" + Text(first);
    ((text += ", " + Text(others)), ...);
    current->panelCalls.push_back(text + ")");
}

CFRef<CFArrayRef> Numbers(const std::vector<int32_t>& numbers) {
    CFRef<CFMutableArrayRef> array = cf::MutableArray();
    for (const int32_t number : numbers)
        cf::Append(array, number);
    return array;
}

void Perform(Symbol<kIndexOfGetIsGoogleWebFontsEnabled>, PluginFacadeRef, bool* outIsEnabled) {
    *outIsEnabled = current->areWebFontsEnabled;
}
void Perform(Symbol<kIndexOfSetGoogleWebFontsEnabled>, PluginFacadeRef, bool isEnabled) {
    NotePanelCall("SetGoogleWebFontsEnabled", isEnabled);
    current->areWebFontsEnabled = isEnabled;
}
void Perform(Symbol<kIndexOfGetIsReplicationRunning>, PluginFacadeRef, bool* outIsRunning) {
    *outIsRunning = current->isReplicationRunning;
}
void Perform(Symbol<kIndexOfGetCurrentReplicationMode>, PluginFacadeRef, int32_t* outMode) {
    *outMode = current->replicationMode;
}
void Perform(Symbol<kIndexOfCanAccessGoogleFonts>, PluginFacadeRef, bool* outCanAccess) {
    *outCanAccess = current->canAccessWebFonts;
}
void Perform(Symbol<kIndexOfGetFontInfoByID>, PluginFacadeRef, uint32_t fontID, CFDictionaryRef* outNewFont) {
    NotePanelCall("GetFontInfoByID", fontID);
    const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
    cf::Set(font, kGS_DatabaseIDKey, fontID);
    *outNewFont = CFRef<CFDictionaryRef>(font).release();
}
void Perform(Symbol<kIndexOfGetFontConflicts>, PluginFacadeRef, CFArrayRef fontIDs,
             CFMutableArrayRef conflictingFonts) {
    NotePanelCall("GetFontConflicts", fontIDs);
    for (const int64_t databaseID : current->conflictingFonts) {
        const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
        cf::Set(font, kGS_DatabaseIDKey, databaseID);
        cf::Append(conflictingFonts, font);
    }
}
void Perform(Symbol<kIndexOfEnableDesignActivation>, PluginFacadeRef, uint32_t fontID, bool wholeFamily,
             bool enable, CFMutableArrayRef) {
    NotePanelCall("EnableDesignActivation", fontID, wholeFamily, enable);
}
void Perform(Symbol<kIndexOfRenderFontNamePreviewPNGs>, PluginFacadeRef, CFArrayRef highPriorityFontIDs,
             CFArrayRef fontIDs, CFMutableDictionaryRef) {
    NotePanelCall("RenderFontNamePreviewPNGs", highPriorityFontIDs, fontIDs);
}
void Perform(Symbol<kIndexOfRenameSmartList>, PluginFacadeRef, int32_t smartListID, CFStringRef name) {
    NotePanelCall("RenameSmartList", smartListID, name);
}
void Perform(Symbol<kIndexOfDeleteSmartList>, PluginFacadeRef, int32_t smartListID) {
    NotePanelCall("DeleteSmartList", smartListID);
}
void Perform(Symbol<kIndexOfQueryForSmartListFonts>, PluginFacadeRef, int32_t smartListID,
             CFArrayRef workgroupIDs, CFArrayRef setIDs, CFArrayRef smartSetIDs) {
    NotePanelCall("QueryForSmartListFonts", smartListID, workgroupIDs, setIDs, smartSetIDs);
}
void Perform(Symbol<kIndexOfSetSmartListQuery>, PluginFacadeRef, int32_t smartListID, CFArrayRef workgroupIDs,
             CFArrayRef setIDs, CFArrayRef smartSetIDs) {
    NotePanelCall("SetSmartListQuery", smartListID, workgroupIDs, setIDs, smartSetIDs);
}
void Perform(Symbol<kIndexOfCreateSmartList>, PluginFacadeRef, CFStringRef name, CFArrayRef workgroupIDs,
             CFArrayRef setIDs, CFArrayRef smartSetIDs, int32_t* outSmartListID) {
    NotePanelCall("CreateSmartList", name, workgroupIDs, setIDs, smartSetIDs);
    *outSmartListID = 77;
}
void Perform(Symbol<kIndexOfGetSmartList>, PluginFacadeRef, int32_t smartListID,
             CFDictionaryRef* outNewSmartList) {
    NotePanelCall("GetSmartList", smartListID);
    for (const auto& list : current->smartLists) {
        if (list.id != smartListID)
            continue;
        const CFRef<CFMutableDictionaryRef> record = cf::MutableDictionary();
        cf::Set(record, kGS_SmartListIDKey, list.id);
        cf::Set(record, kGS_SmartListNameKey, list.name);
        cf::Set(record, kGS_WorkgroupIDsKey, Numbers(list.workgroupIDs));
        cf::Set(record, kGS_SetIDsKey, Numbers(list.setIDs));
        cf::Set(record, kGS_SmartSetIDsKey, Numbers(list.smartSetIDs));
        cf::Set(record, kGS_ListDefinitionKey, list.definition);
        *outNewSmartList = CFRef<CFDictionaryRef>(record).release();
    }
}
void Perform(Symbol<kIndexOfGetAllSmartLists>, PluginFacadeRef, CFMutableArrayRef smartLists) {
    for (const auto& list : current->smartLists) {
        const CFRef<CFMutableDictionaryRef> record = cf::MutableDictionary();
        cf::Set(record, kGS_SmartListIDKey, list.id);
        cf::Set(record, kGS_SmartListNameKey, list.name);
        cf::Append(smartLists, record);
    }
}
void Perform(Symbol<kIndexOfGetSmartListFonts>, PluginFacadeRef, int32_t smartListID,
             CFMutableArrayRef fonts) {
    NotePanelCall("GetSmartListFonts", smartListID);
    for (const auto& font : current->smartListFonts)
        cf::Append(fonts, font);
}

template <class Function>
struct FakeOf;

template <class... Arguments>
struct FakeOf<uint32_t (*)(Arguments...)> {
    /// One function per symbol: the symbol is a template argument by its index in the table.
    template <int kIndex>
    static uint32_t Call(Arguments... arguments);
};

constexpr const char* kSymbols[] = {
#define NAME_OF(symbol, parameters) #symbol,
    TARNWICK_PLUGIN_FUNCTIONS(NAME_OF)
#undef NAME_OF
};

/// Texts, numbers, and how many elements an array has; of other arguments nothing.
template <class Argument>
std::string TextOf(Argument argument) {
    if constexpr (std::is_same_v<Argument, CFStringRef>)
        return "'" + cf::ToUtf8(argument) + "' ";
    else if constexpr (std::is_same_v<Argument, const char*>)
        return "'" + std::string(argument) + "' ";
    else if constexpr (std::is_same_v<Argument, CFArrayRef>)
        return "[" + std::to_string(cf::Count(argument)) + "] ";
    else if constexpr (std::is_integral_v<Argument>)
        return std::to_string(argument) + " ";
    else
        return {};
}

template <class... Arguments>
template <int kIndex>
uint32_t FakeOf<uint32_t (*)(Arguments...)>::Call(Arguments... arguments) {
    const std::lock_guard guard(callsLock);
    current->given.push_back((std::string(kSymbols[kIndex]) + " " + ... + TextOf(arguments)));
    const ErrorCode code = Answer(kSymbols[kIndex]);
    if (code == CoreErrorCodes::kSuccess)
        Perform(Symbol<kIndex>(), arguments...);
    return code;
}

}  // namespace

FakeInterfaceLibrary::FakeInterfaceLibrary() {
    current = this;
}
FakeInterfaceLibrary::~FakeInterfaceLibrary() {
    current = nullptr;
}

std::map<std::string, void*> FakeInterfaceLibrary::Symbols() {
    std::map<std::string, void*> symbols;
#define ADD_SYMBOL(symbol, parameters)          \
    symbols[#symbol] = reinterpret_cast<void*>( \
        static_cast<PluginFunction_##symbol>(FakeOf<PluginFunction_##symbol>::Call<kIndexOf##symbol>));
    TARNWICK_PLUGIN_FUNCTIONS(ADD_SYMBOL)
#undef ADD_SYMBOL
    return symbols;
}

int FakeInterfaceLibrary::CallsOf(const std::string& symbol) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), symbol));
}
