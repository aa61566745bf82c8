#include "library/DialogQuestions.h"

#include <CoreFoundation++/CFRef.h>

#include <utility>

#include "FontRecordKeys.h"
#include "TraceLog.h"

namespace {

constexpr char kWorkgroupID[] = "workgroupID";
constexpr char kWorkgroups[] = "workgroups";

nlohmann::json WorkgroupList(CFArrayRef workgroups) {
    nlohmann::json list = nlohmann::json::array();
    for (CFIndex index = 0; index < cf::Count(workgroups); ++index) {
        const auto record = cf::Get<CFDictionaryRef>(workgroups, index);
        if (const auto id = cf::GetInt64(record, kGS_WorkgroupIDKey))
            list.push_back({{kWorkgroupID, *id}, {"name", cf::GetString(record, kGS_WorkgroupNameKey)}});
    }
    return list;
}

nlohmann::json FontNames(CFArrayRef fonts) {
    nlohmann::json names = nlohmann::json::array();
    for (CFIndex index = 0; index < cf::Count(fonts); ++index)
        names.push_back(cf::GetString(cf::Get<CFDictionaryRef>(fonts, index), kGS_PostScriptNameKey));
    return names;
}

std::optional<int32_t> NumberIn(const DialogAnswer& answer, const char* member) {
    if (!answer.is_object() || !answer.contains(member) || !answer[member].is_number_integer())
        return std::nullopt;
    const auto number = answer[member].get<int64_t>();
    return std::in_range<int32_t>(number) ? std::optional(static_cast<int32_t>(number)) : std::nullopt;
}

bool IsOffered(const DialogQuestion& question, int32_t workgroupID) {
    for (const nlohmann::json& workgroup : question.details[kWorkgroups]) {
        if (workgroup[kWorkgroupID] == workgroupID)
            return true;
    }
    return false;
}

}  // namespace

bool IsConfirmed(const DialogAnswer& answer) {
    return answer.is_object() || (answer.is_boolean() && answer.get<bool>());
}

DialogQuestion AboutQuestion(const std::string& version) {
    return {"About", {{"version", version}}};
}

DialogQuestion PreferencesQuestion() {
    return {"Preferences", nlohmann::json::object()};
}

DialogQuestion SelectWorkgroupQuestion(CFArrayRef workgroups, int32_t currentID) {
    return {"SelectWorkgroup", {{kWorkgroups, WorkgroupList(workgroups)}, {kWorkgroupID, currentID}}};
}

DialogQuestion CommandBoxQuestion(CFDictionaryRef state) {
    nlohmann::json details = {{kWorkgroups, WorkgroupList(cf::GetArray(state, "Workgroups"))},
                              {"CurrentWorkgroupID", cf::GetInt64(state, "CurrentWorkgroupID").value_or(0)}};
    for (const char* flag : {"IsLocalPersonal", "ButtonsEnabled", "IsOnline"})
        details[flag] = cf::GetBool(state, flag).value_or(false);
    return {"CommandBox", std::move(details)};
}

DialogQuestion ResolveFontsQuestion(CFArrayRef fonts) {
    return {"ResolveFonts", {{"fonts", FontNames(fonts)}}};
}

DialogQuestion RestrictedFontsQuestion(CFArrayRef fonts, bool onlyNew) {
    return {"RestrictedFonts", {{"fonts", FontNames(fonts)}, {"onlyNew", onlyNew}}};
}

std::optional<int32_t> ChosenWorkgroup(const DialogQuestion& question, const DialogAnswer& answer) {
    if (!IsConfirmed(answer))
        return std::nullopt;
    const auto current = question.details[kWorkgroupID].get<int32_t>();
    const std::optional<int32_t> chosen = answer.is_object() ? NumberIn(answer, kWorkgroupID) : current;
    if (chosen && IsOffered(question, *chosen))
        return chosen;
    LogMessage(0, "The answer to %s names no workgroup of its list: %s", question.dialog.c_str(),
               answer.dump().c_str());
    return std::nullopt;
}

std::optional<int32_t> ChosenCommand(const DialogAnswer& answer) {
    return NumberIn(answer, "command");
}
