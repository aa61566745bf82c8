#include "cli/CommandLine.h"

#include <nlohmann/json.hpp>

#include "agent/Agent.h"
#include "common/Protocol.h"

namespace pellwick::cli {
namespace {

using exact_words::AddRepeatedText;
using exact_words::AddText;
using exact_words::AddTexts;

constexpr char kFontNameHelp[] = "PostScript name, family, family and style, or number";

ExitStatus Serve() {
    std::string problem;
    if (RunAgent(Locations::OfThisUser(), problem) != 0)
        throw Failure(kExit_CouldNot, problem);
    return kExit_Done;
}

CLI::App* AddCommand(CLI::App& app, Action& chosen, const char* name, const char* description,
                     Action action) {
    CLI::App* command = app.add_subcommand(name, description)->fallthrough();
    command->callback([&chosen, action] { chosen = action; });
    return command;
}

void DescribeFontCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    auto* add = AddCommand(app, chosen, "add", "Add font files, or folders of them", [&](Session& session) {
        return AddFonts(session, arguments.words, arguments.workgroup);
    });
    AddTexts(*add, "PATH", arguments.words, "Files and folders")->required();
    AddText(*add, "--workgroup", arguments.workgroup, "Where to put the fonts");
    const auto withNames = [&](const char* name, const char* description, auto run) {
        auto* command = AddCommand(app, chosen, name, description, [&arguments, run](Session& session) {
            return run(session, arguments.words);
        });
        AddTexts(*command, "NAME", arguments.words, kFontNameHelp)->required();
    };
    withNames("remove", "Remove fonts and their files from the font manager", RemoveFonts);
    withNames("activate", "Make fonts active until they are deactivated", ActivateFonts);
    withNames("deactivate", "End that", DeactivateFonts);
    AddCommand(app, chosen, "list", "List the fonts", [&](Session& session) {
        return ListFonts(session, arguments.isVisible);
    })->add_flag("--visible", arguments.isVisible, "Only those that the system offers to programs now");
}

void DescribeWorkgroupCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    CLI::App& workgroup =
        *app.add_subcommand("workgroup", "Workgroups")->require_subcommand(1)->fallthrough();
    AddCommand(workgroup, chosen, "list", "List the workgroups; * marks the one for new fonts",
               ListWorkgroups);
    const auto withName = [&](const char* name, const char* description, const char* method) {
        auto* command =
            AddCommand(workgroup, chosen, name, description, [&arguments, method](Session& session) {
                return ChangeWorkgroup(session, method, arguments.name, arguments.newName);
            });
        AddText(*command, "NAME", arguments.name, "The workgroup's name")->required();
        return command;
    };
    withName("create", "Make a workgroup", method::kCreateWorkgroup);
    withName("delete", "Delete a workgroup and its sets; its fonts stay", method::kDeleteWorkgroup);
    withName("use", "Put new fonts into a workgroup", method::kUseWorkgroup);
    auto* rename = withName("rename", "Rename a workgroup", method::kRenameWorkgroup);
    AddText(*rename, "NEW", arguments.newName, "The new name")->required();
}

void DescribeSetCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    CLI::App& set = *app.add_subcommand("set", "Sets of fonts")->require_subcommand(1)->fallthrough();
    auto* list = AddCommand(set, chosen, "list", "List the sets",
                            [&](Session& session) { return ListSets(session, arguments.workgroup); });
    AddText(*list, "--workgroup", arguments.workgroup, "List the sets of this workgroup alone");
    const auto withName = [&](const char* name, const char* description, const char* workgroup, auto run) {
        auto* command = AddCommand(set, chosen, name, description, [&arguments, run](Session& session) {
            return run(session, SetName{arguments.name, arguments.workgroup});
        });
        AddText(*command, "NAME", arguments.name, "The set's name")->required();
        AddText(*command, "--workgroup", arguments.workgroup, workgroup);
        return command;
    };
    constexpr char kTellApart[] = "The set's workgroup, where several have a set of the name";
    withName("show", "List the fonts of a set", kTellApart, ShowSet);
    withName("create", "Make a set", "Where to make it; else where new fonts go", CreateSet);
    withName("delete", "Delete a set; its fonts stay", kTellApart, DeleteSet);
    auto* add = withName("add", "Add fonts to a set", kTellApart, [&](Session& session, const SetName& name) {
        return AddToSet(session, name, arguments.words);
    });
    AddTexts(*add, "FONT", arguments.words, kFontNameHelp)->required();
}

void DescribeSmartListCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    CLI::App& lists =
        *app.add_subcommand("smartlist", "Lists that follow workgroups, sets and other such lists")
             ->require_subcommand(1)
             ->fallthrough();
    AddCommand(lists, chosen, "list", "List the smart lists", ListSmartLists);
    const auto withName = [&](const char* name, const char* description, auto run) {
        auto* command = AddCommand(lists, chosen, name, description, [&arguments, run](Session& session) {
            return run(session, arguments.name);
        });
        AddText(*command, "NAME", arguments.name, "The smart list's name")->required();
        return command;
    };
    withName("fonts", "List the fonts of a smart list", ShowSmartList);
    withName("delete", "Delete a smart list; its fonts stay", DeleteSmartList);
    auto* rename = withName("rename", "Rename a smart list", [&](Session& session, const std::string& name) {
        return RenameSmartList(session, name, arguments.newName);
    });
    AddText(*rename, "NEW", arguments.newName, "The new name")->required();
    auto* create = withName("create", "Make a smart list; of all fonts when nothing is named",
                            [&](Session& session, const std::string& name) {
                                return CreateSmartList(session, name, arguments.parts);
                            });
    SmartListParts& parts = arguments.parts;
    AddRepeatedText(*create, "--workgroup", parts.workgroups,
                    "Take the fonts of this workgroup; may be repeated");
    AddRepeatedText(*create, "--set", parts.sets, "Take the fonts of this set; may be repeated");
    AddRepeatedText(*create, "--smartlist", parts.smartLists,
                    "Take the fonts of that smart list; may be repeated");
}

void DescribeSettingsCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    AddCommand(app, chosen, "status", "Show how the agent stands", ShowStatus);
    auto* logIn = AddCommand(app, chosen, "login", "Log in",
                             [&](Session& session) { return LogIn(session, arguments.name); });
    AddText(*logIn, "NAME", arguments.name, "Who you are")->required();
    AddCommand(app, chosen, "logout", "Log out; no fonts are activated until the next login", LogOut);
    auto* standalone =
        AddCommand(app, chosen, "standalone", "Run without a server (on), or with one (off)",
                   [&](Session& session) { return SetStandalone(session, arguments.name == "on"); });
    AddText(*standalone, "STATE", arguments.name, "on or off")
        ->required()
        ->check(CLI::IsMember({"on", "off"}));
    AddCommand(app, chosen, "doctor", "Check all fonts and records, and put right what can be", Examine);
    AddCommand(app, chosen, "stop", "End the agent", StopAgent);
    AddCommand(app, chosen, "launch-info", "Tell plug-ins how to start this agent",
               [&](Session&) { return WriteLaunchInfo(arguments.options); });
}

void DescribeProgram(CLI::App& app, Arguments& arguments) {
    app.add_flag("--json", arguments.options.json, "Print JSON, for programs");
    app.add_flag("--no-start", arguments.options.noStart, "Do not start an agent when none runs");
    app.require_subcommand(0, 1);
    // A path that begins with "/" is no option; subcommands take this over.
    app.allow_windows_style_options(false);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return "Pellwick: " + exact_words::FailureText(error) + "; see \"Pellwick --help\"\n";
    });
}

}  // namespace

std::unique_ptr<CLI::App> DescribeCommandLine(Arguments& arguments, Action& chosen) {
    auto app =
        std::make_unique<CLI::App>("Pellwick, the font manager: without a command, its agent.", "Pellwick");
    chosen = [](Session&) { return Serve(); };
    DescribeProgram(*app, arguments);
    AddCommand(*app, chosen, "serve", "Run the agent (as without a command)",
               [](Session&) { return Serve(); });
    DescribeFontCommands(*app, arguments, chosen);
    DescribeSettingsCommands(*app, arguments, chosen);
    DescribeWorkgroupCommands(*app, arguments, chosen);
    DescribeSetCommands(*app, arguments, chosen);
    DescribeSmartListCommands(*app, arguments, chosen);
    return app;
}

}  // namespace pellwick::cli
