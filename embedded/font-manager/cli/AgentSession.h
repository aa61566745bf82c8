// What the commands of the command line have in common: their options, their connection to the agent, and how
// they fail.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "common/AgentLock.h"
#include "ipc/AgentConnection.h"

namespace pellwick::cli {

enum ExitStatus : int { kExit_Done = 0, kExit_CouldNot = 1, kExit_Usage = 2, kExit_NoAgent = 5 };

/// Ends the command; the message, one line, says what to do.
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus status, const std::string& message) : std::runtime_error(message), mStatus(status) {}
    ExitStatus Status() const { return mStatus; }

private:
    ExitStatus mStatus;
};

struct Options {
    bool json = false;     ///< print one JSON object for programs
    bool noStart = false;  ///< do not start an agent when none runs
};

class AgentSession {
public:
    explicit AgentSession(const Options& options) : mOptions(options) {}

    /// What the agent answers. Throws Failure when it refuses or cannot be reached.
    Json Call(const char* method, const Json& arguments);
    /// The same; an agent's refusal comes back as its code, with the reason in the result.
    ErrorCode Try(const char* method, const Json& arguments, Json& result);

    /// The same; GIPCClient::kServiceUnavailable when it cannot be reached, GAgentIF::kShutdown when it ends.
    ErrorCode TryToReach(const char* method, const Json& arguments, Json& result);

    /// From now on an agent is started when none runs, if the options allow it.
    void StartAgentIfNeeded();

    bool PrintsJson() const { return mOptions.json; }

private:
    const Options mOptions;
    std::optional<AgentConnection> mConnection;
};

/// The process that holds the agent's lock, after the moment that one takes to end.
std::optional<AgentHolder> FindLastingHolder();
/// Why no agent answers: there is none, or it cannot be reached. What to do about it.
std::string NoAgentText();

/// The full path of this program.
std::string ProgramPath();
/// This program with these words behind it, as it can be pasted into a shell.
std::string PastedCommand(const std::string& words);

/// Prints the value for programs, on a line of its own.
void PrintJson(const Json& value);
/// Prints a line of text for people, whatever names are in it.
void PrintLine(const std::string& line);
/// The same on standard error.
void PrintError(const std::string& message);

}  // namespace pellwick::cli
