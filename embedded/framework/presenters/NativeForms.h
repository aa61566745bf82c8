// The dialogs as windows of the system.
#pragma once

#include <string>
#include <string_view>

#include "LocalizedStrings.h"
#include "platform/NativeDialogs.h"
#include "platform/Windowing.h"
#include "presenters/Dialogs.h"

/// Where a dialog appears, and in which language.
struct NativeStage {
    platform::NativeDialogs& dialogs;
    platform::WindowHandle owner;
    std::string language;

    std::string Text(localized::StringID id) const;
    std::string Text(localized::StringID id, std::string_view value) const;
    /// Without the dots that end the title of a menu item.
    std::string Title(localized::StringID id) const;
};

// Each shows the dialog and asks, and answers whether the user confirmed it.

bool AskInWindow(const NativeStage& stage, AboutDialog& dialog);
bool AskInWindow(const NativeStage& stage, PreferencesDialog& dialog);
bool AskInWindow(const NativeStage& stage, SelectWorkgroupDialog& dialog);
bool AskInWindow(const NativeStage& stage, CommandBoxDialog& dialog);
bool AskInWindow(const NativeStage& stage, ResolveFontsDialog& dialog);
bool AskInWindow(const NativeStage& stage, RestrictedFontsDialog& dialog);
bool AskInWindow(const NativeStage& stage, ChooseFolderDialog& dialog);
