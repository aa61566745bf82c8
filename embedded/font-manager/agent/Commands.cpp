#include "agent/Commands.h"

#include <limits>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

constexpr char kTooLarge[] = "the answer is too large; ask for less at a time";

Json Failure(const char* message) {
    return {{"message", message}};
}

/// What the request came to when it was made before; nothing where that is not kept.
std::optional<Json> EarlierAnswer(CommandContext& context, const Json& request) {
    const long long repeats = IntegerMember(request, "repeats");
    const auto answer =
        repeats != 0 ? context.manager.activations.FindAnswer(context.client.process, repeats) : std::nullopt;
    if (!answer)
        return std::nullopt;
    context.manager.activations.KeepAnswer(context.client.process, context.request, *answer);
    return Json::parse(*answer);
}

/// Carries out a command or a part of one. What it throws becomes the code and the result of a failure.
template <class Part>
ErrorCode CarryOut(const Part& part, Json& result) {
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

Json Run(const CommandTable& table, CommandContext& context, const Json& request) {
    const auto command = table.find(StringMember(request, "method"));
    if (command == table.end())
        throw CommandError(
            CoreErrorCodes::kNotImplemented,
            "the agent does not know this command; it may be older than the program that asks");
    const std::optional<Json> earlier = EarlierAnswer(context, request);
    return earlier ? *earlier : command->second(context, ObjectMember(request, "args"));
}

/// `code` becomes that of an answer that is too large.
std::string AnswerFrame(const CommandContext& context, ErrorCode& code, const Json& result) {
    const long long id = context.request;
    Json message = {{"id", id}, {"code", code}, {"result", result}};
    if (code == CoreErrorCodes::kSuccess && id != 0 && context.client.provisionalRequest == id)
        message["provisional"] = true;
    std::optional<std::string> frame = EncodeMessage(message);
    if (!frame)
        code = error_codes::GIPCReceiver::kMessageTooLarge;
    if (!frame)
        frame = EncodeMessage({{"id", id},
                               {"code", error_codes::GIPCReceiver::kMessageTooLarge},
                               {"result", Failure(kTooLarge)}});
    return *frame;
}

/// Nothing where the part has left work to a lane.
template <class Part>
std::optional<CommandAnswer> AnswerOf(CommandContext& context, const Part& part) {
    Json result;
    ErrorCode code = CarryOut(part, result);
    if (code == CoreErrorCodes::kSuccess && context.deferral)
        return std::nullopt;
    std::string frame = AnswerFrame(context, code, result);
    return CommandAnswer{code,
                         code != CoreErrorCodes::kSuccess ? StringMember(result, "message") : std::string(),
                         std::move(frame)};
}

}  // namespace

CommandTable MakeCommandTable() {
    CommandTable table;
    AddSessionCommands(table);
    AddFontCommands(table);
    AddVaultCommands(table);
    AddLookupCommands(table);
    AddActivationCommands(table);
    AddDesignCommands(table);
    AddWorkgroupCommands(table);
    AddSetCommands(table);
    AddSmartListCommands(table);
    AddDocumentCommands(table);
    AddPreviewCommands(table);
    return table;
}

std::optional<CommandAnswer> BeginRequest(const CommandTable& table, CommandContext& context,
                                          const Json& request) {
    context.request = IntegerMember(request, "id");
    return AnswerOf(context, [&] { return Run(table, context, request); });
}

std::optional<CommandAnswer> ContinueRequest(CommandContext& context, const Continuation& rest) {
    return AnswerOf(context, [&] { return rest(context); });
}

void CommandContext::UndoWhatWasNotTaken(Activation& activation) const {
    if (client.lastTaken)
        activation.UndoRequests(client.process, *client.lastTaken + 1, std::numeric_limits<long long>::max());
}

void CommandContext::KeepAnswer(const Json& answer) {
    if (client.isHost)
        manager.activations.KeepAnswer(client.process, request,
                                       answer.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void RequireSendable(const Json& answer) {
    constexpr size_t kSurelyFit = 500;  // records: their names are bounded
    if (answer.size() > kSurelyFit && !EncodeMessage({{"result", answer}}))
        throw CommandError(error_codes::GIPCReceiver::kMessageTooLarge, kTooLarge);
}

void RequireLogIn(CommandContext& context) {
    if (!context.manager.settings.IsLoggedIn())
        throw CommandError(GZephyrinServerFacade::kNotLoggedIn,
                           "nobody is logged in; log in with \"Pellwick login NAME\"");
}

int32_t IDOf(long long number) {
    return number > 0 && number <= INT32_MAX ? static_cast<int32_t>(number) : 0;
}

Workgroup FindWorkgroup(CommandContext& context, const std::string& name) {
    const auto workgroup = context.manager.workgroups.FindByName(name);
    if (!workgroup && name == kAllWorkgroupsName)
        throw CommandError(GZephyrinWorkgroupManager::kRestrictedWorkgroup,
                           "\"" + name + "\" stands for all workgroups together; name one of them");
    if (!workgroup)
        throw CommandError(GZephyrinSetManager::kWorkgroupNotFound,
                           "there is no workgroup \"" + name +
                               "\"; see \"Pellwick workgroup list\", or make it with"
                               " \"Pellwick workgroup create\"");
    return *workgroup;
}

void AnnounceChanges(Audience& audience, const ActivationChanges& changes) {
    for (const uint32_t fontID : changes.activated)
        audience.Announce(kPluginCallback_FontActivated, fontID);
    for (const uint32_t fontID : changes.deactivated)
        audience.Announce(kPluginCallback_FontDeactivated, fontID);
    for (const uint32_t fontID : changes.missing)
        audience.Announce(kPluginCallback_FontMissing, fontID);
}

}  // namespace pellwick
