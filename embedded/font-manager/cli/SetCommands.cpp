// set list, show, create, add, delete.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "PrintableText.h"
#include "cli/Commands.h"
#include "cli/Fonts.h"
#include "common/Protocol.h"

namespace pellwick::cli {
namespace {

/// The record of the set that the user means.
Json FindSet(Session& session, const SetName& set) {
    session.StartAgentIfNeeded();
    return session.Call(method::kFindSet, {{"name", set.name}, {"workgroup", set.workgroup}});
}

std::string Title(const Json& set) {
    return StringMember(set, kSetNameMember) + " in " + StringMember(set, kGS_WorkgroupNameKey);
}

}  // namespace

ExitStatus ListSets(Session& session, const std::string& workgroup) {
    session.StartAgentIfNeeded();
    const Json answer = session.Call(method::kListSets, {{"workgroup", workgroup}});
    if (session.PrintsJson()) {
        PrintJson(answer);
        return kExit_Done;
    }
    for (const Json& set : ArrayMember(answer, "sets"))
        std::printf("%6lld fonts  %s\n", IntegerMember(set, kFontCountMember),
                    PrintableText(Title(set)).c_str());
    return kExit_Done;
}

ExitStatus ShowSet(Session& session, const SetName& name) {
    const Json set = FindSet(session, name);
    const Json fonts = ListFontsBy(session, {{"set", set[kSetIDMember]}});
    if (session.PrintsJson())
        PrintJson({{"set", set}, {"fonts", fonts}});
    return kExit_Done;
}

ExitStatus CreateSet(Session& session, const SetName& name) {
    session.StartAgentIfNeeded();
    const Json set = session.Call(method::kCreateSet, {{"name", name.name}, {"workgroup", name.workgroup}});
    if (session.PrintsJson())
        PrintJson({{"set", set}});
    else
        PrintLine("created " + Title(set));
    return kExit_Done;
}

ExitStatus AddToSet(Session& session, const SetName& name, const std::vector<std::string>& fontNames) {
    const Json set = FindSet(session, name);
    bool isComplete = false;
    const Json fonts = FindFonts(session, fontNames, isComplete);
    const Json answer =
        session.Call(method::kAddFontsToSets, {{"fonts", IDsOf(fonts)}, {"sets", {set[kSetIDMember]}}});
    if (session.PrintsJson())
        PrintJson({{"set", set}, {"fonts", fonts}, {"added", IntegerMember(answer, "added")}});
    else
        PrintFonts(fonts, "added");
    return isComplete ? kExit_Done : kExit_CouldNot;
}

ExitStatus DeleteSet(Session& session, const SetName& name) {
    const Json set = FindSet(session, name);
    session.Call(method::kDeleteSet, {{"set", set[kSetIDMember]}});
    if (session.PrintsJson())
        PrintJson({{"set", set}});
    else
        PrintLine("deleted " + Title(set) + "; its fonts stay");
    return kExit_Done;
}

}  // namespace pellwick::cli
