// Images of fonts' names.
#include <chrono>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/FontRecord.h"
#include "agent/Requests.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

struct WantedPreview {
    Font font;
    Preview preview;
    bool isThere = false;
    bool isUndrawable = false;  ///< nothing can be shown of it
};

std::vector<WantedPreview> WantedPreviews(CommandContext& context, const Json& arguments) {
    std::vector<WantedPreview> wanted;
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, member::kFonts))) {
        if (auto font = context.manager.fonts.Find(id)) {
            const Preview preview = context.manager.previews.PathsOf(*font);
            const bool isThere = PreviewFolder::IsThere(preview);
            wanted.push_back({std::move(*font), preview, isThere});
        }
    }
    return wanted;
}

void Draw(const FontVault& vault, WantedPreview& wanted, FontWorker& worker) {
    platform::ReadOnlyFile file;
    if (file.Open(vault.PathOf(wanted.font.file)))
        return;
    const NameImage image = worker.Draw(file, wanted.font, kPreviewScales[0]);
    wanted.isUndrawable = image.width == 0;
    wanted.isThere =
        !wanted.isUndrawable && PreviewFolder::Store(wanted.preview.path, image) &&
        PreviewFolder::Store(wanted.preview.doublePath, worker.Draw(file, wanted.font, kPreviewScales[1]));
}

void DrawAll(const FontVault& vault, std::vector<WantedPreview>& wanted, FontWorker& worker) {
    const auto deadline = std::chrono::steady_clock::now() + kPreviewLimit;
    for (WantedPreview& each : wanted) {
        if (worker.StopFlag() || std::chrono::steady_clock::now() > deadline)
            return;
        if (!each.isThere && !each.isUndrawable)
            Draw(vault, each, worker);
    }
}

/// The images of those fonts that can be shown; whoever listens is told of them too.
Json Report(CommandContext& context, const std::vector<WantedPreview>& wanted) {
    Json previews = Json::array();
    Activation activation = context.manager.BeginActivation();
    for (const WantedPreview& each : wanted) {
        if (each.isThere)
            previews.push_back({{member::kFont, each.font.id},
                                {kGS_PNGFilenameKey, each.preview.path},
                                {kGS_2xPNGFilenameKey, each.preview.doublePath}});
        else if (each.isUndrawable)
            context.manager.undrawable.insert(each.font.id);
        else if (const auto font = context.manager.fonts.Find(each.font.id);
                 font && !font->file.IsSystems() && !context.manager.vault.Has(font->file))
            activation.NoteMissing(font->file);
    }
    AnnounceChanges(context.audience, activation.Commit());
    if (!previews.empty())
        context.audience.Announce(kPluginCallback_PreviewPNGsRendered, previews);
    return {{member::kPreviews, std::move(previews)}};
}

}  // namespace

Json commands::RenderPreviews(CommandContext& context, const Json& arguments) {
    std::vector<WantedPreview> wanted = WantedPreviews(context, arguments);
    bool isAnyToDraw = false;
    for (WantedPreview& each : wanted) {
        each.isUndrawable = context.manager.undrawable.count(each.font.id) != 0;
        isAnyToDraw = isAnyToDraw || !(each.isThere || each.isUndrawable);
    }
    if (!isAnyToDraw)
        return Report(context, wanted);
    const FontVault& vault = context.manager.vault;
    return context.Defer(Deferral::LaneName::kPreviews, [&vault, wanted](FontWorker& worker) {
        auto drawn = wanted;
        DrawAll(vault, drawn, worker);
        return [drawn](CommandContext& later) { return Report(later, drawn); };
    });
}

}  // namespace pellwick
