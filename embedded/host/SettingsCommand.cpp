#include <algorithm>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Output.h"
#include "Preferences.h"

namespace {

// Keeps the order in which the core lists the preferences.
using Json = nlohmann::ordered_json;

/// Room for all preferences; the core's list is about one kilobyte.
constexpr size_t kSettingsSize = 65536;

/// False after an error line.
bool ReadSettings(const CoreLibrary& core, Json& settings) {
    std::string text(kSettingsSize, '\0');
    size_t size = text.size();
    const uint32_t code = core.GetSettings(text.data(), &size);
    settings = Json::parse(text.c_str(), nullptr, false);
    if (code == PLUGINCORE_SUCCESS && settings.is_object())
        return true;
    PrintError("the preferences cannot be read: " + ResultName(code));
    return false;
}

void PrintSettings(const Json& settings, bool asJSON) {
    if (asJSON) {
        PrintJson(settings.dump());
        return;
    }
    std::vector<std::vector<std::string>> rows{{"KEY", "VALUE"}};
    for (const auto& [key, value] : settings.items())
        rows.push_back({key, value.get<std::string>()});
    PrintTable(rows);
}

/// The core stores these, and answers as if it had not.
bool HoldsText(const std::string& key) {
    return std::any_of(std::begin(preferences::kAll), std::end(preferences::kAll), [&](const auto& each) {
        return each.kind == preferences::Kind::kText && each.key == key;
    });
}

int Store(const CoreLibrary& core, const std::string& key, const std::string& value) {
    const uint32_t code = core.SetPreference(key.c_str(), value.c_str());
    if (code == PLUGINCORE_SUCCESS || (HoldsText(key) && code == PLUGINCORE_INVALID_PARAM))
        return exit_status::kDone;
    if (code == PLUGINCORE_INVALID_PARAM)
        PrintError(
            key + " does not take the value " + value +
            "; give a whole number (0 and 1 for off and on) or, for CurrentWorkgroup, a workgroup's name");
    else
        PrintError("the preference was not stored: " + ResultName(code));
    return exit_status::kFailed;
}

}  // namespace

int RunSettings(const HostOptions& host, const SettingsOptions& options) {
    HostSession session;
    if (const int startStatus = session.Start(host, HostSession::Needs::kPreferencesAlone))
        return startStatus;
    Json settings;
    if (!ReadSettings(session.Core(), settings))
        return exit_status::kFailed;
    if (options.key.empty()) {
        PrintSettings(settings, options.json);
        return exit_status::kDone;
    }
    if (!settings.contains(options.key)) {
        PrintError("there is no preference " + options.key + "; 'settings' alone lists them");
        return exit_status::kFailed;
    }
    if (options.value)
        return Store(session.Core(), options.key, *options.value);
    const Json value = settings[options.key];
    if (options.json)
        PrintJson(Json{{options.key, value}}.dump());
    else
        PrintLine(value.get<std::string>());
    return exit_status::kDone;
}
