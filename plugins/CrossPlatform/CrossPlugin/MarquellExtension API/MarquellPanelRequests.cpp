// The panel's requests about itself, the web fonts and single fonts.

#include <CoreFoundation++/CFRef.h>

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "FontID.h"
#include "FontManagerCall.h"
#include "FontManagerInterface.h"
#include "MarquellGlobals.h"
#include "MarquellPanel.h"
#include "PanelLimits.h"
#include "PanelLog.h"
#include "PanelMessage.h"
#include "Preferences.h"
#include "ScopeExit.h"
#include "TraceLog.h"
#include "platform/Clock.h"
#include "platform/Files.h"

using namespace panel_messages;

namespace {

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
    StoreBool(preferences::GWFHaveEverBeenEnabled, true);
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
    if (state.isEnabled && !BoolPreference(preferences::GWFHaveEverBeenEnabled))
        StoreBool(preferences::GWFHaveEverBeenEnabled, true);
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
    const ErrorCode code = [this]() -> ErrorCode {
        bool isStandalone = false;
        RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfGetRunningStandalone, &isStandalone));
        return Send(PanelMessage(kConnectionComplete).Set(kIsStandaloneKey, isStandalone));
    }();
    // Also where no font manager could answer: that is what the panel is to know then.
    const ErrorCode enabledCode = SetEnabled(MarquellGlobals::IsPluginFunctional());
    return code != CoreErrorCodes::kSuccess ? code : enabledCode;
}

ErrorCode MarquellPanel::IsWindows(const JSONValue&) {
    return Send(PanelMessage(kIsWindows).Set(kIsWindowsKey, platform::kPathSeparator == '\\'));
}

ErrorCode MarquellPanel::GetDimensions(const JSONValue&) {
    return Send(PanelMessage(kGetDimensions)
                    .Set(kHeightKey, IntPreference(preferences::CS5PanelHeight))
                    .Set(kWidthKey, IntPreference(preferences::CS5PanelWidth)));
}

