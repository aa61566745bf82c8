// set list, show, create, add, delete.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "PrintableText.h"
#include "cli/Fonts.h"
#include "cli/PellwickWords.h"
#include "common/Protocol.h"

namespace pellwick::cli {

using command_line::AddText;
using command_line::AddTexts;

namespace {

/// A set as the user names it; its workgroup may be left out where one set alone has the name.
struct SetName {
    std::string name;
    std::string workgroup;
};

/// The record of the set that the user means.
Json FindSet(AgentSession& session, const SetName& set) {
    session.StartAgentIfNeeded();
    return session.Call(method::kFindSet, {{member::kName, set.name}, {member::kWorkgroup, set.workgroup}});
}

std::string Title(const Json& set) {
    return StringMember(set, member::kName) + " in " + StringMember(set, kGS_WorkgroupNameKey);
}

ExitStatus ListSets(AgentSession& session, const std::string& workgroup) {
    session.StartAgentIfNeeded();
    const Json answer = session.Call(method::kListSets, {{member::kWorkgroup, workgroup}});
    if (session.PrintsJson()) {
        PrintJson(answer);
        return kExit_Done;
    }
    for (const Json& set : ArrayMember(answer, member::kSets))
        std::printf("%6lld fonts  %s\n", IntegerMember(set, member::kFontCount),
                    PrintableText(Title(set)).c_str());
    return kExit_Done;
}

ExitStatus ShowSet(AgentSession& session, const SetName& name) {
    const Json set = FindSet(session, name);
    const Json fonts = ListFontsBy(session, {{member::kSet, set[member::kID]}});
    if (session.PrintsJson())
        PrintJson({{"set", set}, {"fonts", fonts}});
    return kExit_Done;
}

ExitStatus CreateSet(AgentSession& session, const SetName& name) {
    session.StartAgentIfNeeded();
    const Json set =
        session.Call(method::kCreateSet, {{member::kName, name.name}, {member::kWorkgroup, name.workgroup}});
    if (session.PrintsJson())
        PrintJson({{"set", set}});
    else
        PrintLine("created " + Title(set));
    return kExit_Done;
}

ExitStatus AddToSet(AgentSession& session, const SetName& name, const std::vector<std::string>& fontNames) {
    const Json set = FindSet(session, name);
    bool isComplete = false;
    const Json fonts = FindFonts(session, fontNames, isComplete);
    const Json answer = session.Call(method::kAddFontsToSets,
                                     {{member::kFonts, IDsOf(fonts)}, {member::kSets, {set[member::kID]}}});
    if (session.PrintsJson())
        PrintJson({{"set", set}, {"fonts", fonts}, {"added", IntegerMember(answer, member::kAdded)}});
    else
        PrintFonts(fonts, "added");
    return isComplete ? kExit_Done : kExit_CouldNot;
}

ExitStatus DeleteSet(AgentSession& session, const SetName& name) {
    const Json set = FindSet(session, name);
    session.Call(method::kDeleteSet, {{member::kSet, set[member::kID]}});
    if (session.PrintsJson())
        PrintJson({{"set", set}});
    else
        PrintLine("deleted " + Title(set) + "; its fonts stay");
    return kExit_Done;
}

}  // namespace

void DescribeSetCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    CLI::App& set = *app.add_subcommand("set", "Sets of fonts")->require_subcommand(1)->fallthrough();
    auto* list = AddCommand(set, chosen, "list", "List the sets",
                            [&](AgentSession& session) { return ListSets(session, arguments.workgroup); });
    AddText(*list, "--workgroup", arguments.workgroup, "List the sets of this workgroup alone");
    const auto withName = [&](const char* name, const char* description, const char* workgroup, auto run) {
        auto* command = AddCommand(set, chosen, name, description, [&arguments, run](AgentSession& session) {
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
    auto* add = withName(
        "add", "Add fonts to a set", kTellApart,
        [&](AgentSession& session, const SetName& name) { return AddToSet(session, name, arguments.words); });
    AddTexts(*add, "FONT", arguments.words, kFontNameHelp)->required();
}

}  // namespace pellwick::cli
