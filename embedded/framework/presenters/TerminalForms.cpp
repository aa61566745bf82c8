#include "presenters/TerminalForms.h"
#include "LocalizedStrings.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <set>

#include "platform/Files.h"
#include "platform/Folders.h"
#include "presenters/DialogDetails.h"

namespace {

using nlohmann::json;

DialogAnswer ShowAbout(Terminal& terminal, const json& details) {
    const std::string version = StringIn(details, "version");
    terminal.PrintTitle(terminal.Text(localized::kProductName));
    if (!version.empty())
        terminal.PrintLine(terminal.Text(localized::kVersion, version));
    terminal.PrintLine(terminal.Text(localized::kAboutText));
    return true;
}

Choices SwitchChoices(const Terminal& terminal, const json& switches) {
    Choices choices;
    for (const json& each : switches)
        choices.push_back({static_cast<int32_t>(choices.size()) + 1, StringIn(each, "title"),
                           terminal.Text(IsTrue(each, "isOn") ? localized::kOn : localized::kOff), false});
    return choices;
}

DialogAnswer SwitchesByKey(const json& switches) {
    json byKey = json::object();
    for (const json& each : switches)
        byKey[StringIn(each, "key")] = each.at("isOn");
    return byKey;
}

DialogAnswer AskForPreferences(Terminal& terminal, const json& details) {
    json switches = details.at("switches");
    for (;;) {
        const Choices choices = SwitchChoices(terminal, switches);
        terminal.PrintTitle(terminal.Text(localized::kPreferences));
        terminal.PrintChoices(choices);
        const auto number = terminal.AskForChoice(terminal.Text(localized::kSwitchPrompt), choices);
        if (!number)
            return false;
        if (*number == 0)
            return SwitchesByKey(switches);
        json& isOn = switches[static_cast<size_t>(*number) - 1].at("isOn");
        isOn = !isOn.get<bool>();
    }
}

Choices WorkgroupChoices(const json& details) {
    Choices choices;
    for (const json& workgroup : details.at("workgroups"))
        choices.push_back({static_cast<int32_t>(choices.size()) + 1,
                           StringIn(workgroup, "name"),
                           {},
                           workgroup.at("workgroupID") == details.at("workgroupID")});
    return choices;
}

std::string WorkgroupPrompt(const Terminal& terminal, const Choices& choices) {
    const auto current = std::find_if(choices.begin(), choices.end(), std::mem_fn(&Choice::isCurrent));
    return current == choices.end() ? terminal.Text(localized::kChoosePrompt)
                                    : terminal.Text(localized::kChoosePromptWithDefault, current->name);
}

DialogAnswer AskForWorkgroup(Terminal& terminal, const json& details) {
    const Choices choices = WorkgroupChoices(details);
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
    const json& chosen = details.at("workgroups").at(static_cast<size_t>(*number) - 1);
    return {{"workgroupID", chosen.at("workgroupID")}};
}

/// The entries of the command box, those of the menu or the workgroups below it.
Choices CommandChoices(const json& details, bool areWorkgroups) {
    const json& current = details.at("CurrentWorkgroupID");
    Choices choices;
    for (const json& command : details.at("commands")) {
        if (command.contains("workgroupID") == areWorkgroups)
            choices.push_back({command.at("command").get<int32_t>(),
                               StringIn(command, "title"),
                               {},
                               areWorkgroups && !current.is_null() && command["workgroupID"] == current});
    }
    return choices;
}

void PrintState(Terminal& terminal, const json& details, const Choices& workgroups) {
    terminal.PrintLine(terminal.Text(IsTrue(details, "IsOnline") ? localized::kOnline : localized::kOffline));
    for (const Choice& workgroup : workgroups) {
        if (workgroup.isCurrent)
            terminal.PrintLine(terminal.Text(localized::kCurrentWorkgroup, workgroup.name));
    }
}

DialogAnswer AskForCommand(Terminal& terminal, const json& details) {
    Choices choices = CommandChoices(details, false);
    const Choices workgroups = CommandChoices(details, true);
    terminal.PrintTitle(terminal.Text(localized::kProductName));
    PrintState(terminal, details, workgroups);
    terminal.PrintChoices(choices);
    if (!workgroups.empty())
        terminal.PrintTitle(terminal.Text(IsTrue(details, "IsLocalPersonal") ? localized::kSelectLibrary
                                                                             : localized::kSelectWorkgroup));
    terminal.PrintChoices(workgroups);
    choices.insert(choices.end(), workgroups.begin(), workgroups.end());
    const int32_t number =
        terminal.AskForChoice(terminal.Text(localized::kCommandPrompt), choices).value_or(0);
    return number != 0 ? DialogAnswer{{"command", number}} : DialogAnswer(false);
}

Choices CandidateChoices(const json& font) {
    Choices choices;
    for (const json& candidate : font.at("candidates"))
        choices.push_back({static_cast<int32_t>(choices.size()) + 1, StringIn(candidate, "name"),
                           StringIn(candidate, "description"), false});
    return choices;
}

DialogAnswer AskForReplacements(Terminal& terminal, const json& details) {
    json replacements = json::object();
    std::set<std::string> asked;  // a choice is for all fonts of the name
    terminal.PrintTitle(terminal.Text(localized::kResolveFontsTitle));
    for (const json& font : details.at("fonts")) {
        const std::string name = StringIn(font, "name");
        const Choices candidates = CandidateChoices(font);
        terminal.PrintLine(
            terminal.Text(candidates.empty() ? localized::kNoReplacement : localized::kReplacements, name));
        if (candidates.empty() || !asked.insert(name).second)
            continue;
        terminal.PrintChoices(candidates);
        const auto number = terminal.AskForChoice(terminal.Text(localized::kResolvePrompt), candidates);
        if (!number)
            return false;
        if (*number != 0)
            replacements[name] = candidates[static_cast<size_t>(*number) - 1].name;
    }
    return {{"replacements", replacements}};
}

DialogAnswer ShowRestrictedFonts(Terminal& terminal, const json& details) {
    terminal.PrintTitle(terminal.Text(localized::kRestrictedFontsTitle));
    terminal.PrintLine(terminal.Text(IsTrue(details, "onlyNew") ? localized::kNewRestrictedFontsText
                                                                : localized::kRestrictedFontsText));
    for (const json& name : details.at("fonts"))
        terminal.PrintLine("  " + name.get<std::string>());
    const Choices answers = {{1, terminal.Text(localized::kYes), {}, false},
                             {2, terminal.Text(localized::kNo), {}, false}};
    const auto number = terminal.AskForChoice(terminal.Text(localized::kContinuePrompt), answers);
    return number.has_value() && *number != 2;
}

std::string FolderPrompt(const Terminal& terminal, const std::string& initialFolder) {
    return initialFolder.empty() ? terminal.Text(localized::kFolderPrompt)
                                 : terminal.Text(localized::kFolderPromptWithDefault, initialFolder);
}

DialogAnswer AskForFolder(Terminal& terminal, const json& details) {
    const std::string initialFolder = StringIn(details, "initialFolder");
    const std::string title = StringIn(details, "prompt");
    terminal.PrintTitle(title.empty() ? terminal.Text(localized::kChooseFolderTitle) : title);
    while (const auto typed = terminal.Ask(FolderPrompt(terminal, initialFolder))) {
        if (typed->empty())
            return !initialFolder.empty();
        if (!platform::IsExistingFile(platform::FullPath(*typed)))
            return {{"folder", *typed}};
        terminal.PrintLine(terminal.Text(localized::kNoFolder, *typed));
    }
    return false;
}

struct NamedForm {
    std::string_view dialog;
    TerminalForm form;
};

constexpr NamedForm kForms[] = {{"About", ShowAbout},
                                {"Preferences", AskForPreferences},
                                {"SelectWorkgroup", AskForWorkgroup},
                                {"CommandBox", AskForCommand},
                                {"ResolveFonts", AskForReplacements},
                                {"RestrictedFonts", ShowRestrictedFonts},
                                {"ChooseFolder", AskForFolder}};

}  // namespace

TerminalForm FindTerminalForm(std::string_view dialog) {
    const auto found = std::find_if(std::begin(kForms), std::end(kForms),
                                    [dialog](const NamedForm& each) { return each.dialog == dialog; });
    return found != std::end(kForms) ? found->form : nullptr;
}
