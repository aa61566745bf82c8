#include "activation/FontMatcher.h"

#include <algorithm>

#include "GPickBestMatch.h"

namespace pellwick {
namespace {

/// Every font here is activated in the one way there is.
constexpr int32_t kActivationMode = 1;

BestMatchCandidate CandidateOf(const Font& font) {
    BestMatchCandidate candidate;
    candidate.ID = font.id;
    candidate.preferredIdentity = font.foundry;
    candidate.orderNumber = font.id;
    candidate.kind = font.kind;
    candidate.version = font.version;
    candidate.status = font.activationState;
    candidate.mode = kActivationMode;
    return candidate;
}

bool IsBetter(const Font& left, const Font& right, const RequestedFont& request) {
    bool leftIsBetter = true;
    const ErrorCode code = GPickBestMatch::Compare(CandidateOf(left), CandidateOf(right), leftIsBetter, false,
                                                   request.foundry, request.kind);
    return code == CoreErrorCodes::kSuccess && leftIsBetter;
}

}  // namespace

void SortByMatch(std::vector<Font>& fonts, const RequestedFont& request) {
    // By insertion: the comparison is not transitive for versions that cannot be read, which std::sort may
    // not be given.
    for (auto font = fonts.begin(); font != fonts.end(); ++font) {
        const auto place = std::find_if(fonts.begin(), font,
                                        [&](const Font& placed) { return IsBetter(*font, placed, request); });
        std::rotate(place, font, font + 1);
    }
}

std::vector<Font> MatchFonts(FontStore& fonts, const RequestedFont& request) {
    std::vector<Font> matches;
    if (!request.postScriptName.empty())
        matches = fonts.FindByPostScriptName(request.postScriptName);
    if (matches.empty() && !request.family.empty())
        matches =
            fonts.FindByLookupName(request.family + (request.style.empty() ? "Regular" : request.style));
    if (matches.empty() && !request.family.empty() && request.style.empty())
        matches = fonts.FindByFamily(request.family);
    if (matches.empty() && !request.postScriptName.empty())
        matches = fonts.FindByLookupName(request.postScriptName);
    SortByMatch(matches, request);
    return matches;
}

}  // namespace pellwick
