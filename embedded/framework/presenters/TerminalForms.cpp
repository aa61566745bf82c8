#include "presenters/TerminalForms.h"

#include <algorithm>
#include <functional>
#include <set>

#include "LocalizedStrings.h"
#include "platform/Files.h"
#include "platform/Folders.h"

namespace {

Choices SwitchChoices(const Terminal& terminal, const PreferencesDialog& dialog) {
    Choices choices;
    for (const PreferencesDialog::Switch& each : dialog.switches)
        choices.push_back({static_cast<int32_t>(choices.size()) + 1, each.title,
                           terminal.Text(each.isOn ? localized::kOn : localized::kOff), false});
    return choices;
}

Choices WorkgroupChoices(const SelectWorkgroupDialog& dialog) {
    Choices choices;
    for (const SelectWorkgroupDialog::Workgroup& workgroup : dialog.workgroups)
        choices.push_back({static_cast<int32_t>(choices.size()) + 1,
                           workgroup.name,
                           {},
                           workgroup.id == dialog.workgroupID});
    return choices;
}

std::string WorkgroupPrompt(const Terminal& terminal, const Choices& choices) {
    const auto current = std::find_if(choices.begin(), choices.end(), std::mem_fn(&Choice::isCurrent));
    return current == choices.end() ? terminal.Text(localized::kChoosePrompt)
                                    : terminal.Text(localized::kChoosePromptWithDefault, current->name);
}

Choices CommandChoices(const CommandBoxDialog& dialog) {
    Choices choices;
    for (const CommandBoxDialog::Command& command : dialog.commands)
        choices.push_back({command.number, command.title, {}, false});
    return choices;
}

Choices WorkgroupChoices(const CommandBoxDialog& dialog) {
    Choices choices;
    for (const CommandBoxDialog::WorkgroupCommand& workgroup : dialog.workgroups)
        choices.push_back({workgroup.number,
                           workgroup.name,
                           {},
                           workgroup.workgroupID && workgroup.workgroupID == dialog.currentWorkgroupID});
    return choices;
}

void PrintState(Terminal& terminal, bool isOnline, const Choices& workgroups) {
    terminal.PrintLine(terminal.Text(isOnline ? localized::kOnline : localized::kOffline));
    for (const Choice& workgroup : workgroups) {
        if (workgroup.isCurrent)
            terminal.PrintLine(terminal.Text(localized::kCurrentWorkgroup, workgroup.name));
    }
}

Choices CandidateChoices(const ResolveFontsDialog::Font& font) {
    Choices choices;
    for (const ResolveFontsDialog::Candidate& candidate : font.candidates)
        choices.push_back(
            {static_cast<int32_t>(choices.size()) + 1, candidate.name, candidate.description, false});
    return choices;
}

std::string FolderPrompt(const Terminal& terminal, const std::string& initialFolder) {
    return initialFolder.empty() ? terminal.Text(localized::kFolderPrompt)
                                 : terminal.Text(localized::kFolderPromptWithDefault, initialFolder);
}

}  // namespace

bool AskInTerminal(Terminal& terminal, AboutDialog& dialog) {
    terminal.PrintTitle(terminal.Text(localized::kProductName));
    if (!dialog.version.empty())
        terminal.PrintLine(terminal.Text(localized::kVersion, dialog.version));
    terminal.PrintLine(terminal.Text(localized::kAboutText));
    return true;
}

bool AskInTerminal(Terminal& terminal, PreferencesDialog& dialog) {
    for (;;) {
        const Choices choices = SwitchChoices(terminal, dialog);
        terminal.PrintTitle(terminal.Text(localized::kPreferences));
        terminal.PrintChoices(choices);
        const auto number = terminal.AskForChoice(terminal.Text(localized::kSwitchPrompt), choices);
        if (!number || *number == 0)
            return number.has_value();
        bool& isOn = dialog.switches[static_cast<size_t>(*number) - 1].isOn;
        isOn = !isOn;
    }
}

