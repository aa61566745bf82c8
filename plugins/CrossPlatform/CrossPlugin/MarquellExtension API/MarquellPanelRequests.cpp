// The panel's requests about itself, the web fonts and single fonts.

#include <CoreFoundation++/CFRef.h>

#include "FailureReport.h"
#include "FontID.h"
#include "FontManagerCall.h"
#include "FontManagerInterface.h"
#include "MarquellGlobals.h"
#include "MarquellPanel.h"
#include "PanelMessages.h"
#include "ScopeExit.h"
#include "TraceLog.h"
#include "platform/Files.h"

using namespace panel_messages;

namespace {

constexpr char kLogCategory[] = "Miscellaneous";
constexpr char kPanelWidthPreference[] = "CS5PanelWidth";
constexpr char kPanelHeightPreference[] = "CS5PanelHeight";
constexpr char kDropDownSelectionPreference[] = "DropDownSelection";
constexpr char kDropDownSavesPreference[] = "DropDownSelectionSavesSmartLists";
constexpr char kWebFontsEverEnabledPreference[] = "GWFHaveEverBeenEnabled";

int64_t IntPreference(const char* key) {
    return MarquellGlobals::GetSharedVPFInterface()->GetIntPreference(key);
}

bool BoolPreference(const char* key) {
    return MarquellGlobals::GetSharedVPFInterface()->GetBoolPreference(key);
}

// A preference that cannot be stored was logged by the framework; the panel has no use for it.
void StoreInt(const char* key, int64_t value) {
    static_cast<void>(MarquellGlobals::GetSharedVPFInterface()->SetIntPreference(key, value));
}

void StoreBool(const char* key, bool value) {
    static_cast<void>(MarquellGlobals::GetSharedVPFInterface()->SetBoolPreference(key, value));
}

ErrorCode EnableWebFonts() {
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfSetGoogleWebFontsEnabled, true));
    StoreBool(kWebFontsEverEnabledPreference, true);
    return CoreErrorCodes::kSuccess;
}

struct WebFontsState {
    bool isEnabled = false;
    bool isReplicating = false;
    int32_t replicationMode = 0;
};

ErrorCode GetWebFontsState(WebFontsState& state) {
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetIsGoogleWebFontsEnabled, &state.isEnabled));
    // They may have been enabled by other means than this panel.
    if (state.isEnabled && !BoolPreference(kWebFontsEverEnabledPreference))
        StoreBool(kWebFontsEverEnabledPreference, true);
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetIsReplicationRunning, &state.isReplicating));
    RETURN_IF_FAILED(
        CallFontManager(&PluginFunctionTable::pfGetCurrentReplicationMode, &state.replicationMode));
    return CoreErrorCodes::kSuccess;
}

/// Activates the font's family until the host quits; `conflictID` is a font that is in its way, 0 for
/// none.
ErrorCode ActivateFamilyForDesign(uint32_t fontID, uint32_t& conflictID) {
    CFDictionaryRef fontInfo = nullptr;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetFontInfoByID, fontID, &fontInfo));
    const auto released = CFRef<CFDictionaryRef>::Adopt(fontInfo);
    const CFRef<CFMutableArrayRef> conflicts = cf::MutableArray();
    if (CoreAgentInterface* fontManager = FontManagerInterface::GetSharedInstance().GetFontManager()) {
        const ErrorCode code = fontManager->GetFontConflicts({fontID}, conflicts.get());
        if (code != CoreErrorCodes::kSuccess)  // no reason not to try
            ReportFailure(kLogCategory,
                          {"fontManager->GetFontConflicts({static_cast<UInt32>(outFontInfo.databaseID)}, "
                           "conflicts)",
                           __FILE__, __LINE__},
                          code);
    }
    conflictID = FontIDIn(cf::Get<CFDictionaryRef>(conflicts.get(), 0), kGS_DatabaseIDKey).value_or(0);
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfEnableDesignActivation, fontID, true, true,
                                     static_cast<CFMutableArrayRef>(nullptr)));
    return CoreErrorCodes::kSuccess;
}

}  // namespace

