#include "cli/AgentSession.h"

#include <cassert>
#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <thread>

#include "PrintableText.h"
#include "common/AgentLock.h"
#include "common/Protocol.h"
#include "platform/Processes.h"

namespace pellwick::cli {
namespace {

// A person waits rather longer than a host may.
constexpr std::chrono::seconds kPatienceOfPeople{30};
constexpr std::chrono::seconds kStartLimit{10};
// An agent that dies lets go of its connections first, and of its lock within this time.
constexpr std::chrono::milliseconds kEndLimit{500};

bool IsAgentListening() {
    ClientStream stream;
    return stream.Connect(Locations::OfThisUser().AgentAddress(),
                          ClientStream::Clock::now() + kPatienceOfPeople);
}

void Write(std::string line, std::FILE* stream) {
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stream);
}

}  // namespace

std::optional<AgentHolder> FindLastingHolder() {
    const auto deadline = ClientStream::Clock::now() + kEndLimit;
    for (;;) {
        std::optional<AgentHolder> holder = FindAgentHolder(Locations::OfThisUser());
        if (!holder || ClientStream::Clock::now() > deadline)
            return holder;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

std::string NoAgentText() {
    const std::optional<AgentHolder> holder = FindLastingHolder();
    return holder ? UnreachableAgentText(Locations::OfThisUser(), *holder)
                  : "no agent is running; start it with: " + PastedCommand("serve");
}

void AgentSession::StartAgentIfNeeded() {
    if (mOptions.noStart || IsAgentListening())
        return;
    platform::SystemError error;
    const std::string program = ProgramPath();
    const auto agent =
        platform::Current<platform::Processes>().Launch(program, "\"" + program + "\" serve", error);
    // Another command may have started one at the same moment; then it is that one that answers.
    if (agent && (agent->WaitUntilIdle(kStartLimit) || IsAgentListening()))
        return;
    throw Failure(kExit_NoAgent, FindLastingHolder()
                                     ? NoAgentText()
                                     : "the agent does not start; " + PastedCommand("serve") + " says why");
}

Json AgentSession::Call(const char* method, const Json& arguments) {
    Json result;
    const ErrorCode code = Try(method, arguments, result);
    if (code != CoreErrorCodes::kSuccess)
        throw Failure(kExit_CouldNot, FailureText(code, result));
    return result;
}

ErrorCode AgentSession::Try(const char* method, const Json& arguments, Json& result) {
    const ErrorCode code = TryToReach(method, arguments, result);
    if (code == GIPCClient::kServiceUnavailable)
        throw Failure(kExit_NoAgent, NoAgentText());
    if (code == GAgentIF::kShutdown)
        throw Failure(kExit_NoAgent, "the agent has just ended; " + NoAgentText());
    return code;
}

ErrorCode AgentSession::TryToReach(const char* method, const Json& arguments, Json& result) {
    assert(HoldsOnly(arguments, FindMethod(method)->arguments));
    if (!mConnection)
        mConnection.emplace(kPatienceOfPeople);
    return mConnection->Call(method, arguments, result);
}

std::string ProgramPath() {
    return platform::Current<platform::Processes>().CurrentExecutablePath();
}

std::string PastedCommand(const std::string& words) {
    return "\"" + ProgramPath() + "\" " + words;
}

void PrintJson(const Json& value) {
    Write(PrintableJson(value.dump(-1, ' ', false, Json::error_handler_t::replace)), stdout);
}

void PrintLine(const std::string& line) {
    Write(PrintableText(line), stdout);
}

void PrintError(const std::string& message) {
    Write("Pellwick: " + PrintableText(message), stderr);
}

}  // namespace pellwick::cli
