#include "FakeInterfaceLibrary.h"

#include <algorithm>
#include <mutex>

#include "Records.h"

namespace {

FakeInterfaceLibrary* current = nullptr;

/// One call at a time: the trace reaches Log from whatever thread writes it.
std::recursive_mutex callsLock;

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

CFDictionaryRef NewRecord(const CFRef<CFMutableDictionaryRef>& record) {
    return CFRef<CFDictionaryRef>(record).release();
}

void AppendFonts(CFMutableArrayRef fonts, int64_t activationState) {
    for (const auto& [databaseID, name] : current->fonts) {
        const auto font = Record(kGS_PostScriptNameKey, name, kGS_DatabaseIDKey, databaseID,
                                 kGS_ActivationStateKey, activationState, kGS_FontKindKey, "OpenType - TT",
                                 kGS_LocationKey, current->remoteFonts.contains(databaseID) ? 0 : 1);
        if (current->fontVersions.contains(databaseID))
            cf::Set(font, kGS_VersionKey, current->fontVersions[databaseID]);
        if (fonts != nullptr)
            cf::Append(fonts, font);
    }
}

void AppendUnmatchedFonts(CFMutableArrayRef fonts) {
    for (const std::string& name : current->unmatchedFonts) {
        const auto font = Record(kGS_PostScriptNameKey, name);
        if (current->replacementID != 0)
            cf::Set(font, kGS_PossibleReplacementsKey,
                    Record("Replacement", Record(kGS_DatabaseIDKey, current->replacementID)));
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

#define ANSWER_WITH(symbol, member)                                         \
    void Perform(Symbol<kIndexOf##symbol>, PluginFacadeRef, auto* output) { \
        *output = current->member;                                          \
    }
ANSWER_WITH(GetIsLoggedIn, isLoggedIn)
ANSWER_WITH(GetRunningStandalone, isStandalone)
ANSWER_WITH(GetIsCoreAgentProcessRunning, isAgentRunning)
ANSWER_WITH(GetIsGoogleWebFontsEnabled, areWebFontsEnabled)
ANSWER_WITH(GetIsReplicationRunning, isReplicationRunning)
ANSWER_WITH(CanAccessGoogleFonts, canAccessWebFonts)
ANSWER_WITH(GetCurrentReplicationMode, replicationMode)
#undef ANSWER_WITH
void Perform(Symbol<kIndexOfMotherMayI>, PluginFacadeRef, int32_t permission, bool* outIsPermitted) {
    *outIsPermitted = current->permissions.contains(permission);
}
void Perform(Symbol<kIndexOfInitThreadInstance>, PluginThreadInstanceRef* outThread) {
    *outThread = reinterpret_cast<PluginThreadInstanceRef>(&callsLock);
}
void Perform(Symbol<kIndexOfLog>, PluginThreadInstanceRef thread, const char* text) {
    if (thread != nullptr)
        current->log += text;
}
void Perform(Symbol<kIndexOfActivateDocumentFontsByPath>, PluginFacadeRef, CFStringRef, CFArrayRef fonts,
             CFMutableArrayRef matchedFonts, CFMutableArrayRef unmatchedFonts,
             CFMutableArrayRef reportedFonts) {
    current->wanted = RetainCF(fonts);
    AppendFonts(matchedFonts, current->activationStateBefore);
    AppendFonts(reportedFonts, current->activationStateAfter);
    AppendUnmatchedFonts(unmatchedFonts);
}
void Perform(Symbol<kIndexOfActivateFonts>, PluginFacadeRef, CFArrayRef fonts, CFStringRef, CFStringRef,
             CFMutableArrayRef matchedFonts) {
    current->wanted = RetainCF(fonts);
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
void Perform(Symbol<kIndexOfGetAllWorkgroupsForUser>, PluginFacadeRef, CFMutableArrayRef workgroups) {
    for (const auto& [id, type, name] : current->workgroups)
        cf::Append(workgroups,
                   Record(kGS_WorkgroupIDKey, id, kGS_WorkgroupTypeKey, type, kGS_WorkgroupNameKey, name));
}
void Perform(Symbol<kIndexOfCreateTopLevelSet>, PluginFacadeRef, CFStringRef, int32_t, int32_t* outSetID) {
    *outSetID = 5;
}
void Perform(Symbol<kIndexOfExportFonts>, PluginFacadeRef, CFArrayRef fonts, CFStringRef destinationFolder,
             CFMutableArrayRef) {
    for (CFIndex index = 0; index < cf::Count(fonts); ++index)
        current->exportedTo.push_back(cf::ToUtf8(destinationFolder));
}

CFRef<CFArrayRef> Numbers(const std::vector<int32_t>& numbers) {
    CFRef<CFMutableArrayRef> array = cf::MutableArray();
    for (const int32_t number : numbers)
        cf::Append(array, number);
    return array;
}

void Perform(Symbol<kIndexOfSetGoogleWebFontsEnabled>, PluginFacadeRef, bool isEnabled) {
    current->areWebFontsEnabled = isEnabled;
}
void Perform(Symbol<kIndexOfGetFontInfoByID>, PluginFacadeRef, uint32_t fontID, CFDictionaryRef* outNewFont) {
    *outNewFont = NewRecord(Record(kGS_DatabaseIDKey, fontID));
}
void Perform(Symbol<kIndexOfGetFontConflicts>, PluginFacadeRef, CFArrayRef,
             CFMutableArrayRef conflictingFonts) {
    for (const int64_t databaseID : current->conflictingFonts)
        cf::Append(conflictingFonts, Record(kGS_DatabaseIDKey, databaseID));
}
void Perform(Symbol<kIndexOfCreateSmartList>, PluginFacadeRef, CFStringRef, CFArrayRef, CFArrayRef,
             CFArrayRef, int32_t* outSmartListID) {
    *outSmartListID = 77;
}
void Perform(Symbol<kIndexOfGetSmartList>, PluginFacadeRef, int32_t smartListID,
             CFDictionaryRef* outNewSmartList) {
    for (const auto& list : current->smartLists) {
        if (list.id == smartListID)
            *outNewSmartList = NewRecord(
                Record(kGS_SmartListIDKey, list.id, kGS_SmartListNameKey, list.name, kGS_WorkgroupIDsKey,
                       Numbers(list.workgroupIDs), kGS_SetIDsKey, Numbers(list.setIDs), kGS_SmartSetIDsKey,
                       Numbers(list.smartSetIDs), kGS_ListDefinitionKey, list.definition));
    }
}
void Perform(Symbol<kIndexOfGetAllSmartLists>, PluginFacadeRef, CFMutableArrayRef smartLists) {
    for (const auto& list : current->smartLists)
        cf::Append(smartLists, Record(kGS_SmartListIDKey, list.id, kGS_SmartListNameKey, list.name));
}
void Perform(Symbol<kIndexOfGetSmartListFonts>, PluginFacadeRef, int32_t, CFMutableArrayRef fonts) {
    for (const auto& font : current->smartListFonts)
        cf::Append(fonts, font);
}

constexpr const char* kSymbols[] = {
#define NAME_OF(symbol, parameters) #symbol,
    TARNWICK_PLUGIN_FUNCTIONS(NAME_OF)
#undef NAME_OF
};

/// Of a text, a number, or an array, in which -1 stands for what is no number; of other arguments nothing.
template <class Argument>
std::string TextOf(Argument argument) {
    std::string text;
    if constexpr (std::is_same_v<Argument, CFStringRef>) {
        text = "'" + cf::ToUtf8(argument) + "'";
    } else if constexpr (std::is_same_v<Argument, const char*>) {
        text = "'" + std::string(argument) + "'";
    } else if constexpr (std::is_same_v<Argument, CFArrayRef>) {
        for (CFIndex index = 0; index < cf::Count(argument); ++index)
            text += (index > 0 ? "," : "") +
                    std::to_string(cf::ToInt64(CFArrayGetValueAtIndex(argument, index)).value_or(-1));
        text = "[" + text + "]";
    } else if constexpr (std::is_integral_v<Argument>) {
        text = std::to_string(argument);
    }
    return text;
}

template <class Function>
struct FakeOf;

template <class... Arguments>
struct FakeOf<uint32_t (*)(Arguments...)> {
    /// One function per symbol: the symbol is a template argument by its index in the table.
    template <int kIndex>
    static uint32_t Call(Arguments... arguments) {
        const std::lock_guard guard(callsLock);
        const ErrorCode code = Answer(kSymbols[kIndex]);
        if (code == CoreErrorCodes::kSuccess) {
            std::string all;
            for (const std::string& text : {std::string(), TextOf(arguments)...})
                all += (all.empty() || text.empty() ? "" : ", ") + text;
            current->given.push_back(kSymbols[kIndex] + ("(" + all + ")"));
            Perform(Symbol<kIndex>(), arguments...);
        }
        return code;
    }
};

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
