#include "activation/FontMatcher.h"

#include <utility>

#include "GPickBestMatch.h"

namespace pellwick {
namespace {

/// All fonts here are activated the same way.
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

bool IsBetter(const BestMatchCandidate& left, const BestMatchCandidate& right, const RequestedFont& request) {
    bool leftIsBetter = true;
    const ErrorCode code =
        GPickBestMatch::Compare(left, right, leftIsBetter, false, request.foundry, request.kind);
    return code == CoreErrorCodes::kSuccess && leftIsBetter;
}

}  // namespace

size_t IndexOfBestMatch(const std::vector<Font>& fonts, const RequestedFont& request) {
    // The comparison is not transitive for versions that cannot be read: no algorithm that expects it to be
    // may be given it.
    size_t best = 0;
    BestMatchCandidate bestCandidate;
    for (size_t index = 0; index < fonts.size(); ++index) {
        BestMatchCandidate candidate = CandidateOf(fonts[index]);
        if (index != 0 && !IsBetter(candidate, bestCandidate, request))
            continue;
        best = index;
        bestCandidate = std::move(candidate);
    }
    return best;
}

void SortByMatch(std::vector<Font>& fonts, const RequestedFont& request) {
    std::vector<Font> sorted;
    sorted.reserve(fonts.size());
    while (!fonts.empty()) {
        const auto best = fonts.begin() + static_cast<std::ptrdiff_t>(IndexOfBestMatch(fonts, request));
        sorted.push_back(std::move(*best));
        fonts.erase(best);
    }
    fonts = std::move(sorted);
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
    return matches;
}

}  // namespace pellwick
