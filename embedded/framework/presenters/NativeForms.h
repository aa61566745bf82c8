// The dialogs as windows of the system.
#pragma once

#include <string>
#include <string_view>

#include "LocalizedStrings.h"
#include "platform/NativeDialogs.h"
#include "presenters/Presenter.h"

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

/// Shows `details`, a DialogQuestion's, and asks. False when the user gives up.
using NativeForm = DialogAnswer (*)(const NativeStage& stage, const nlohmann::json& details);

/// The form for the dialog of that name; null when there is none.
NativeForm FindNativeForm(std::string_view dialog);
