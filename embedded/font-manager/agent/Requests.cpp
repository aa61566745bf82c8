#include "agent/Requests.h"

#include <cassert>
#include <nlohmann/json.hpp>

#include "common/Protocol.h"

namespace pellwick {
namespace {

Json Failure(const char* message) {
    return {{member::kMessage, message}};
}

/// The kept answer of the same request made before; nothing when there is none.
std::optional<Json> EarlierAnswer(CommandContext& context, const Json& request) {
    const long long repeats = IntegerMember(request, member::kRepeats);
    const auto answer =
        repeats != 0 ? context.manager.activations.FindAnswer(context.client.process, repeats) : std::nullopt;
    if (!answer)
        return std::nullopt;
    context.manager.activations.KeepAnswer(context.client.process, context.request, *answer);
    return Json::parse(*answer);
}

/// Runs a command or a part of one. What it throws becomes the code and the result of a failure.
template <class Part>
ErrorCode RunGuarded(const Part& part, Json& result) {
    try {
        result = part();
        return CoreErrorCodes::kSuccess;
    } catch (const CommandError& error) {
        result = Failure(error.what());
        return error.Code();
    } catch (const DatabaseError& error) {
        result = Failure(error.what());
        return error.Code();
    } catch (const ActivationRefused& error) {
        result = Failure(error.what());
        return GFontActivationManager::kOSFileSystemError;
    } catch (const std::bad_alloc&) {
        result = Failure("the agent ran out of memory");
        return CoreErrorCodes::kOutOfMemory;
    } catch (const std::exception& error) {
        result = Failure(error.what());
        return CoreErrorCodes::kExceptionThrownError;
    }
}

using Command = Json (*)(CommandContext& context, const Json& arguments);

/// Null for an unknown method.
Command FindCommand(std::string_view method) {
#define PELLWICK_COMMAND_ROW(name, arguments, result) {#name, commands::name},
    static constexpr std::pair<std::string_view, Command> kCommands[] = {
        PELLWICK_METHODS(PELLWICK_COMMAND_ROW)};
#undef PELLWICK_COMMAND_ROW
    for (const auto& [name, command] : kCommands) {
        if (name == method)
            return command;
    }
    return nullptr;
}

/// The result, which has the members that the table says.
Json Checked([[maybe_unused]] const CommandContext& context, Json result) {
    assert(context.deferral || context.method == nullptr || HoldsOnly(result, context.method->result));
    return result;
}

Json Run(CommandContext& context, const Json& request) {
    const Command command = FindCommand(StringMember(request, member::kMethod));
    if (command == nullptr)
        throw CommandError(
            CoreErrorCodes::kNotImplemented,
            "the agent does not know this command; it may be older than the program that asks");
    const std::optional<Json> earlier = EarlierAnswer(context, request);
    return earlier ? *earlier : Checked(context, command(context, ObjectMember(request, member::kArguments)));
}

/// `code` becomes that of an answer that is too large.
std::string AnswerFrame(const CommandContext& context, ErrorCode& code, const Json& result) {
    const long long id = context.request;
    Json message = {{member::kID, id}, {member::kCode, code}, {member::kResult, result}};
    if (code == CoreErrorCodes::kSuccess && id != 0 && context.client.provisionalRequest == id)
        message[member::kProvisional] = true;
    std::optional<std::string> frame = EncodeMessage(message);
    if (!frame)
        code = error_codes::GIPCReceiver::kMessageTooLarge;
    if (!frame)
        frame = EncodeMessage({{member::kID, id},
                               {member::kCode, error_codes::GIPCReceiver::kMessageTooLarge},
                               {member::kResult, Failure(kAnswerTooLarge)}});
    return *frame;
}

/// Nothing when the part has deferred work to a lane.
template <class Part>
std::optional<CommandAnswer> AnswerOf(CommandContext& context, const Part& part) {
    Json result;
    ErrorCode code = RunGuarded(part, result);
    if (code == CoreErrorCodes::kSuccess && context.deferral)
        return std::nullopt;
    std::string frame = AnswerFrame(context, code, result);
    return CommandAnswer{
        code, code != CoreErrorCodes::kSuccess ? StringMember(result, member::kMessage) : std::string(),
        std::move(frame)};
}

}  // namespace

std::optional<CommandAnswer> BeginRequest(CommandContext& context, const Json& request) {
    context.request = IntegerMember(request, member::kID);
    context.method = FindMethod(StringMember(request, member::kMethod));
    return AnswerOf(context, [&] { return Run(context, request); });
}

std::optional<CommandAnswer> ContinueRequest(CommandContext& context, const Continuation& rest) {
    return AnswerOf(context, [&] { return Checked(context, rest(context)); });
}

}  // namespace pellwick
