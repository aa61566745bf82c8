// Images of fonts' names.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "client/CFJson.h"
#include "client/Exports.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

using namespace pellwick;

namespace {

ErrorCode RenderBatch(PluginFacadeRef facade, const Json& fontIDs, Json& previews) {
    Json result;
    const ErrorCode code =
        Library::Get().Call(facade, method::kRenderPreviews, {{member::kFonts, fontIDs}}, result);
    for (const Json& preview : ArrayMember(result, member::kPreviews))
        previews.push_back(preview);
    return code;
}

/// Some fonts at a time, so that the first are announced early and other clients get their turn.
ErrorCode RenderAll(PluginFacadeRef facade, const Json& fontIDs, Json& previews) {
    for (size_t first = 0; first < fontIDs.size(); first += kPreviewBatchSize) {
        Json batch = Json::array();
        for (size_t index = first; index < std::min(first + kPreviewBatchSize, fontIDs.size()); ++index)
            batch.push_back(fontIDs[index]);
        const ErrorCode code = RenderBatch(facade, batch, previews);
        if (code != CoreErrorCodes::kSuccess)
            return code;
    }
    return CoreErrorCodes::kSuccess;
}

}  // namespace

uint32_t RenderFontNamePreviewPNGs(PluginFacadeRef facade, CFArrayRef highPriorityFontIDs, CFArrayRef fontIDs,
                                   CFMutableDictionaryRef fontPNGs) {
    return Guarded([&] {
        if (fontIDs == nullptr)
            return CoreErrorCodes::kNullPointer;
        ErrorCode code = Library::Get().CheckFacade(facade);
        Json previews = Json::array();
        const Json first = highPriorityFontIDs != nullptr ? JsonFromCF(highPriorityFontIDs) : Json::array();
        Json rest = JsonFromCF(fontIDs);
        rest.erase(std::remove_if(rest.begin(), rest.end(),
                                  [&](const Json& id) {
                                      return std::find(first.begin(), first.end(), id) != first.end();
                                  }),
                   rest.end());
        if (code == CoreErrorCodes::kSuccess)
            code = RenderAll(facade, first, previews);
        if (code == CoreErrorCodes::kSuccess)
            code = RenderAll(facade, rest, previews);
        if (code == CoreErrorCodes::kSuccess && fontPNGs != nullptr)
            AddPreviews(fontPNGs, previews);
        return code;
    });
}
