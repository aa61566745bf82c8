#include "library/PreferencesDialog.h"

#include <algorithm>
#include <vector>

#include "Preferences.h"
#include "strings/StringTables.h"

namespace {

/// In the order of their titles' numbers.
std::vector<preferences::Preference> Switches() {
    std::vector<preferences::Preference> switches;
    for (const preferences::Preference& each : preferences::kAll) {
        if (each.switchTitle != preferences::kNoSwitch)
            switches.push_back(each);
    }
    std::sort(switches.begin(), switches.end(),
              [](const auto& left, const auto& right) { return left.switchTitle < right.switchTitle; });
    return switches;
}

}  // namespace

PreferencesDialog MakePreferencesDialog(PreferenceStore& preferences, std::string_view language) {
    PreferencesDialog dialog;
    for (const preferences::Preference& each : Switches())
        dialog.switches.push_back(
            {each.key, LocalizedText(language, each.switchTitle), preferences.GetBool(each.key)});
    return dialog;
}

nlohmann::json ChangedPreferences(const PreferencesDialog& shown, const PreferencesDialog& chosen) {
    nlohmann::json changed = nlohmann::json::object();
    for (size_t index = 0; index < shown.switches.size(); ++index) {
        if (shown.switches[index].isOn != chosen.switches[index].isOn)
            changed[shown.switches[index].key] = chosen.switches[index].isOn;
    }
    return changed;
}
