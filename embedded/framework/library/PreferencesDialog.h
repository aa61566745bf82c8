// The preferences that the user can change.
//
// Details: switches: [{key, title, isOn}]. Choices in the answer: truth values under the keys of those to
// switch; other keys are logged and ignored.
#pragma once

#include <optional>
#include <string_view>

#include "preferences/PreferenceStore.h"
#include "presenters/Presenter.h"

/// `language` is a two-letter code.
DialogQuestion PreferencesQuestion(PreferenceStore& preferences, std::string_view language);

/// The preferences that are to become other than they were, by key; nothing when the dialog was not confirmed
/// or the answer makes no sense.
std::optional<nlohmann::json> ChangedPreferences(const DialogQuestion& question, const DialogAnswer& answer);
