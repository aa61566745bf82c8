// smartlist list, fonts, create, rename, delete.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "cli/Fonts.h"
#include "cli/PellwickWords.h"
#include "common/Protocol.h"

namespace pellwick::cli {

using command_line::AddRepeatedText;
using command_line::AddText;

namespace {

/// The record of the list that the user means.
Json FindSmartList(AgentSession& session, const std::string& name) {
    session.StartAgentIfNeeded();
    return session.Call(method::kFindSmartList, {{kGS_SmartListNameKey, name}});
}

long long WorkgroupID(AgentSession& session, const std::string& name) {
    const Json answer = session.Call(method::kListWorkgroups, Json::object());
    for (const Json& workgroup : ArrayMember(answer, member::kWorkgroups)) {
        if (StringMember(workgroup, kGS_WorkgroupNameKey) == name)
            return IntegerMember(workgroup, kGS_WorkgroupIDKey);
    }
    throw Failure(kExit_CouldNot, "there is no workgroup \"" + name + "\"; see \"Pellwick workgroup list\"");
}

Json QueryOf(AgentSession& session, const SmartListParts& parts) {
    Json query = {{kGS_WorkgroupIDsKey, Json::array()},
                  {kGS_SetIDsKey, Json::array()},
                  {kGS_SmartSetIDsKey, Json::array()}};
    for (const std::string& name : parts.workgroups)
        query[kGS_WorkgroupIDsKey].push_back(WorkgroupID(session, name));
    for (const std::string& name : parts.sets)
        query[kGS_SetIDsKey].push_back(session.Call(method::kFindSet, {{member::kName, name}})[member::kID]);
    for (const std::string& name : parts.smartLists)
        query[kGS_SmartSetIDsKey].push_back(FindSmartList(session, name)[kGS_SmartListIDKey]);
    return query;
}

void PrintDone(AgentSession& session, const Json& list, const std::string& sentence) {
    if (session.PrintsJson())
        PrintJson({{"smartList", list}});
    else
        PrintLine(sentence);
}

ExitStatus ListSmartLists(AgentSession& session) {
    session.StartAgentIfNeeded();
    const Json answer = session.Call(method::kListSmartLists, Json::object());
    if (session.PrintsJson()) {
        PrintJson(answer);
        return kExit_Done;
    }
    for (const Json& list : ArrayMember(answer, kGS_SmartListsKey))
        PrintLine(StringMember(list, kGS_SmartListNameKey));
    return kExit_Done;
}

ExitStatus ShowSmartList(AgentSession& session, const std::string& name) {
    const Json list = FindSmartList(session, name);
    const Json fonts = ListFontsBy(session, {{member::kSmartList, list[kGS_SmartListIDKey]}});
    if (session.PrintsJson())
        PrintJson({{"smartList", list}, {"fonts", fonts}});
    return kExit_Done;
}

ExitStatus CreateSmartList(AgentSession& session, const std::string& name, const SmartListParts& parts) {
    session.StartAgentIfNeeded();
    Json arguments = QueryOf(session, parts);
    arguments[kGS_SmartListNameKey] = name;
    PrintDone(session, session.Call(method::kCreateSmartList, arguments), "created " + name);
    return kExit_Done;
}

ExitStatus RenameSmartList(AgentSession& session, const std::string& name, const std::string& newName) {
    const Json list = FindSmartList(session, name);
    const Json renamed =
        session.Call(method::kRenameSmartList,
                     {{kGS_SmartListIDKey, list[kGS_SmartListIDKey]}, {kGS_SmartListNameKey, newName}});
    PrintDone(session, renamed, "renamed " + name + " to " + newName);
    return kExit_Done;
}

ExitStatus DeleteSmartList(AgentSession& session, const std::string& name) {
    const Json list = FindSmartList(session, name);
    session.Call(method::kDeleteSmartList, {{kGS_SmartListIDKey, list[kGS_SmartListIDKey]}});
    PrintDone(session, list, "deleted " + name + "; its fonts stay");
    return kExit_Done;
}

}  // namespace

void DescribeSmartListCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    CLI::App& lists =
        *app.add_subcommand("smartlist", "Lists that follow workgroups, sets and other such lists")
             ->require_subcommand(1)
             ->fallthrough();
    AddCommand(lists, chosen, "list", "List the smart lists", ListSmartLists);
    const auto withName = [&](const char* name, const char* description, auto run) {
        auto* command =
            AddCommand(lists, chosen, name, description,
                       [&arguments, run](AgentSession& session) { return run(session, arguments.name); });
        AddText(*command, "NAME", arguments.name, "The smart list's name")->required();
        return command;
    };
    withName("fonts", "List the fonts of a smart list", ShowSmartList);
    withName("delete", "Delete a smart list; its fonts stay", DeleteSmartList);
    auto* rename =
        withName("rename", "Rename a smart list", [&](AgentSession& session, const std::string& name) {
            return RenameSmartList(session, name, arguments.newName);
        });
    AddText(*rename, "NEW", arguments.newName, "The new name")->required();
    auto* create = withName("create", "Make a smart list; of all fonts when nothing is named",
                            [&](AgentSession& session, const std::string& name) {
                                return CreateSmartList(session, name, arguments.parts);
                            });
    SmartListParts& parts = arguments.parts;
    AddRepeatedText(*create, "--workgroup", parts.workgroups,
                    "Take the fonts of this workgroup; may be repeated");
    AddRepeatedText(*create, "--set", parts.sets, "Take the fonts of this set; may be repeated");
    AddRepeatedText(*create, "--smartlist", parts.smartLists,
                    "Take the fonts of that smart list; may be repeated");
}

}  // namespace pellwick::cli
