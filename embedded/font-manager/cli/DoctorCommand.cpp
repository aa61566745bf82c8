// doctor.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/Commands.h"
#include "cli/Progress.h"
#include "common/Protocol.h"

namespace pellwick::cli {
namespace {

void Append(const Json& problems, Json& all) {
    for (const Json& problem : problems)
        all.push_back(problem);
}

/// How many files there were.
long long CheckFiles(Session& session, long long expected, Json& problems) {
    Progress progress(static_cast<size_t>(expected), "files");
    long long checked = 0;
    for (Json after = 0;;) {
        const Json page = session.Call(method::kCheckFiles, {{"after", after}});
        const long long count = IntegerMember(page, "checked");
        if (count == 0)
            return checked;
        after = page["after"];
        checked += count;
        progress.Advance(static_cast<size_t>(count));
        Append(ArrayMember(page, "problems"), problems);
    }
}

}  // namespace

ExitStatus Examine(Session& session) {
    session.StartAgentIfNeeded();
    Json problems = Json::array();
    const Json records = session.Call(method::kCheckRecords, Json::object());
    Append(ArrayMember(records, "problems"), problems);
    const long long files = CheckFiles(session, IntegerMember(records, "files"), problems);
    if (session.PrintsJson())
        PrintJson({{"fonts", records["fonts"]}, {"files", files}, {"problems", problems}});
    else
        PrintLine(std::to_string(IntegerMember(records, "fonts")) + " fonts in " + std::to_string(files) +
                  " files, " + (problems.empty() ? "all as they should be" : "not all as they should be"));
    for (const Json& problem : problems)
        PrintError(problem.get<std::string>());
    return problems.empty() ? kExit_Done : kExit_CouldNot;
}

}  // namespace pellwick::cli
