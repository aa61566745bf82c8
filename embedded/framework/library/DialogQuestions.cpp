#include "library/DialogQuestions.h"

#include <CoreFoundation++/CFRef.h>

#include <algorithm>
#include <utility>

#include "FontRecordKeys.h"
#include "StringConversion.h"
#include "TraceLog.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "strings/LocalizedStrings.h"
#include "strings/StringIDs.h"

namespace {

using nlohmann::json;

constexpr int32_t kFirstWorkgroupCommand = 8;
/// Stands for no workgroup of its own, so nothing can be made in it.

json WorkgroupList(CFArrayRef workgroups) {
    json list = json::array();
    for (CFIndex index = 0; index < cf::Count(workgroups); ++index) {
        const auto record = cf::Get<CFDictionaryRef>(workgroups, index);
        if (const auto id = cf::GetInt64(record, kGS_WorkgroupIDKey))
            list.push_back({{"workgroupID", *id}, {"name", cf::GetString(record, kGS_WorkgroupNameKey)}});
    }
    return list;
}

json NumberOrNull(CFDictionaryRef dictionary, const char* key) {
    const auto number = cf::GetInt64(dictionary, key);
    return number ? json(*number) : json();
}

json DocumentCommands(const json& currentWorkgroupID, std::string_view language) {
    json commands = json::array();
    commands.push_back({{"command", 3}, {"title", LocalizedText(language, kCollectFontsTitle)}});
    if (currentWorkgroupID != kWorkgroupID_All)
        commands.push_back({{"command", 4}, {"title", LocalizedText(language, kCreateDocumentSetTitle)}});
    commands.push_back({{"command", 5}, {"title", LocalizedText(language, kCheckFontsTitle)}});
    return commands;
}

void AppendWorkgroupCommands(json& commands, CFArrayRef workgroups) {
    for (CFIndex index = 0; index < cf::Count(workgroups); ++index) {
        const auto record = cf::Get<CFDictionaryRef>(workgroups, index);
        commands.push_back({{"command", kFirstWorkgroupCommand + index},
                            {"title", cf::GetString(record, kGS_WorkgroupNameKey)},
                            {"workgroupID", NumberOrNull(record, kGS_WorkgroupIDKey)}});
    }
}

json FontNames(CFArrayRef fonts) {
    json names = json::array();
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

bool IsOffered(const json& list, const char* member, int32_t number) {
    return std::any_of(list.begin(), list.end(),
                       [=](const json& entry) { return entry.at(member) == number; });
}

/// `chosen`, if it is in the list; else the answer is reported.
std::optional<int32_t> ChosenFrom(const char* list, const char* member, std::optional<int32_t> chosen,
                                  const DialogQuestion& question, const DialogAnswer& answer) {
    if (chosen && IsOffered(question.details.at(list), member, *chosen))
        return chosen;
    ReportWrongAnswer(question, answer);
    return std::nullopt;
}

bool HasNoPath(const DialogAnswer& folderAnswer) {
    return folderAnswer.is_object() && folderAnswer.contains("folder") && folderAnswer["folder"].is_null();
}

}  // namespace

bool IsConfirmed(const DialogQuestion& question, const DialogAnswer& answer) {
    if (!IsDeclined(answer) && answer != true && !answer.is_object())
        ReportWrongAnswer(question, answer);
    return answer == true || answer.is_object();
}

bool IsDeclined(const DialogAnswer& answer) {
    return answer.is_null() || answer == false;
}

void ReportWrongAnswer(const DialogQuestion& question, const DialogAnswer& answer) {
    LogMessage(0, "The answer to %s means nothing and counts as not confirmed: %s", question.dialog.c_str(),
               answer.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
}

DialogQuestion AboutQuestion(const std::string& version) {
    return {"About", {{"version", version}}};
}

DialogQuestion SelectWorkgroupQuestion(CFArrayRef workgroups, int32_t currentID) {
    return {"SelectWorkgroup", {{"workgroups", WorkgroupList(workgroups)}, {"workgroupID", currentID}}};
}

DialogQuestion CommandBoxQuestion(CFDictionaryRef state, std::string_view language) {
    json details;
    for (const char* flag : {"IsLocalPersonal", "ButtonsEnabled", "IsOnline"})
        details[flag] = cf::GetBool(state, flag).value_or(false);
    details["CurrentWorkgroupID"] = NumberOrNull(state, "CurrentWorkgroupID");
    json commands = json::array();
    if (details["ButtonsEnabled"].get<bool>())
        commands = DocumentCommands(details["CurrentWorkgroupID"], language);
    commands.push_back({{"command", 6}, {"title", LocalizedText(language, kPreferencesTitle)}});
    commands.push_back({{"command", 7}, {"title", LocalizedText(language, kAboutTitle)}});
    AppendWorkgroupCommands(commands, cf::GetArray(state, "Workgroups"));
    details["commands"] = std::move(commands);
    return {"CommandBox", std::move(details)};
}

DialogQuestion RestrictedFontsQuestion(CFArrayRef fonts, bool onlyNew) {
    return {"RestrictedFonts", {{"fonts", FontNames(fonts)}, {"onlyNew", onlyNew}}};
}

DialogQuestion ChooseFolderQuestion(CFStringRef prompt, CFStringRef initialFolder) {
    return {"ChooseFolder", {{"prompt", cf::ToUtf8(prompt)}, {"initialFolder", cf::ToUtf8(initialFolder)}}};
}

std::optional<int32_t> ChosenWorkgroup(const DialogQuestion& question, const DialogAnswer& answer) {
    if (IsDeclined(answer))
        return std::nullopt;
    const auto chosen =
        answer == true ? question.details.at("workgroupID").get<int32_t>() : NumberIn(answer, "workgroupID");
    return ChosenFrom("workgroups", "workgroupID", chosen, question, answer);
}

std::optional<int32_t> ChosenCommand(const DialogQuestion& question, const DialogAnswer& answer) {
    if (IsDeclined(answer))
        return std::nullopt;
    return ChosenFrom("commands", "command", NumberIn(answer, "command"), question, answer);
}

std::optional<std::string> ChosenFolder(const DialogQuestion& question, const DialogAnswer& answer) {
    if (IsDeclined(answer))
        return std::nullopt;
    if (HasNoPath(answer))
        return std::string();
    const json typed = answer == true ? question.details.at("initialFolder")
                                      : (answer.is_object() ? answer.value("folder", json()) : json());
    const bool isText = typed.is_string() && IsValidUtf8(typed.get_ref<const std::string&>());
    const std::string folder = isText ? platform::FullPath(typed.get<std::string>()) : "";
    if (!folder.empty() && !platform::IsExistingFile(folder))
        return folder;
    ReportWrongAnswer(question, answer);
    return std::nullopt;
}
