// Requests to the agent, and the commands that carry them out.
#pragma once

#include <optional>
#include <string>

#include "agent/CommandContext.h"

namespace pellwick {

/// One command per method. Those of a kind stand together in a …Commands.cpp.
namespace commands {
#define PELLWICK_COMMAND(name, argumentNames, result) \
    Json name(CommandContext& context, const Json& arguments);
PELLWICK_METHODS(PELLWICK_COMMAND)
#undef PELLWICK_COMMAND
}  // namespace commands

struct CommandAnswer {
    ErrorCode code;
    std::string problem;  ///< for people; empty on success
    std::string frame;
};

/// Runs the command that a request asks for and makes the answer to send back; nothing when the command has
/// left work to a lane. What the command throws is its answer; std::bad_alloc when there is no memory even
/// for that.
std::optional<CommandAnswer> BeginRequest(CommandContext& context, const Json& request);
/// The same for the rest of a command.
std::optional<CommandAnswer> ContinueRequest(CommandContext& context, const Continuation& rest);

}  // namespace pellwick