bool AskInTerminal(Terminal& terminal, SelectWorkgroupDialog& dialog) {
    const Choices choices = WorkgroupChoices(dialog);
    if (choices.empty()) {
        terminal.PrintLine(terminal.Text(localized::kNoWorkgroupTitle));
        return false;
    }
    terminal.PrintTitle(terminal.Text(localized::kSelectWorkgroup));
    terminal.PrintChoices(choices);
    const auto number = terminal.AskForChoice(WorkgroupPrompt(terminal, choices), choices);
    if (!number)
        return false;
    if (*number == 0)
        return std::any_of(choices.begin(), choices.end(), std::mem_fn(&Choice::isCurrent));
    dialog.workgroupID = dialog.workgroups[static_cast<size_t>(*number) - 1].id;
    return true;
}

bool AskInTerminal(Terminal& terminal, CommandBoxDialog& dialog) {
    Choices choices = CommandChoices(dialog);
    const Choices workgroups = WorkgroupChoices(dialog);
    terminal.PrintTitle(terminal.Text(localized::kProductName));
    PrintState(terminal, dialog.isOnline, workgroups);
    terminal.PrintChoices(choices);
    if (!workgroups.empty())
        terminal.PrintTitle(
            terminal.Text(dialog.isLocalPersonal ? localized::kSelectLibrary : localized::kSelectWorkgroup));
    terminal.PrintChoices(workgroups);
    choices.insert(choices.end(), workgroups.begin(), workgroups.end());
    dialog.command = terminal.AskForChoice(terminal.Text(localized::kCommandPrompt), choices).value_or(0);
    return dialog.command != 0;
}

bool AskInTerminal(Terminal& terminal, ResolveFontsDialog& dialog) {
    std::set<std::string> asked;  // a choice is for all fonts of the name
    terminal.PrintTitle(terminal.Text(localized::kResolveFontsTitle));
    for (const ResolveFontsDialog::Font& font : dialog.fonts) {
        const Choices candidates = CandidateChoices(font);
        terminal.PrintLine(terminal.Text(
            candidates.empty() ? localized::kNoReplacement : localized::kReplacements, font.name));
        if (candidates.empty() || !asked.insert(font.name).second)
            continue;
        terminal.PrintChoices(candidates);
        const auto number = terminal.AskForChoice(terminal.Text(localized::kResolvePrompt), candidates);
        if (!number)
            return false;
        if (*number != 0)
            dialog.replacements[font.name] = candidates[static_cast<size_t>(*number) - 1].name;
    }
    return true;
}

bool AskInTerminal(Terminal& terminal, RestrictedFontsDialog& dialog) {
    terminal.PrintTitle(terminal.Text(localized::kRestrictedFontsTitle));
    terminal.PrintLine(
        terminal.Text(dialog.onlyNew ? localized::kNewRestrictedFontsText : localized::kRestrictedFontsText));
    for (const std::string& name : dialog.fonts)
        terminal.PrintLine("  " + name);
    const Choices answers = {{1, terminal.Text(localized::kYes), {}, false},
                             {2, terminal.Text(localized::kNo), {}, false}};
    const auto number = terminal.AskForChoice(terminal.Text(localized::kContinuePrompt), answers);
    return number.has_value() && *number != 2;
}

bool AskInTerminal(Terminal& terminal, ChooseFolderDialog& dialog) {
    terminal.PrintTitle(dialog.prompt.empty() ? terminal.Text(localized::kChooseFolderTitle) : dialog.prompt);
    while (const auto typed = terminal.Ask(FolderPrompt(terminal, dialog.initialFolder))) {
        dialog.folder = typed->empty() ? dialog.initialFolder : *typed;
        if (typed->empty())
            return !dialog.initialFolder.empty();
        if (!platform::IsExistingFile(platform::FullPath(*typed)))
            return true;
        terminal.PrintLine(terminal.Text(localized::kNoFolder, *typed));
    }
    return false;
}
