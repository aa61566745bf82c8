#include "agent/CommandContext.h"

#include <limits>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"

namespace pellwick {

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
    if (answer.size() > kSurelyFit && !EncodeMessage({{member::kResult, answer}}))
        throw CommandError(error_codes::GIPCReceiver::kMessageTooLarge, kAnswerTooLarge);
}

void RequireLogIn(CommandContext& context) {
    if (!context.manager.settings.IsLoggedIn())
        throw CommandError(GZephyrinServerFacade::kNotLoggedIn,
                           "nobody is logged in; log in with \"Pellwick login NAME\"");
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
