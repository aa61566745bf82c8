// The texts that the framework itself shows; all others are named by whoever asks for them.
#pragma once

#include <cstdint>

enum StringID : uint32_t {
    kProductName = 199,
    kPreferencesTitle = 200,
    kAboutTitle = 201,
    kCollectFontsTitle = 204,
    kCreateDocumentSetTitle = 205,
    kCheckFontsTitle = 206,
    kSelectWorkgroupTitle = 208,
    kSelectLibraryTitle = 216,
    kNoWorkgroupTitle = 620,

    kYes = 1001,
    kNo,
    kNoSuchChoice,
    kCancelWord,
    kChoosePrompt,
    kChoosePromptWithDefault,

    kVersion = 1010,
    kAboutText,
    kOn,
    kOff,
    kSwitchPrompt,
    kPreferencesNotStored,
    kEnablePluginSwitch,
    kPickBestMatchSwitch,
    kEnableGlyphscanSwitch,
    kSupportEmbeddedObjectsSwitch,
    kActivateEntireFamiliesSwitch,
    kCloseFontsOnDocCloseSwitch,
    kCloseFontsOnHostAppQuitSwitch,
    kDialogSuppressionSwitch,
    kEnableLoggingSwitch,

    kOnline = 1030,
    kOffline,
    kCurrentWorkgroup,
    kCommandPrompt,

    kResolveFontsTitle = 1040,
    kReplacements,
    kNoReplacement,
    kResolvePrompt,
    kRestrictedFontsTitle,
    kRestrictedFontsText,
    kNewRestrictedFontsText,
    kContinuePrompt,

    kChooseFolderTitle = 1050,
    kFolderPrompt,
    kFolderPromptWithDefault,
    kNoFolder,

    kOkButton = 1060,
    kCancelButton,
    kCloseButton,
    kNoReplacementOption,
};
