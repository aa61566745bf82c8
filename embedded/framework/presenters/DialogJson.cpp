#include "presenters/DialogJson.h"

#include <algorithm>
#include <utility>

#include "TraceLog.h"

using nlohmann::json;

static json OrNull(const auto& value) {
    return value ? json(*value) : json();
}

// What each shows, found by the library.

static void to_json(json& details, const AboutDialog& dialog) {
    details = {{"version", dialog.version}};
}

static void to_json(json& details, const PreferencesDialog::Switch& each) {
    details = {{"key", each.key}, {"title", each.title}, {"isOn", each.isOn}};
}

static void to_json(json& details, const PreferencesDialog& dialog) {
    details = {{"switches", dialog.switches}};
}

static void to_json(json& details, const SelectWorkgroupDialog::Workgroup& workgroup) {
    details = {{"workgroupID", workgroup.id}, {"name", workgroup.name}};
}

static void to_json(json& details, const SelectWorkgroupDialog& dialog) {
    details = {{"workgroups", dialog.workgroups}, {"workgroupID", dialog.workgroupID}};
}

static void to_json(json& details, const CommandBoxDialog::Command& command) {
    details = {{"command", command.number}, {"title", command.title}};
}

static void to_json(json& details, const CommandBoxDialog::WorkgroupCommand& workgroup) {
    details = {{"command", workgroup.number},
               {"title", workgroup.name},
               {"workgroupID", OrNull(workgroup.workgroupID)}};
}

static void to_json(json& details, const CommandBoxDialog& dialog) {
    details = {{"IsLocalPersonal", dialog.isLocalPersonal},
               {"ButtonsEnabled", dialog.areButtonsEnabled},
               {"IsOnline", dialog.isOnline},
               {"CurrentWorkgroupID", OrNull(dialog.currentWorkgroupID)},
               {"commands", dialog.commands}};
    for (const auto& workgroup : dialog.workgroups)
        details["commands"].push_back(workgroup);
}

static void to_json(json& details, const ResolveFontsDialog::Candidate& candidate) {
    details = {{"name", candidate.name}, {"description", candidate.description}};
}

static void to_json(json& details, const ResolveFontsDialog::Font& font) {
    details = {{"name", font.name}, {"candidates", font.candidates}};
}

static void to_json(json& details, const ResolveFontsDialog& dialog) {
    details = {{"fonts", dialog.fonts}};
}

static void to_json(json& details, const RestrictedFontsDialog& dialog) {
    details = {{"fonts", dialog.fonts}, {"onlyNew", dialog.onlyNew}};
}

static void to_json(json& details, const ChooseFolderDialog& dialog) {
    details = {{"prompt", dialog.prompt}, {"initialFolder", dialog.initialFolder}};
}

