// status, login, logout, standalone, workgroup, stop, launch-info.
#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <thread>

#include "FontRecordKeys.h"
#include "PrintableText.h"
#include "cli/Commands.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"

namespace pellwick::cli {
namespace {

constexpr std::chrono::seconds kPatienceWithEndingAgent{10};

ExitStatus Run(Session& session, const char* method, const Json& arguments) {
    session.StartAgentIfNeeded();
    const Json answer = session.Call(method, arguments);
    if (session.PrintsJson())
        PrintJson(answer);
    return kExit_Done;
}

void PrintStatus(const Json& status) {
    PrintLine("agent       process " + std::to_string(IntegerMember(status, "process")) +
              (BoolMember(status, "standalone") ? ", standalone" : ", with a server"));
    PrintLine("user        " +
              (BoolMember(status, "loggedIn") ? StringMember(status, "userName") : "(logged out)"));
    PrintLine("fonts       " + std::to_string(IntegerMember(status, "fonts")) + ", " +
              std::to_string(IntegerMember(status, "activeFiles")) + " files active");
    PrintLine("hosts       " + std::to_string(IntegerMember(status, "hosts")) + " with active fonts");
    PrintLine("workgroup   " + StringMember(status, "workgroup"));
    PrintLine("data        " + StringMember(status, "dataFolder"));
    PrintLine("active in   " + StringMember(status, "linkFolder"));
}

/// So that who comes next does not find a process that is about to go.
void WaitForEndOf(platform::ProcessId agent) {
    const auto giveUpAt = std::chrono::steady_clock::now() + kPatienceWithEndingAgent;
    while (platform::ProcessStartTime(agent) != 0) {
        if (std::chrono::steady_clock::now() > giveUpAt)
            throw Failure(kExit_CouldNot, "the agent was told to end, but process " + std::to_string(agent) +
                                              " still runs; see Pellwick.log");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

/// The process that holds the agent's lock, which was asked to end.
platform::ProcessId RequestEndOfHolder() {
    const auto holder = FindLastingHolder();
    if (!holder || holder->process == 0)
        throw Failure(kExit_NoAgent, NoAgentText());
    if (const auto error = platform::RequestEndOfProcess(holder->process, holder->startTime))
        throw Failure(kExit_CouldNot, "the agent, process " + std::to_string(holder->process) +
                                          ", can neither be reached nor told to end (" +
                                          platform::SystemErrorText(error) + "); end that process");
    return holder->process;
}

}  // namespace

ExitStatus ShowStatus(Session& session) {
    const Json status = session.Call(method::kGetStatus, Json::object());
    if (session.PrintsJson())
        PrintJson(status);
    else
        PrintStatus(status);
    return kExit_Done;
}

ExitStatus LogIn(Session& session, const std::string& name) {
    return Run(session, method::kLogIn, {{"name", name}});
}

ExitStatus LogOut(Session& session) {
    return Run(session, method::kLogOut, Json::object());
}

ExitStatus SetStandalone(Session& session, bool isStandalone) {
    return Run(session, method::kSetStandalone, {{"on", isStandalone}});
}

ExitStatus StopAgent(Session& session) {
    Json answer;
    const ErrorCode code = session.TryToReach(method::kStop, Json::object(), answer);
    if (code != CoreErrorCodes::kSuccess)  // it may be of another version, too
        answer = {{"process", RequestEndOfHolder()}};
    WaitForEndOf(static_cast<platform::ProcessId>(IntegerMember(answer, "process")));
    if (session.PrintsJson())
        PrintJson(answer);
    return kExit_Done;
}

ExitStatus WriteLaunchInfo(const Options& options) {
    const Locations locations = Locations::OfThisUser();
    const std::string program = ProgramPath();
    auto error = platform::MakeFolders(
        platform::Utf8Text(platform::Utf8Path(locations.launchInfoPath).parent_path()), true);
    if (!error)
        error = platform::WriteWholeFile(locations.launchInfoPath,
                                         "pellwick.path=" + program + "\npellwick.args=serve\n");
    if (error)
        throw Failure(kExit_CouldNot, platform::WriteFailureText(locations.launchInfoPath, error));
    if (options.json)
        PrintJson({{"file", locations.launchInfoPath}, {"agent", program}});
    else
        PrintLine(locations.launchInfoPath);
    return kExit_Done;
}

ExitStatus ListWorkgroups(Session& session) {
    session.StartAgentIfNeeded();
    const Json answer = session.Call(method::kListWorkgroups, Json::object());
    if (session.PrintsJson()) {
        PrintJson(answer);
        return kExit_Done;
    }
    for (const Json& workgroup : ArrayMember(answer, "workgroups")) {
        const long long id = IntegerMember(workgroup, kGS_WorkgroupIDKey);
        std::printf("%c %4lld  %s\n", id == IntegerMember(answer, "current") ? '*' : ' ', id,
                    PrintableText(StringMember(workgroup, kGS_WorkgroupNameKey)).c_str());
    }
    return kExit_Done;
}

ExitStatus ChangeWorkgroup(Session& session, const char* method, const std::string& name,
                           const std::string& newName) {
    return Run(session, method, {{"name", name}, {"newName", newName}});
}

}  // namespace pellwick::cli
