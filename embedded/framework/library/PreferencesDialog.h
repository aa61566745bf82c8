// The preferences that the user can change.
#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "preferences/PreferenceStore.h"
#include "presenters/Dialogs.h"

/// `language` is a two-letter code.
PreferencesDialog MakePreferencesDialog(PreferenceStore& preferences, std::string_view language);

/// Those that are to become other than was shown, by key.
nlohmann::json ChangedPreferences(const PreferencesDialog& shown, const PreferencesDialog& chosen);