ErrorCode MarquellPanel::SetDimensions(const JSONValue& jsonValue) {
    int32_t windowWidth = 0;
    int32_t windowHeight = 0;
    if (const ErrorCode code =
            ReadMember(jsonValue, kWindowWidthKey, windowWidth, kWindowHeightKey, windowHeight))
        return code;
    StoreInt(preferences::CS5PanelWidth, windowWidth);
    StoreInt(preferences::CS5PanelHeight, windowHeight);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::SetDropDownSelection(const JSONValue& jsonValue) {
    int32_t selection = 0;
    bool savesSmartList = false;
    if (const ErrorCode code =
            ReadMember(jsonValue, kSelectionKey, selection, kSavesSmartListKey, savesSmartList))
        return code;
    StoreInt(preferences::DropDownSelection, selection);
    StoreBool(preferences::DropDownSelectionSavesSmartLists, savesSmartList);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::GetDropDownSelection(const JSONValue&) {
    return Send(PanelMessage(kGetDropDownSelection)
                    .Set(kSelectionKey, IntPreference(preferences::DropDownSelection))
                    .Set(kSavesSmartListKey, BoolPreference(preferences::DropDownSelectionSavesSmartLists)));
}

ErrorCode MarquellPanel::SendHostAppKeyPress(const JSONValue& jsonValue) {
    LogMessage(0, "kSendHostAppKeyPress -- Start");
    const ScopeExit endLine([] { LogMessage(0, "kSendHostAppKeyPress -- End"); });
    HostAppInterface::KeyPress keyPress;
    if (const ErrorCode code = ReadMember(jsonValue, kIsCtrlPressedKey, keyPress.isCtrlPressed,
                                          kIsShiftPressedKey, keyPress.isShiftPressed, kIsAltPressedKey,
                                          keyPress.isAltPressed, kKeyCodeKey, keyPress.keyCode))
        return code;
    if (HostAppInterface* hostApp = MarquellGlobals::GetSharedHostAppInterface())
        hostApp->SendKeyPress(keyPress);
    return CoreErrorCodes::kSuccess;
}

ErrorCode MarquellPanel::CanAccessGoogleFonts(const JSONValue&) {
    bool canAccessGoogleFonts = false;
    RETURN_IF_FAILED(CallFontManager(&PluginFunctionTable::pfCanAccessGoogleFonts, &canAccessGoogleFonts));
    return Send(PanelMessage(kCanAccessGoogleFonts).Set(kCanAccessGoogleFontsKey, canAccessGoogleFonts));
}

ErrorCode MarquellPanel::GoogleEnableWebFonts(const JSONValue&) {
    return SendReturnCode(kEnableGoogleFonts, EnableWebFonts());
}

ErrorCode MarquellPanel::IsGoogleWebFontsEnabled(const JSONValue&) {
    WebFontsState state;
    const ErrorCode returnCode = GetWebFontsState(state);
    return Send(PanelMessage(kAreGoogleFontsEnabled)
                    .Set(kIsEnabledKey, state.isEnabled)
                    .Set(kIsReplicatingKey, state.isReplicating)
                    .Set(kReplicationModeKey, state.replicationMode)
                    .Set(kReturnCodeKey, returnCode));
}

ErrorCode MarquellPanel::DesignActivateFamilyForFont(const JSONValue& jsonValue) {
    uint32_t fontID = 0;
    std::string postscriptName;
    std::string displayName;
    if (const ErrorCode code = ReadMember(jsonValue, kFontIDKey, fontID, kPostscriptNameKey, postscriptName,
                                          kDisplayNameKey, displayName))
        return code;
    LogMessage(0, "Activating the family of '%s' (%s)", displayName.c_str(), postscriptName.c_str());
    uint32_t conflictID = 0;
    const ErrorCode returnCode = ActivateFamilyForDesign(fontID, conflictID);
    if (returnCode != CoreErrorCodes::kSuccess)
        conflictID = 0;  // what is not active is in nobody's way
    if (returnCode != CoreErrorCodes::kSuccess || conflictID != 0) {
        if (const ErrorCode code = FontActivationError(fontID, conflictID))
            return code;
    }
    return SendReturnCode(kDesignActivateFamilyForFont, returnCode);
}

ErrorCode MarquellPanel::GetFontPNGs(const JSONValue& jsonValue) {
    std::vector<uint32_t> highPriorityFonts;
    std::vector<uint32_t> allFonts;
    int32_t smartListID = 0;  // tells the panel's own requests apart; the images are the same for all lists
    if (const ErrorCode code = ReadMember(jsonValue, kHighPriorityFontIDsKey, highPriorityFonts, kFontIDsKey,
                                          allFonts, kSmartListIDKey, smartListID))
        return code;
    if (allFonts.empty()) {
        ReportFailure(kLogCategory, {"allFonts.empty()", __FILE__, __LINE__}, CoreErrorCodes::kInvalidParam,
                      GLogger::kDebug);
        return CoreErrorCodes::kInvalidParam;
    }
    // Those that are wanted first, those that wait already, then the rest.
    const std::deque<uint32_t> waiting = std::exchange(mFontsToRender, {});
    std::unordered_set<uint32_t> listed;
    const auto list = [&](const auto& fonts) {
        std::copy_if(fonts.begin(), fonts.end(), std::back_inserter(mFontsToRender),
                     [&](uint32_t fontID) { return listed.insert(fontID).second; });
    };
    list(highPriorityFonts);
    list(waiting);
    list(allFonts);
    return RenderNextFonts();
}

ErrorCode MarquellPanel::RenderNextFonts() {
    auto& clock = platform::Current<platform::Clock>();
    const uint32_t start = clock.TickCount();
    ErrorCode code = CoreErrorCodes::kSuccess;
    if (mFontsToRender.empty())
        return code;
    LogMessage(0, "CALLING: RenderFontNamePreviewPNGs");
    while (code == CoreErrorCodes::kSuccess && !mFontsToRender.empty() &&
           clock.TickCount() - start < panel_limits::kRenderingMilliseconds)
        code = RenderFewFonts();
    LogMessage(0, "END: RenderFontNamePreviewPNGs");
    RETURN_IF_FAILED(code);
    return code;
}

ErrorCode MarquellPanel::RenderFewFonts() {
    const auto end = mFontsToRender.begin() + static_cast<std::ptrdiff_t>(std::min(
                                                  mFontsToRender.size(), panel_limits::kFontsRenderedAtOnce));
    const auto fonts = cf::NumberArray(std::vector<uint32_t>(mFontsToRender.begin(), end));
    mFontsToRender.erase(mFontsToRender.begin(), end);
    const ErrorCode code =
        CallFontManager(&PluginFunctionTable::pfRenderFontNamePreviewPNGs, static_cast<CFArrayRef>(nullptr),
                        static_cast<CFArrayRef>(fonts.get()), static_cast<CFMutableDictionaryRef>(nullptr));
    if (code != CoreErrorCodes::kSuccess)
        mFontsToRender.clear();  // the panel asks again
    return code;
}

ErrorCode MarquellPanel::SetFontVersion(const JSONValue& jsonValue) {
    uint32_t fontID = 0;
    std::string version;
    if (const ErrorCode code = ReadMember(jsonValue, kFontIDKey, fontID, kVersionKey, version))
        return code;
    // Versions come from the font files; what a panel says of them is noted in the trace alone.
    LogMessage(0, "The panel shows version '%s' of font %d", version.c_str(), static_cast<int>(fontID));
    return CoreErrorCodes::kSuccess;
}