namespace {

/// The member of that name; null when `answer` is not an object or has none.
json Member(const json& answer, const char* name) {
    return answer.is_object() ? answer.value(name, json()) : json();
}

std::optional<int32_t> NumberIn(const json& answer, const char* member) {
    const json value = Member(answer, member);
    if (!value.is_number_integer() || !std::in_range<int32_t>(value.get<int64_t>()))
        return std::nullopt;
    return value.get<int32_t>();
}

bool Contains(const auto& entries, auto member, const auto& value) {
    return std::any_of(entries.begin(), entries.end(),
                       [&](const auto& entry) { return entry.*member == value; });
}

// Choose: whether the answer makes sense; neither null nor false comes here.

bool ConfirmWithoutChoices(const json& answer) {
    return answer == true || answer.is_object();
}

bool Choose(const json& answer, AboutDialog&) {
    return ConfirmWithoutChoices(answer);
}

bool Choose(const json& answer, RestrictedFontsDialog&) {
    return ConfirmWithoutChoices(answer);
}

PreferencesDialog::Switch* FindSwitch(PreferencesDialog& dialog, const std::string& key) {
    const auto found =
        std::find_if(dialog.switches.begin(), dialog.switches.end(),
                     [&key](const PreferencesDialog::Switch& each) { return each.key == key; });
    return found != dialog.switches.end() ? &*found : nullptr;
}

bool Choose(const json& answer, PreferencesDialog& dialog) {
    if (!answer.is_object())
        return answer == true;
    for (const auto& [key, value] : answer.items()) {
        PreferencesDialog::Switch* const shown = FindSwitch(dialog, key);
        if (shown == nullptr)
            LogMessage(0, "The preferences have no switch '%s'; ignored", key.c_str());
        else if (value.is_boolean())
            shown->isOn = value.get<bool>();
        else
            return false;
    }
    return true;
}

bool Choose(const json& answer, SelectWorkgroupDialog& dialog) {
    const auto chosen = answer == true ? dialog.workgroupID : NumberIn(answer, "workgroupID");
    dialog.workgroupID = chosen.value_or(0);
    return chosen && Contains(dialog.workgroups, &SelectWorkgroupDialog::Workgroup::id, *chosen);
}

bool Choose(const json& answer, CommandBoxDialog& dialog) {
    const auto chosen = NumberIn(answer, "command");
    dialog.command = chosen.value_or(0);
    return chosen && (Contains(dialog.commands, &CommandBoxDialog::Command::number, *chosen) ||
                      Contains(dialog.workgroups, &CommandBoxDialog::WorkgroupCommand::number, *chosen));
}

bool IsOffered(const ResolveFontsDialog& dialog, const std::string& name, const json& candidate) {
    return std::any_of(dialog.fonts.begin(), dialog.fonts.end(), [&](const ResolveFontsDialog::Font& font) {
        return font.name == name &&
               Contains(font.candidates, &ResolveFontsDialog::Candidate::name, candidate);
    });
}

bool Choose(const json& answer, ResolveFontsDialog& dialog) {
    const json chosen = answer == true ? json::object() : Member(answer, "replacements");
    if (!chosen.is_object())
        return false;
    for (const auto& [name, candidate] : chosen.items()) {
        if (!IsOffered(dialog, name, candidate))
            return false;
        dialog.replacements[name] = candidate.get<std::string>();
    }
    return true;
}

bool Choose(const json& answer, ChooseFolderDialog& dialog) {
    if (answer == true) {
        dialog.folder = dialog.initialFolder;
        return true;
    }
    const json folder = Member(answer, "folder");
    if (folder.is_string())
        dialog.folder = folder.get<std::string>();
    return folder.is_string() || (answer.is_object() && answer.contains("folder") && folder.is_null());
}

json ChosenIn(const AboutDialog&) {
    return true;
}

json ChosenIn(const RestrictedFontsDialog&) {
    return true;
}

json ChosenIn(const PreferencesDialog& dialog) {
    json byKey = json::object();
    for (const PreferencesDialog::Switch& each : dialog.switches)
        byKey[each.key] = each.isOn;
    return byKey;
}

json ChosenIn(const SelectWorkgroupDialog& dialog) {
    return {{"workgroupID", dialog.workgroupID}};
}

json ChosenIn(const CommandBoxDialog& dialog) {
    return {{"command", dialog.command}};
}

json ChosenIn(const ResolveFontsDialog& dialog) {
    return {{"replacements", dialog.replacements}};
}

json ChosenIn(const ChooseFolderDialog& dialog) {
    return {{"folder", OrNull(dialog.folder)}};
}

}  // namespace

std::string DialogName(const Dialog& dialog) {
    return std::visit([](const auto& each) { return std::string(each.kName); }, dialog);
}

json DialogDetails(const Dialog& dialog) {
    return std::visit([](const auto& each) { return json(each); }, dialog);
}

bool TakeAnswer(const json& answer, Dialog& dialog) {
    if (answer.is_null() || answer == false)
        return false;
    const bool isUnderstood = std::visit([&](auto& each) { return Choose(answer, each); }, dialog);
    if (!isUnderstood)
        ReportWrongAnswer(dialog, answer);
    return isUnderstood;
}

json ChosenAnswer(const Dialog& dialog) {
    return std::visit([](const auto& each) { return ChosenIn(each); }, dialog);
}

void ReportWrongAnswer(const Dialog& dialog, const json& answer) {
    LogMessage(0, "The answer to %s means nothing and counts as not confirmed: %s",
               DialogName(dialog).c_str(),
               answer.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
}