ErrorCode MarquellPanel::StartPanelInfo(const JSONValue&) {
    bool isStandalone = false;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetRunningStandalone, &isStandalone));
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kConnectionComplete, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(isStandalone, kIsStandaloneKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::IsWindows(const JSONValue&) {
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kIsWindows, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(
        GJSONUtils::SetValueForKey(platform::kPathSeparator == '\\', kIsWindowsKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::GetDimensions(const JSONValue&) {
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kGetDimensions, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(
        GJSONUtils::SetValueForKey(IntPreference(kPanelHeightPreference), kHeightKey, root, jsonValue));
    RETURN_IF_FAILED(
        GJSONUtils::SetValueForKey(IntPreference(kPanelWidthPreference), kWidthKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::SetDimensions(const JSONValue& jsonValue) {
    int32_t windowWidth = 0;
    int32_t windowHeight = 0;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kWindowWidthKey, windowWidth));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kWindowHeightKey, windowHeight));
    StoreInt(kPanelWidthPreference, windowWidth);
    StoreInt(kPanelHeightPreference, windowHeight);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::SetDropDownSelection(const JSONValue& jsonValue) {
    int32_t selection = 0;
    bool savesSmartList = false;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSelectionKey, selection));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSavesSmartListKey, savesSmartList));
    StoreInt(kDropDownSelectionPreference, selection);
    StoreBool(kDropDownSavesPreference, savesSmartList);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::GetDropDownSelection(const JSONValue&) {
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kGetDropDownSelection, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(IntPreference(kDropDownSelectionPreference), kSelectionKey,
                                                root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(BoolPreference(kDropDownSavesPreference), kSavesSmartListKey,
                                                root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::SendHostAppKeyPress(const JSONValue& jsonValue) {
    LogMessage(0, "kSendHostAppKeyPress -- Start");
    const ScopeExit endLine([] { LogMessage(0, "kSendHostAppKeyPress -- End"); });
    HostAppInterface::KeyPress keyPress;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kIsCtrlPressedKey, keyPress.isCtrlPressed));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kIsShiftPressedKey, keyPress.isShiftPressed));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kIsAltPressedKey, keyPress.isAltPressed));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kKeyCodeKey, keyPress.keyCode));
    if (HostAppInterface* hostApp = MarquellGlobals::GetSharedHostAppInterface())
        hostApp->SendKeyPress(keyPress);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::CanAccessGoogleFonts(const JSONValue&) {
    bool canAccessGoogleFonts = false;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfCanAccessGoogleFonts, &canAccessGoogleFonts));
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kCanAccessGoogleFonts, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(
        GJSONUtils::SetValueForKey(canAccessGoogleFonts, kCanAccessGoogleFontsKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::GoogleEnableWebFonts(const JSONValue&) {
    return SendReturnCode(kEnableGoogleFonts, EnableWebFonts());
}

ErrorCode MarquellPanel::IsGoogleWebFontsEnabled(const JSONValue&) {
    WebFontsState state;
    const ErrorCode returnCode = GetWebFontsState(state);
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kAreGoogleFontsEnabled, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(state.isEnabled, kIsEnabledKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(state.isReplicating, kIsReplicatingKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(state.replicationMode, kReplicationModeKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(returnCode, kReturnCodeKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::DesignActivateFamilyForFont(const JSONValue& jsonValue) {
    uint32_t fontID = 0;
    std::string postscriptName;
    std::string displayName;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kFontIDKey, fontID));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kPostscriptNameKey, postscriptName));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kDisplayNameKey, displayName));
    LogMessage(0, "Activating the family of '%s' (%s)", displayName.c_str(), postscriptName.c_str());
    uint32_t conflictID = 0;
    const ErrorCode returnCode = ActivateFamilyForDesign(fontID, conflictID);
    if (returnCode != CoreErrorCodes::kSuccess)
        conflictID = 0;  // what is not active is in nobody's way
    if (returnCode != CoreErrorCodes::kSuccess || conflictID != 0)
        RETURN_IF_FAILED(FontActivationError(fontID, conflictID));
    return SendReturnCode(kDesignActivateFamilyForFont, returnCode);
}

ErrorCode MarquellPanel::GetFontPNGs(const JSONValue& jsonValue) {
    std::vector<uint32_t> highPriorityFonts;
    std::vector<uint32_t> allFonts;
    int32_t smartListID = 0;  // tells the panel's own requests apart; the images are the same for all lists
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kHighPriorityFontIDsKey, highPriorityFonts));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kFontIDsKey, allFonts));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartListIDKey, smartListID));
    if (allFonts.empty()) {
        ReportFailure(kLogCategory, {"allFonts.empty()", __FILE__, __LINE__}, CoreErrorCodes::kInvalidParam,
                      GLogger::kDebug);
        return CoreErrorCodes::kInvalidParam;
    }
    const auto highPriority = cf::NumberArray(highPriorityFonts);
    const auto fonts = cf::NumberArray(allFonts);
    LogMessage(0, "CALLING: RenderFontNamePreviewPNGs");
    const ErrorCode code = CallFontManager(
        &PluginFunctionTable::pfRenderFontNamePreviewPNGs, static_cast<CFArrayRef>(highPriority.get()),
        static_cast<CFArrayRef>(fonts.get()), static_cast<CFMutableDictionaryRef>(nullptr));
    LogMessage(0, "END: RenderFontNamePreviewPNGs");
    RETURN_IF_FAILED(code);
    return code;
}

ErrorCode MarquellPanel::SetFontVersion(const JSONValue& jsonValue) {
    uint32_t fontID = 0;
    std::string version;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kFontIDKey, fontID));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kVersionKey, version));
    // Versions come from the font files; what a panel says of them is noted in the trace alone.
    LogMessage(0, "The panel shows version '%s' of font %d", version.c_str(), static_cast<int>(fontID));
    return CoreErrorCodes::kSuccess;
}
