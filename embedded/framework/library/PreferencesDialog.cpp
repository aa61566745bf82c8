#include "library/PreferencesDialog.h"

#include <algorithm>
#include <vector>

#include "Preferences.h"
#include "TraceLog.h"
#include "library/DialogQuestions.h"
#include "strings/StringTables.h"

namespace {

using nlohmann::json;

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

/// Null for a key that the dialog does not show.
const json* FindSwitch(const DialogQuestion& question, const std::string& key) {
    const json& switches = question.details.at("switches");
    const auto found = std::find_if(switches.begin(), switches.end(),
                                    [&key](const json& each) { return each.at("key") == key; });
    return found != switches.end() ? &*found : nullptr;
}

}  // namespace

DialogQuestion PreferencesQuestion(PreferenceStore& store, std::string_view language) {
    json switches = json::array();
    for (const preferences::Preference& each : Switches())
        switches.push_back({{"key", each.key},
                            {"title", LocalizedText(language, each.switchTitle)},
                            {"isOn", store.GetBool(each.key)}});
    return {"Preferences", {{"switches", std::move(switches)}}};
}

std::optional<json> ChangedPreferences(const DialogQuestion& question, const DialogAnswer& answer) {
    json changed = json::object();
    if (IsDeclined(answer))
        return std::nullopt;
    bool isUnderstood = answer == true || answer.is_object();
    const json choices = answer.is_object() ? answer : json::object();
    for (const auto& [key, value] : choices.items()) {
        const json* shown = FindSwitch(question, key);
        if (shown == nullptr)
            LogMessage(0, "The preferences have no switch '%s'; ignored", key.c_str());
        else if (shown->at("isOn") != value)
            changed[key] = value;
        isUnderstood = isUnderstood && (shown == nullptr || value.is_boolean());
    }
    if (isUnderstood)
        return changed;
    ReportWrongAnswer(question, answer);
    return std::nullopt;
}
