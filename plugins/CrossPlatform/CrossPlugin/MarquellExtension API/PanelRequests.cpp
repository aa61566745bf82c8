// The panel's requests about itself, the web fonts and single fonts.

#include <CoreFoundation++/CFRef.h>

#include "FailureReport.h"
#include "FontManagerCall.h"
#include "FontManagerInterface.h"
#include "MarquellGlobals.h"
#include "MarquellPanel.h"
#include "PanelMessages.h"
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
    VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface();
    return preferences != nullptr ? preferences->GetIntPreference(key) : 0;
}

bool BoolPreference(const char* key) {
    VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface();
    return preferences != nullptr && preferences->GetBoolPreference(key);
}

// A preference that cannot be stored was logged by the framework; the panel has no use for it.
void StoreInt(const char* key, int64_t value) {
    if (VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface())
        static_cast<void>(preferences->SetIntPreference(key, value));
}

void StoreBool(const char* key, bool value) {
    if (VPFInterface* preferences = MarquellGlobals::GetSharedVPFInterface())
        static_cast<void>(preferences->SetBoolPreference(key, value));
}

CFRef<CFMutableArrayRef> NumberArray(const std::vector<uint32_t>& numbers) {
    CFRef<CFMutableArrayRef> array = cf::MutableArray();
    for (const uint32_t number : numbers)
        cf::Append(array, static_cast<int64_t>(number));
    return array;
}

}  // namespace

ErrorCode MarquellPanel::StartPanelInfo(const std::string&) {
    bool isStandalone = false;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetRunningStandalone, &isStandalone));
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kConnectionComplete, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(isStandalone, kIsStandaloneKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::IsWindows(const std::string&) {
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kIsWindows, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(
        GJSONUtils::SetValueForKey(platform::kPathSeparator == '\\', kIsWindowsKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::GetDimensions(const std::string&) {
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

ErrorCode MarquellPanel::SetDimensions(const std::string& message) {
    JSONObject jsonObject;
    JSONValue jsonValue;
    RETURN_IF_FAILED(GetJSONValueFromMessage(message, jsonObject, jsonValue));
    int32_t windowWidth = 0;
    int32_t windowHeight = 0;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kWindowWidthKey, windowWidth));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kWindowHeightKey, windowHeight));
    StoreInt(kPanelWidthPreference, windowWidth);
    StoreInt(kPanelHeightPreference, windowHeight);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::SetDropDownSelection(const std::string& message) {
    JSONObject jsonObject;
    JSONValue jsonValue;
    RETURN_IF_FAILED(GetJSONValueFromMessage(message, jsonObject, jsonValue));
    int32_t selection = 0;
    bool savesSmartList = false;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSelectionKey, selection));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSavesSmartListKey, savesSmartList));
    StoreInt(kDropDownSelectionPreference, selection);
    StoreBool(kDropDownSavesPreference, savesSmartList);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::GetDropDownSelection(const std::string&) {
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

ErrorCode MarquellPanel::SendHostAppKeyPress(const std::string& message) {
    LogMessage(0, "kSendHostAppKeyPress -- Start");
    const ScopeExit endLine([] { LogMessage(0, "kSendHostAppKeyPress -- End"); });
    JSONObject jsonObject;
    JSONValue jsonValue;
    RETURN_IF_FAILED(GetJSONValueFromMessage(message, jsonObject, jsonValue));
    HostAppInterface::KeyPress keyPress;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kIsCtrlPressedKey, keyPress.isCtrlPressed));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kIsShiftPressedKey, keyPress.isShiftPressed));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kIsAltPressedKey, keyPress.isAltPressed));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kKeyCodeKey, keyPress.keyCode));
    if (HostAppInterface* hostApp = MarquellGlobals::GetSharedHostAppInterface())
        hostApp->SendKeyPress(keyPress);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::CanAccessGoogleFonts(const std::string&) {
    bool canAccessGoogleFonts = false;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfCanAccessGoogleFonts, &canAccessGoogleFonts));
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(
        GJSONUtils::SetValueForKey(panel_messages::kCanAccessGoogleFonts, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(
        GJSONUtils::SetValueForKey(canAccessGoogleFonts, kCanAccessGoogleFontsKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::GoogleEnableWebFonts(const std::string&) {
    const ErrorCode returnCode = CallFontManager(&PluginFunctionTable::pfSetGoogleWebFontsEnabled, true);
    if (returnCode == CoreErrorCodes::kSuccess)
        StoreBool(kWebFontsEverEnabledPreference, true);
    return SendReturnCode(kEnableGoogleFonts, returnCode);
}

ErrorCode MarquellPanel::IsGoogleWebFontsEnabled(const std::string&) {
    bool isEnabled = false;
    bool isReplicating = false;
    int32_t replicationMode = 0;
    ErrorCode returnCode = CallFontManager(&PluginFunctionTable::pfGetIsGoogleWebFontsEnabled, &isEnabled);
    if (returnCode == CoreErrorCodes::kSuccess)
        returnCode = CallFontManager(&PluginFunctionTable::pfGetIsReplicationRunning, &isReplicating);
    if (returnCode == CoreErrorCodes::kSuccess)
        returnCode = CallFontManager(&PluginFunctionTable::pfGetCurrentReplicationMode, &replicationMode);
    // They may have been enabled by other means than this panel.
    if (isEnabled && !BoolPreference(kWebFontsEverEnabledPreference))
        StoreBool(kWebFontsEverEnabledPreference, true);
    JSONObject document;
    JSONValue root = NewMessage(document);
    JSONValue jsonValue;
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(kAreGoogleFontsEnabled, kMessageIDKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(isEnabled, kIsEnabledKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(isReplicating, kIsReplicatingKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(replicationMode, kReplicationModeKey, root, jsonValue));
    RETURN_IF_FAILED(GJSONUtils::SetValueForKey(returnCode, kReturnCodeKey, root, jsonValue));
    return SendReply(root);
}

ErrorCode MarquellPanel::DesignActivateFamilyForFont(const std::string& message) {
    JSONObject jsonObject;
    JSONValue jsonValue;
    RETURN_IF_FAILED(GetJSONValueFromMessage(message, jsonObject, jsonValue));
    uint32_t fontID = 0;
    std::string postscriptName;
    std::string displayName;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kFontIDKey, fontID));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kPostscriptNameKey, postscriptName));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kDisplayNameKey, displayName));
    LogMessage(0, "Activating the family of '%s' (%s)", displayName.c_str(), postscriptName.c_str());
    return SendReturnCode(kDesignActivateFamilyForFont, ActivateFamilyForDesign(fontID));
}

