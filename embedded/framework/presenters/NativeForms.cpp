#include "presenters/NativeForms.h"

#include <algorithm>
#include <set>

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

FormList WorkgroupList(const SelectWorkgroupDialog& dialog) {
    FormList list;
    for (const SelectWorkgroupDialog::Workgroup& workgroup : dialog.workgroups) {
        if (workgroup.id == dialog.workgroupID)
            list.selected = list.entries.size();
        list.entries.push_back(workgroup.name);
    }
    return list;
}

FormList WorkgroupList(const CommandBoxDialog& dialog) {
    FormList list;
    for (const CommandBoxDialog::WorkgroupCommand& workgroup : dialog.workgroups) {
        if (workgroup.workgroupID && workgroup.workgroupID == dialog.currentWorkgroupID)
            list.selected = list.entries.size();
        list.entries.push_back(workgroup.name);
    }
    return list;
}

void AddWorkgroups(const NativeStage& stage, Form& form, const CommandBoxDialog& dialog) {
    FormList workgroups = WorkgroupList(dialog);
    if (workgroups.selected)
        form.controls.emplace_back(
            FormText{stage.Text(localized::kCurrentWorkgroup, workgroups.entries[*workgroups.selected])});
    form.controls.emplace_back(std::move(workgroups));
    form.controls.emplace_back(FormButton{
        kConfirmed,
        stage.Text(dialog.isLocalPersonal ? localized::kSelectLibrary : localized::kSelectWorkgroup)});
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

std::string CandidateText(const ResolveFontsDialog::Candidate& candidate) {
    return candidate.name + (candidate.description.empty() ? "" : " (" + candidate.description + ")");
}

FormChoices::Row ReplacementRow(const NativeStage& stage, const ResolveFontsDialog::Font& font) {
    const bool isLost = font.candidates.empty();
    FormChoices::Row row{
        stage.Text(isLost ? localized::kNoReplacement : localized::kReplacements, font.name), {}, 0};
    if (!isLost)
        row.options.push_back(stage.Text(localized::kNoReplacementOption));
    for (const ResolveFontsDialog::Candidate& candidate : font.candidates)
        row.options.push_back(CandidateText(candidate));
    return row;
}

/// One of each name, since a choice is for all fonts of the name.
std::vector<const ResolveFontsDialog::Font*> FontsToAskAbout(const ResolveFontsDialog& dialog) {
    std::set<std::string> names;
    std::vector<const ResolveFontsDialog::Font*> fonts;
    for (const ResolveFontsDialog::Font& font : dialog.fonts) {
        if (names.insert(font.name).second)
            fonts.push_back(&font);
    }
    return fonts;
}

}  // namespace

bool AskInWindow(const NativeStage& stage, AboutDialog& dialog) {
    Form form{
        stage.Title(localized::kAbout), {}, {{kConfirmed, stage.Text(localized::kOkButton)}}, kConfirmed};
    form.controls.emplace_back(FormText{stage.Text(localized::kProductName), true});
    if (!dialog.version.empty())
        form.controls.emplace_back(FormText{stage.Text(localized::kVersion, dialog.version)});
    form.controls.emplace_back(FormText{stage.Text(localized::kAboutText)});
    stage.dialogs.ShowForm(stage.owner, form);
    return true;
}

bool AskInWindow(const NativeStage& stage, PreferencesDialog& dialog) {
    Form form = MakeForm(stage, localized::kPreferences);
    for (const PreferencesDialog::Switch& each : dialog.switches)
        form.controls.emplace_back(FormCheckBox{each.title, each.isOn});
    if (!IsConfirmedIn(stage, form))
        return false;
    for (size_t index = 0; index < dialog.switches.size(); ++index)
        dialog.switches[index].isOn = std::get<FormCheckBox>(form.controls[index]).isChecked;
    return true;
}

bool AskInWindow(const NativeStage& stage, SelectWorkgroupDialog& dialog) {
    Form form = MakeForm(stage, localized::kSelectWorkgroup);
    if (dialog.workgroups.empty()) {
        stage.dialogs.ShowMessage(stage.owner, form.title, stage.Text(localized::kNoWorkgroupTitle),
                                  {stage.Text(localized::kOkButton), {}});
        return false;
    }
    form.controls.emplace_back(WorkgroupList(dialog));
    const std::optional<size_t> selected =
        IsConfirmedIn(stage, form) ? SelectedWorkgroup(form) : std::nullopt;
    if (selected)
        dialog.workgroupID = dialog.workgroups[*selected].id;
    return selected.has_value();
}

// The numbers of commands begin above kConfirmed, which stands for the workgroup selected.
bool AskInWindow(const NativeStage& stage, CommandBoxDialog& dialog) {
    Form form{stage.Text(localized::kProductName),
              {},
              {{kFormCancelled, stage.Text(localized::kCloseButton)}},
              kFormCancelled};
    form.controls.emplace_back(
        FormText{stage.Text(dialog.isOnline ? localized::kOnline : localized::kOffline)});
    for (const CommandBoxDialog::Command& command : dialog.commands)
        form.controls.emplace_back(FormButton{command.number, command.title});
    if (!dialog.workgroups.empty())
        AddWorkgroups(stage, form, dialog);
    const int number = stage.dialogs.ShowForm(stage.owner, form);
    const auto selected = SelectedWorkgroup(form);
    if (number == kFormCancelled || (number == kConfirmed && !selected))
        return false;
    dialog.command = number == kConfirmed ? dialog.workgroups[*selected].number : number;
    return true;
}

bool AskInWindow(const NativeStage& stage, ResolveFontsDialog& dialog) {
    const std::vector<const ResolveFontsDialog::Font*> fonts = FontsToAskAbout(dialog);
    FormChoices choices;
    for (const ResolveFontsDialog::Font* font : fonts)
        choices.rows.push_back(ReplacementRow(stage, *font));
    Form form = MakeForm(stage, localized::kResolveFontsTitle);
    form.controls.emplace_back(std::move(choices));
    if (!IsConfirmedIn(stage, form))
        return false;
    for (size_t index = 0; index < fonts.size(); ++index) {
        const size_t selected = std::get<FormChoices>(form.controls.front()).rows[index].selected;
        if (selected > 0)
            dialog.replacements[fonts[index]->name] = fonts[index]->candidates.at(selected - 1).name;
    }
    return true;
}

bool AskInWindow(const NativeStage& stage, RestrictedFontsDialog& dialog) {
    Form form = MakeForm(stage, localized::kRestrictedFontsTitle);
    form.controls.emplace_back(FormText{
        stage.Text(dialog.onlyNew ? localized::kNewRestrictedFontsText : localized::kRestrictedFontsText)});
    form.controls.emplace_back(FormList{dialog.fonts, std::nullopt, false});
    return IsConfirmedIn(stage, form);
}

bool AskInWindow(const NativeStage& stage, ChooseFolderDialog& dialog) {
    using Outcome = platform::FolderAnswer::Outcome;
    const platform::FolderAnswer answer = stage.dialogs.ChooseFolder(
        stage.owner, dialog.prompt.empty() ? stage.Text(localized::kChooseFolderTitle) : dialog.prompt,
        dialog.initialFolder);
    if (answer.outcome == Outcome::kChosen)
        dialog.folder = answer.path;
    return answer.outcome != Outcome::kCancelled;
}
