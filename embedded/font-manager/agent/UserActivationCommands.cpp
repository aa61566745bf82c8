// The user's own activation, which no plug-in takes away.
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/FontRecord.h"
#include "agent/Requests.h"
#include "common/Protocol.h"

namespace pellwick {

Json commands::ActivateForUser(CommandContext& context, const Json& arguments) {
    RequireLogIn(context);
    Json failed = Json::array();
    Activation activation = context.manager.BeginActivation(Durability::kPowerLoss);
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, member::kFonts))) {
        context.audience.KeepAlive();
        const auto font = context.manager.fonts.Find(id);
        if (font && !activation.ActivateForUser(*font))
            failed.push_back(FontRecord(context.manager, *font));
    }
    RequireSendable(failed);
    AnnounceChanges(context.audience, activation.Commit());
    return {{member::kFailed, std::move(failed)}};
}

Json commands::DeactivateForUser(CommandContext& context, const Json& arguments) {
    Json stillActive = Json::array();
    Activation activation = context.manager.BeginActivation(Durability::kPowerLoss);
    const std::vector<uint32_t> ids = FontIDsOf(ArrayMember(arguments, member::kFonts));
    for (const uint32_t id : ids) {
        context.audience.KeepAlive();
        activation.DeactivateForUser(id);
        activation.EndAllLeases(id, context.manager.self);
    }
    AnnounceChanges(context.audience, activation.Commit());
    for (const uint32_t id : ids) {
        const auto font = context.manager.fonts.Find(id);
        if (font && font->activationState == kFontActivationState_ActivatedByPlugin)
            stillActive.push_back(FontRecord(context.manager, *font));
    }
    return {{member::kStillActive, std::move(stillActive)}};
}

}  // namespace pellwick
