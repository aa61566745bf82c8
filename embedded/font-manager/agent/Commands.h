// The agent's commands: one function per method of the protocol.
#pragma once

#include <map>
#include <stdexcept>
#include <string>

#include "ErrorCodes.h"
#include "agent/FontManager.h"
#include "ipc/Message.h"

namespace pellwick {

/// Thrown by a command that cannot do what it was asked for; the message is for people.
class CommandError : public std::runtime_error {
public:
    CommandError(ErrorCode code, const std::string& message) : std::runtime_error(message), mCode(code) {}
    ErrorCode Code() const { return mCode; }

private:
    ErrorCode mCode;
};

/// Who asks.
struct Client {
    HostProcess process;
    bool isSubscribed = false;  ///< to notifications
};

/// What a command says to others than the one who asked.
class Audience {
public:
    virtual ~Audience() = default;

    /// Tells every subscribed client; `type` is one of PluginNotificationType.
    virtual void Announce(int32_t type, const Json& data) = 0;
    /// To be called every now and then by a command that may take long: clients learn that the agent lives.
    virtual void KeepAlive() = 0;
    /// Ends the agent after this command.
    virtual void RequestStop() = 0;
};

struct CommandContext {
    FontManager& manager;
    Client& client;
    Audience& audience;
};

using Command = Json (*)(CommandContext& context, const Json& arguments);
using CommandTable = std::map<std::string, Command, std::less<>>;

/// All methods of the protocol.
CommandTable MakeCommandTable();

// What MakeCommandTable is made of.
void AddSessionCommands(CommandTable& table);
void AddFontCommands(CommandTable& table);
void AddLookupCommands(CommandTable& table);
void AddActivationCommands(CommandTable& table);
void AddWorkgroupCommands(CommandTable& table);
void AddSetCommands(CommandTable& table);
void AddDocumentCommands(CommandTable& table);

struct CommandAnswer {
    ErrorCode code;
    std::string frame;
};

/// Runs the command that a request asks for and makes the answer to send back. Never throws.
CommandAnswer AnswerRequest(const CommandTable& table, CommandContext& context, const Json& request) noexcept;

/// Throws CommandError while nobody is logged in.
void RequireLogIn(CommandContext& context);

/// The workgroup of that name. Throws CommandError when there is none.
Workgroup FindWorkgroup(CommandContext& context, const std::string& name);

/// Announces fonts that became active or inactive.
void AnnounceChanges(Audience& audience, const ActivationChanges& changes);

}  // namespace pellwick
