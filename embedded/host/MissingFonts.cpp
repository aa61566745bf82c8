#include "MissingFonts.h"

#include <algorithm>

#include "FontRecordKeys.h"
#include "Preferences.h"

namespace {

using nlohmann::json;

bool MayAsk(const CoreLibrary& core) {
    std::string text(size_t{64} << 10, '\0');
    size_t size = text.size();
    if (core.GetSettings(text.data(), &size) != PLUGINCORE_SUCCESS)
        return false;
    return json::parse(text.c_str(), nullptr, false).value(preferences::DialogSuppression, "1") == "0";
}

/// The fonts, each with the chosen one under kGS_MatchedFontKey; the others stay in `missing`.
json AskForReplacements(const CoreLibrary& core, json& missing) {
    constexpr size_t kRoomPerFont = 32;
    const std::string fonts = missing.dump();
    std::string resolved(2 * fonts.size() + kRoomPerFont * missing.size(), '\0');
    std::string skipped = resolved;
    size_t resolvedSize = resolved.size();
    size_t skippedSize = skipped.size();
    if (core.InvokeResolveDialog(true, fonts.c_str(), resolved.data(), &resolvedSize, skipped.data(),
                                 &skippedSize) != PLUGINCORE_SUCCESS)
        return json::array();
    missing = json::parse(skipped.c_str());
    return json::parse(resolved.c_str());
}

}  // namespace

void OfferReplacements(const CoreLibrary& core, OpenedDocument& document) {
    if (document.unmatched.empty() || !MayAsk(core))
        return;
    for (json& font : AskForReplacements(core, document.unmatched))
        TakeReplacement(core, document, std::move(font));
}

std::vector<json> ReplacementsOf(const json& font) {
    const json byName = font.value(kGS_PossibleReplacementsKey, json::object());
    std::vector<json> replacements(byName.begin(), byName.end());
    std::sort(replacements.begin(), replacements.end(), [](const json& left, const json& right) {
        return left.value(kGS_RankKey, INT64_MAX) < right.value(kGS_RankKey, INT64_MAX);
    });
    return replacements;
}

void TakeReplacement(const CoreLibrary& core, OpenedDocument& document, json font) {
    uint32_t count = 0;
    const json chosen = json::array({font[kGS_MatchedFontKey]});
    core.ActivateChosenFonts(document.path.c_str(), chosen.dump().c_str(), &count);
    if (count == 0) {
        document.unmatched.push_back(std::move(font));
        return;
    }
    if (FontActivationStateCountsAsActive(chosen[0].value(kGS_ActivationStateKey, 0)) == 0)
        ++document.numFontsActivated;
    font[kGS_ActivationStateKey] = kFontActivationState_ActivatedByPlugin;
    document.matched.push_back(std::move(font));
}
