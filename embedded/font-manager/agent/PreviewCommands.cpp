// Images of fonts' names.
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/Commands.h"
#include "agent/FontRecord.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

/// The images of those fonts that can be shown; whoever listens is told of them too.
Json RenderPreviews(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    Json previews = Json::array();
    Activation activation = manager.BeginActivation();
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, "fonts"))) {
        context.audience.KeepAlive();
        const auto font = manager.fonts.Find(id);
        if (!font)
            continue;
        if (const auto preview = manager.previews.Provide(*font))
            previews.push_back({{kPreviewFontMember, id},
                                {kGS_PNGFilenameKey, preview->path},
                                {kGS_2xPNGFilenameKey, preview->doublePath}});
        else if (!manager.vault.Has(font->file))
            activation.NoteMissing(font->file);
    }
    manager.previews.Rest();
    AnnounceChanges(context.audience, activation.Commit());
    if (!previews.empty())
        context.audience.Announce(kPluginCallback_PreviewPNGsRendered, previews);
    return {{"previews", std::move(previews)}};
}

}  // namespace

void AddPreviewCommands(CommandTable& table) {
    table[method::kRenderPreviews] = RenderPreviews;
}

}  // namespace pellwick
