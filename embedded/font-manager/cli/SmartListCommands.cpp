// smartlist list, fonts, create, rename, delete.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "cli/Commands.h"
#include "cli/Fonts.h"
#include "common/Protocol.h"

namespace pellwick::cli {
namespace {

/// The record of the list that the user means.
Json FindSmartList(Session& session, const std::string& name) {
    session.StartAgentIfNeeded();
    return session.Call(method::kFindSmartList, {{kGS_SmartListNameKey, name}});
}

long long WorkgroupID(Session& session, const std::string& name) {
    const Json answer = session.Call(method::kListWorkgroups, Json::object());
    for (const Json& workgroup : ArrayMember(answer, "workgroups")) {
        if (StringMember(workgroup, kGS_WorkgroupNameKey) == name)
            return IntegerMember(workgroup, kGS_WorkgroupIDKey);
    }
    throw Failure(kExit_CouldNot, "there is no workgroup \"" + name + "\"; see \"Pellwick workgroup list\"");
}

Json QueryOf(Session& session, const SmartListParts& parts) {
    Json query = {{kGS_WorkgroupIDsKey, Json::array()},
                  {kGS_SetIDsKey, Json::array()},
                  {kGS_SmartSetIDsKey, Json::array()}};
    for (const std::string& name : parts.workgroups)
        query[kGS_WorkgroupIDsKey].push_back(WorkgroupID(session, name));
    for (const std::string& name : parts.sets)
        query[kGS_SetIDsKey].push_back(session.Call(method::kFindSet, {{"name", name}})[kSetIDMember]);
    for (const std::string& name : parts.smartLists)
        query[kGS_SmartSetIDsKey].push_back(FindSmartList(session, name)[kGS_SmartListIDKey]);
    return query;
}

void PrintDone(Session& session, const Json& list, const std::string& sentence) {
    if (session.PrintsJson())
        PrintJson({{"smartList", list}});
    else
        PrintLine(sentence);
}

}  // namespace

ExitStatus ListSmartLists(Session& session) {
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

ExitStatus ShowSmartList(Session& session, const std::string& name) {
    const Json list = FindSmartList(session, name);
    const Json fonts = ListFontsBy(session, {{"smartList", list[kGS_SmartListIDKey]}});
    if (session.PrintsJson())
        PrintJson({{"smartList", list}, {"fonts", fonts}});
    return kExit_Done;
}

ExitStatus CreateSmartList(Session& session, const std::string& name, const SmartListParts& parts) {
    session.StartAgentIfNeeded();
    Json arguments = QueryOf(session, parts);
    arguments[kGS_SmartListNameKey] = name;
    PrintDone(session, session.Call(method::kCreateSmartList, arguments), "created " + name);
    return kExit_Done;
}

ExitStatus RenameSmartList(Session& session, const std::string& name, const std::string& newName) {
    const Json list = FindSmartList(session, name);
    const Json renamed =
        session.Call(method::kRenameSmartList,
                     {{kGS_SmartListIDKey, list[kGS_SmartListIDKey]}, {kGS_SmartListNameKey, newName}});
    PrintDone(session, renamed, "renamed " + name + " to " + newName);
    return kExit_Done;
}

ExitStatus DeleteSmartList(Session& session, const std::string& name) {
    const Json list = FindSmartList(session, name);
    session.Call(method::kDeleteSmartList, {{kGS_SmartListIDKey, list[kGS_SmartListIDKey]}});
    PrintDone(session, list, "deleted " + name + "; its fonts stay");
    return kExit_Done;
}

}  // namespace pellwick::cli
