// doctor.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/PellwickWords.h"
#include "cli/Progress.h"
#include "common/Protocol.h"

namespace pellwick::cli {
namespace {

void Append(const Json& problems, Json& all) {
    for (const Json& problem : problems)
        all.push_back(problem);
}

/// How many files there were.
long long CheckFiles(AgentSession& session, long long expected, Json& problems) {
    Progress progress(static_cast<size_t>(expected), "files");
    long long checked = 0;
    for (Json after = 0;;) {
        const Json page = session.Call(method::kCheckFiles, {{member::kAfter, after}});
        const long long count = IntegerMember(page, member::kChecked);
        if (count == 0)
            return checked;
        after = page[member::kAfter];
        checked += count;
        progress.Advance(static_cast<size_t>(count));
        Append(ArrayMember(page, member::kProblems), problems);
    }
}

ExitStatus Examine(AgentSession& session) {
    session.StartAgentIfNeeded();
    Json problems = Json::array();
    const Json records = session.Call(method::kCheckRecords, Json::object());
    Append(ArrayMember(records, member::kProblems), problems);
    const long long files = CheckFiles(session, IntegerMember(records, member::kFiles), problems);
    if (session.PrintsJson())
        PrintJson({{"fonts", records[member::kFonts]}, {"files", files}, {"problems", problems}});
    else
        PrintLine(std::to_string(IntegerMember(records, member::kFonts)) + " fonts in " +
                  std::to_string(files) + " files, " +
                  (problems.empty() ? "all as they should be" : "not all as they should be"));
    for (const Json& problem : problems)
        PrintError(problem.get<std::string>());
    return problems.empty() ? kExit_Done : kExit_CouldNot;
}

}  // namespace

void DescribeDoctorCommand(CLI::App& app, Arguments&, Action& chosen) {
    AddCommand(app, chosen, "doctor", "Check all fonts and records, and put right what can be", Examine);
}

}  // namespace pellwick::cli
