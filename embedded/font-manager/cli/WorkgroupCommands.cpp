// workgroup list, create, rename, delete, use.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "PrintableText.h"
#include "cli/Fonts.h"
#include "cli/PellwickWords.h"
#include "common/Protocol.h"

namespace pellwick::cli {

using command_line::AddText;

namespace {

ExitStatus ListWorkgroups(AgentSession& session) {
    session.StartAgentIfNeeded();
    const Json answer = session.Call(method::kListWorkgroups, Json::object());
    if (session.PrintsJson()) {
        PrintJson(answer);
        return kExit_Done;
    }
    for (const Json& workgroup : ArrayMember(answer, member::kWorkgroups)) {
        const long long id = IntegerMember(workgroup, kGS_WorkgroupIDKey);
        std::printf("%c %4lld  %s\n", id == IntegerMember(answer, member::kCurrent) ? '*' : ' ', id,
                    PrintableText(ShownWorkgroupName(StringMember(workgroup, kGS_WorkgroupNameKey))).c_str());
    }
    return kExit_Done;
}

/// `newName` is empty but for a renaming.
ExitStatus ChangeWorkgroup(AgentSession& session, const char* method, const std::string& name,
                           const std::string& newName) {
    Json arguments = {{member::kName, name}};
    if (!newName.empty())
        arguments[member::kNewName] = newName;
    session.StartAgentIfNeeded();
    const Json answer = session.Call(method, arguments);
    if (session.PrintsJson())
        PrintJson(answer);
    return kExit_Done;
}

}  // namespace

void DescribeWorkgroupCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    CLI::App& workgroup =
        *app.add_subcommand("workgroup", "Workgroups")->require_subcommand(1)->fallthrough();
    AddCommand(workgroup, chosen, "list", "List the workgroups; * marks the one for new fonts",
               ListWorkgroups);
    const auto withName = [&](const char* name, const char* description, const char* method) {
        auto* command =
            AddCommand(workgroup, chosen, name, description, [&arguments, method](AgentSession& session) {
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

}  // namespace pellwick::cli
