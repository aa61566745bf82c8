// status, login, logout, standalone, autostart, stop, launch-info.
#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <thread>

#include "FontRecordKeys.h"
#include "PrintableText.h"
#include "cli/Fonts.h"
#include "cli/PellwickWords.h"
#include "common/Protocol.h"
#include "platform/Autostart.h"
#include "platform/DynamicLibrary.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"

namespace pellwick::cli {

using command_line::AddText;

namespace {

constexpr std::chrono::seconds kPatienceWithEndingAgent{10};
constexpr char kAutostartName[] = "Pellwick";

ExitStatus Run(AgentSession& session, const char* method, const Json& arguments) {
    session.StartAgentIfNeeded();
    const Json answer = session.Call(method, arguments);
    if (session.PrintsJson())
        PrintJson(answer);
    return kExit_Done;
}

/// What keeps documents from getting their fonts, and the command that mends it; before all else.
void PrintTroubles(const Json& status) {
    const auto tell = [](const std::string& trouble, const std::string& words) {
        PrintLine("! " + trouble + "; " + PastedCommand(words));
    };
    if (!BoolMember(status, member::kLoggedIn))
        tell("nobody is logged in, so no fonts are activated", "login NAME");
    if (const long long count = IntegerMember(status, member::kMissingFiles); count > 0)
        tell(std::to_string(count) + " font files are gone or damaged", "doctor");
    if (IntegerMember(status, member::kFonts) == 0)
        tell("there are no fonts yet", "add FOLDER");
}

void PrintStatus(const Json& status) {
    PrintTroubles(status);
    PrintLine("agent       process " + std::to_string(IntegerMember(status, member::kProcess)) +
              (BoolMember(status, member::kStandalone) ? ", standalone" : ", with a server"));
    PrintLine("user        " + (BoolMember(status, member::kLoggedIn)
                                    ? StringMember(status, member::kUserName)
                                    : "(logged out)"));
    PrintLine("fonts       " + std::to_string(IntegerMember(status, member::kFonts)) + ", " +
              std::to_string(IntegerMember(status, member::kActiveFiles)) + " files active; " +
              std::to_string(IntegerMember(status, member::kSystemFonts)) + " of the system");
    PrintLine("hosts       " + std::to_string(IntegerMember(status, member::kHosts)) + " with active fonts");
    PrintLine("workgroup   " + ShownWorkgroupName(StringMember(status, member::kWorkgroup)));
    PrintLine("data        " + StringMember(status, member::kDataFolder));
    PrintLine("active in   " + StringMember(status, member::kLinkFolder));
}

/// So that the next command does not find a process that is about to end.
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

ExitStatus ShowStatus(AgentSession& session) {
    const Json status = session.Call(method::kGetStatus, Json::object());
    if (session.PrintsJson())
        PrintJson(status);
    else
        PrintStatus(status);
    return kExit_Done;
}

ExitStatus LogIn(AgentSession& session, const std::string& name) {
    return Run(session, method::kLogIn, {{member::kName, name}});
}

ExitStatus LogOut(AgentSession& session) {
    return Run(session, method::kLogOut, Json::object());
}

ExitStatus SetStandalone(AgentSession& session, bool isStandalone) {
    return Run(session, method::kSetStandalone, {{member::kOn, isStandalone}});
}

ExitStatus StopAgent(AgentSession& session) {
    Json answer;
    const ErrorCode code = session.TryToReach(method::kStop, Json::object(), answer);
    if (code != CoreErrorCodes::kSuccess)  // it may be of another version, too
        answer = {{member::kProcess, RequestEndOfHolder()}};
    WaitForEndOf(static_cast<platform::ProcessId>(IntegerMember(answer, member::kProcess)));
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

/// What the system starts: on Windows a program without a console in front of the agent's.
std::string AutostartProgram() {
    const std::string background =
        platform::FolderPart(ProgramPath()) + platform::ProgramFileName("PellwickBackground");
    return platform::IsExistingFile(background) ? background : ProgramPath();
}

ExitStatus SetAutostart(const Options& options, const std::string& state) {
    platform::SystemError error;
    if (state == member::kOn)
        error = platform::SetAutostart(kAutostartName, AutostartProgram(), "serve");
    else if (!state.empty())
        error = platform::ClearAutostart(kAutostartName);
    if (error)
        throw Failure(kExit_CouldNot,
                      "what starts at log-on cannot be changed (" + platform::SystemErrorText(error) + ")");
    const bool isOn = platform::HasAutostart(kAutostartName);
    if (options.json)
        PrintJson({{"autostart", isOn}});
    else
        PrintLine(isOn ? "the agent starts when you log on" : "the agent starts when it is needed");
    return kExit_Done;
}

}  // namespace

void DescribeSettingsCommands(CLI::App& app, Arguments& arguments, Action& chosen) {
    AddCommand(app, chosen, "status", "Show how the agent stands", ShowStatus);
    auto* logIn = AddCommand(app, chosen, "login", "Log in",
                             [&](AgentSession& session) { return LogIn(session, arguments.name); });
    AddText(*logIn, "NAME", arguments.name, "Who you are")->required();
    AddCommand(app, chosen, "logout", "Log out; no fonts are activated until the next login", LogOut);
    auto* standalone =
        AddCommand(app, chosen, "standalone", "Run without a server (on), or with one (off)",
                   [&](AgentSession& session) { return SetStandalone(session, arguments.name == "on"); });
    AddText(*standalone, "STATE", arguments.name, "on or off")
        ->required()
        ->check(CLI::IsMember({member::kOn, "off"}));
    auto* autostart = AddCommand(
        app, chosen, "autostart", "Have the agent start when you log on (on), or when it is needed (off)",
        [&](AgentSession&) { return SetAutostart(arguments.options, arguments.name); });
    AddText(*autostart, "STATE", arguments.name, "on or off; without it, what holds now")
        ->check(CLI::IsMember({member::kOn, "off"}));
    AddCommand(app, chosen, "stop", "End the agent", StopAgent);
    AddCommand(app, chosen, "launch-info", "Tell plug-ins how to start this agent",
               [&](AgentSession&) { return WriteLaunchInfo(arguments.options); });
}

}  // namespace pellwick::cli