ErrorCode MarquellPanel::ActivateFamilyForDesign(uint32_t fontID) {
    CFDictionaryRef fontInfo = nullptr;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetFontInfoByID, fontID, &fontInfo));
    const auto released = CFRef<CFDictionaryRef>::Adopt(fontInfo);
    const CFRef<CFMutableArrayRef> conflicts = cf::MutableArray();
    if (CoreAgentInterface* fontManager = FontManagerInterface::GetSharedInstance().GetFontManager()) {
        const ErrorCode code = fontManager->GetFontConflicts({fontID}, conflicts.get());
        if (code != CoreErrorCodes::kSuccess)
            ReportFailure(kLogCategory,
                          {"fontManager->GetFontConflicts({static_cast<UInt32>(outFontInfo.databaseID)}, "
                           "conflicts)",
                           __FILE__, __LINE__},
                          code);
    }
    const ErrorCode code = CallFontManager(&PluginFunctionTable::pfEnableDesignActivation, fontID, true, true,
                                           static_cast<CFMutableArrayRef>(nullptr));
    const auto conflictID = static_cast<uint32_t>(
        cf::GetInt64(cf::Get<CFDictionaryRef>(conflicts.get(), 0), kGS_DatabaseIDKey).value_or(0));
    if (code != CoreErrorCodes::kSuccess || conflictID != 0)
        static_cast<void>(FontActivationError(fontID, conflictID));
    return code;
}

ErrorCode MarquellPanel::GetFontPNGs(const std::string& message) {
    JSONObject jsonObject;
    JSONValue jsonValue;
    RETURN_IF_FAILED(GetJSONValueFromMessage(message, jsonObject, jsonValue));
    std::vector<uint32_t> highPriorityFonts;
    std::vector<uint32_t> allFonts;
    int32_t smartListID = 0;  // tells the panel's own requests apart; the images are the same for all lists
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kHighPriorityFontIDsKey, highPriorityFonts));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kFontIDsKey, allFonts));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kSmartListIDKey, smartListID));
    if (allFonts.empty())
        return CoreErrorCodes::kSuccess;
    const auto highPriority = NumberArray(highPriorityFonts);
    const auto fonts = NumberArray(allFonts);
    LogMessage(0, "CALLING: RenderFontNamePreviewPNGs");
    const ErrorCode code = CallFontManager(
        &PluginFunctionTable::pfRenderFontNamePreviewPNGs, static_cast<CFArrayRef>(highPriority.get()),
        static_cast<CFArrayRef>(fonts.get()), static_cast<CFMutableDictionaryRef>(nullptr));
    LogMessage(0, "END: RenderFontNamePreviewPNGs");
    RETURN_IF_FAILED(code);
    return code;
}

ErrorCode MarquellPanel::SetFontVersion(const std::string& message) {
    JSONObject jsonObject;
    JSONValue jsonValue;
    RETURN_IF_FAILED(GetJSONValueFromMessage(message, jsonObject, jsonValue));
    uint32_t fontID = 0;
    std::string version;
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kFontIDKey, fontID));
    RETURN_IF_FAILED(GJSONUtils::GetValueForKey(jsonValue, kVersionKey, version));
    // Versions come from the font files; what a panel says of them is noted in the trace alone.
    LogMessage(0, "The panel shows version '%s' of font %d", version.c_str(), static_cast<int>(fontID));
    return CoreErrorCodes::kSuccess;
}
