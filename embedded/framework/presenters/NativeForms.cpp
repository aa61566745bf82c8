#include "presenters/NativeForms.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "presenters/DialogDetails.h"
#include "strings/StringTables.h"

std::string NativeStage::Text(localized::StringID id) const {
    return LocalizedText(language, id);
}

std::string NativeStage::Text(localized::StringID id, std::string_view value) const {
    return FillIn(Text(id), value);
}

std::string NativeStage::Title(localized::StringID id) const {
    return WithoutDots(Text(id));
}

namespace {

using nlohmann::json;
using platform::Form;
using platform::FormButton;
using platform::FormCheckBox;
using platform::FormChoices;
using platform::FormControl;
using platform::FormList;
using platform::FormText;
using platform::kFormCancelled;

constexpr int kConfirmed = 1;

/// An empty form with OK and Cancel.
Form MakeForm(const NativeStage& stage, localized::StringID titleID) {
    return {stage.Title(titleID),
            {},
            {{kConfirmed, stage.Text(localized::kOkButton)},
             {kFormCancelled, stage.Text(localized::kCancelButton)}},
            kConfirmed};
}

bool IsConfirmedIn(const NativeStage& stage, Form& form) {
    return stage.dialogs.ShowForm(stage.owner, form) == kConfirmed;
}

DialogAnswer ShowAbout(const NativeStage& stage, const json& details) {
    const std::string version = StringIn(details, "version");
    Form form{
        stage.Title(localized::kAbout), {}, {{kConfirmed, stage.Text(localized::kOkButton)}}, kConfirmed};
    form.controls.emplace_back(FormText{stage.Text(localized::kProductName), true});
    if (!version.empty())
        form.controls.emplace_back(FormText{stage.Text(localized::kVersion, version)});
    form.controls.emplace_back(FormText{stage.Text(localized::kAboutText)});
    stage.dialogs.ShowForm(stage.owner, form);
    return true;
}

DialogAnswer AskForPreferences(const NativeStage& stage, const json& details) {
    const json& switches = details.at("switches");
    Form form = MakeForm(stage, localized::kPreferences);
    for (const json& each : switches)
        form.controls.emplace_back(FormCheckBox{StringIn(each, "title"), IsTrue(each, "isOn")});
    if (!IsConfirmedIn(stage, form))
        return false;
    json byKey = json::object();
    for (size_t index = 0; index < switches.size(); ++index)
        byKey[StringIn(switches[index], "key")] = std::get<FormCheckBox>(form.controls[index]).isChecked;
    return byKey;
}

/// A list of the objects in `entries`, shown by `nameMember`, with the one of the current workgroup selected.
FormList WorkgroupList(const json& entries, const char* nameMember, const json& currentID) {
    FormList list;
    for (const json& entry : entries) {
        if (entry.at("workgroupID") == currentID && !currentID.is_null())
            list.selected = list.entries.size();
        list.entries.push_back(StringIn(entry, nameMember));
    }
    return list;
}

DialogAnswer AskForWorkgroup(const NativeStage& stage, const json& details) {
    const json& workgroups = details.at("workgroups");
    Form form = MakeForm(stage, localized::kSelectWorkgroup);
    if (workgroups.empty()) {
        stage.dialogs.ShowMessage(stage.owner, form.title, stage.Text(localized::kNoWorkgroupTitle),
                                  platform::MessageButtons::kOk);
        return false;
    }
    form.controls.emplace_back(WorkgroupList(workgroups, "name", details.at("workgroupID")));
    const auto& list = std::get<FormList>(form.controls.front());
    if (!IsConfirmedIn(stage, form) || !list.selected)
        return false;
    return {{"workgroupID", workgroups.at(*list.selected).at("workgroupID")}};
}

/// The commands of the command box: those with a workgroup stand in its list, the others have buttons.
json CommandsOf(const json& details, bool areWorkgroups) {
    json commands = json::array();
    for (const json& command : details.at("commands")) {
        if (command.contains("workgroupID") == areWorkgroups)
            commands.push_back(command);
    }
    return commands;
}

void AddCommandButtons(Form& form, const json& commands) {
    for (const json& command : commands)
        form.controls.emplace_back(FormButton{command.at("command").get<int>(), StringIn(command, "title")});
}

void AddWorkgroups(const NativeStage& stage, Form& form, FormList workgroups, bool areLibraries) {
    if (workgroups.selected)
        form.controls.emplace_back(
            FormText{stage.Text(localized::kCurrentWorkgroup, workgroups.entries[*workgroups.selected])});
    form.controls.emplace_back(std::move(workgroups));
    form.controls.emplace_back(FormButton{
        kConfirmed, stage.Text(areLibraries ? localized::kSelectLibrary : localized::kSelectWorkgroup)});
    form.defaultButton = kConfirmed;
}

/// The workgroup selected in the form, if it has such a list.
std::optional<size_t> SelectedWorkgroup(const Form& form) {
    for (const FormControl& control : form.controls) {
        if (const auto* list = std::get_if<FormList>(&control))
            return list->selected;
    }
    return std::nullopt;
}

// The numbers of commands begin above kConfirmed, which stands for the workgroup selected.
DialogAnswer AskForCommand(const NativeStage& stage, const json& details) {
    const json workgroups = CommandsOf(details, true);
    Form form{stage.Text(localized::kProductName),
              {},
              {{kFormCancelled, stage.Text(localized::kCloseButton)}},
              kFormCancelled};
    form.controls.emplace_back(
        FormText{stage.Text(IsTrue(details, "IsOnline") ? localized::kOnline : localized::kOffline)});
    AddCommandButtons(form, CommandsOf(details, false));
    if (!workgroups.empty())
        AddWorkgroups(stage, form, WorkgroupList(workgroups, "title", details.at("CurrentWorkgroupID")),
                      IsTrue(details, "IsLocalPersonal"));
    const int number = stage.dialogs.ShowForm(stage.owner, form);
    const auto selected = SelectedWorkgroup(form);
    if (number == kFormCancelled || (number == kConfirmed && !selected))
        return false;
    return {{"command", number == kConfirmed ? workgroups.at(*selected).at("command") : json(number)}};
}

std::string CandidateText(const json& candidate) {
    const std::string description = StringIn(candidate, "description");
    return StringIn(candidate, "name") + (description.empty() ? "" : " (" + description + ")");
}

FormChoices::Row ReplacementRow(const NativeStage& stage, const json& font) {
    const json& candidates = font.at("candidates");
    FormChoices::Row row{stage.Text(candidates.empty() ? localized::kNoReplacement : localized::kReplacements,
                                    StringIn(font, "name")),
                         {},
                         0};
    if (!candidates.empty())
        row.options.push_back(stage.Text(localized::kNoReplacementOption));
    for (const json& candidate : candidates)
        row.options.push_back(CandidateText(candidate));
    return row;
}

/// One of each name, since a choice is for all fonts of the name.
json FontsToAskAbout(const json& details) {
    std::set<std::string> names;
    json fonts = json::array();
    for (const json& font : details.at("fonts")) {
        if (names.insert(StringIn(font, "name")).second)
            fonts.push_back(font);
    }
    return fonts;
}

DialogAnswer AskForReplacements(const NativeStage& stage, const json& details) {
    const json fonts = FontsToAskAbout(details);
    FormChoices choices;
    for (const json& font : fonts)
        choices.rows.push_back(ReplacementRow(stage, font));
    Form form = MakeForm(stage, localized::kResolveFontsTitle);
    form.controls.emplace_back(std::move(choices));
    if (!IsConfirmedIn(stage, form))
        return false;
    json replacements = json::object();
    for (size_t index = 0; index < fonts.size(); ++index) {
        const size_t selected = std::get<FormChoices>(form.controls.front()).rows[index].selected;
        if (selected > 0)
            replacements[StringIn(fonts[index], "name")] =
                fonts[index].at("candidates").at(selected - 1).at("name");
    }
    return {{"replacements", std::move(replacements)}};
}

DialogAnswer ShowRestrictedFonts(const NativeStage& stage, const json& details) {
    const localized::StringID textID =
        IsTrue(details, "onlyNew") ? localized::kNewRestrictedFontsText : localized::kRestrictedFontsText;
    Form form = MakeForm(stage, localized::kRestrictedFontsTitle);
    form.controls.emplace_back(FormText{stage.Text(textID)});
    form.controls.emplace_back(
        FormList{details.at("fonts").get<std::vector<std::string>>(), std::nullopt, false});
    return IsConfirmedIn(stage, form);
}

DialogAnswer AskForFolder(const NativeStage& stage, const json& details) {
    using Outcome = platform::FolderAnswer::Outcome;
    const std::string prompt = StringIn(details, "prompt");
    const platform::FolderAnswer answer = stage.dialogs.ChooseFolder(
        stage.owner, prompt.empty() ? stage.Text(localized::kChooseFolderTitle) : prompt,
        StringIn(details, "initialFolder"));
    if (answer.outcome == Outcome::kCancelled)
        return false;
    return {{"folder", answer.outcome == Outcome::kChosen ? json(answer.path) : json()}};
}

struct NamedForm {
    std::string_view dialog;
    NativeForm form;
};

constexpr NamedForm kForms[] = {{"About", ShowAbout},
                                {"Preferences", AskForPreferences},
                                {"SelectWorkgroup", AskForWorkgroup},
                                {"CommandBox", AskForCommand},
                                {"ResolveFonts", AskForReplacements},
                                {"RestrictedFonts", ShowRestrictedFonts},
                                {"ChooseFolder", AskForFolder}};

}  // namespace

NativeForm FindNativeForm(std::string_view dialog) {
    const auto found = std::find_if(std::begin(kForms), std::end(kForms),
                                    [dialog](const NamedForm& each) { return each.dialog == dialog; });
    return found != std::end(kForms) ? found->form : nullptr;
}
