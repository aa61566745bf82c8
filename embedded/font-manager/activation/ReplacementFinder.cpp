#include "activation/ReplacementFinder.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <set>

#include "FontRecordKeys.h"
#include "activation/MetricAliases.h"
#include "common/FontManagerLimits.h"

namespace pellwick {
namespace {

// A name that is only spelled differently is nearer than any other font of the family.
constexpr int kSamePlainName = 0;
constexpr int kSameWholeName = 1;
constexpr int kSameFamily = 2;
/// More than any two styles are apart.
constexpr int kSameMeasures = 1000;
/// "Demi" of one family is "Bold" of another.
constexpr int kNextWeight = 100;

/// Some milliseconds' work.
constexpr int kNamesIndexedAtOnce = 1000;

void Enter(std::unordered_map<std::string, std::vector<uint32_t>>& index, const std::string& name,
           uint32_t position) {
    if (name.empty())
        return;
    std::vector<uint32_t>& positions = index[name];
    const bool isEntered = !positions.empty() && positions.back() == position;
    if (!isEntered && positions.size() < kMaxNamesOfFamily)
        positions.push_back(position);
}

}  // namespace

bool ReplacementFinder::IndexSome() {
    const std::vector<FontNames> names = mFonts.NamesAfter(mLastFont, kNamesIndexedAtOnce);
    for (const FontNames& each : names) {
        if (mSeen
                .insert(
                    std::hash<std::string>()(each.postScriptName + '\n' + each.family + '\n' + each.style))
                .second)
            Add(each);
        mLastFont = each.id;
    }
    return !names.empty();
}

void ReplacementFinder::Add(const FontNames& names) {
    const auto position = static_cast<uint32_t>(mNames.size());
    const FontNameParts byPostScript = ParsePostScriptName(names.postScriptName);
    const FontNameParts byFamily = ParseFamilyAndStyle(names.family, names.style);
    for (const FontNameParts& parts : {byPostScript, byFamily}) {
        Enter(mByPlainName, parts.plainName, position);
        Enter(mByWholeName, parts.wholeName, position);
        Enter(mByFamily, parts.familyName, position);
    }
    mNames.push_back({names.postScriptName, byFamily.style, byPostScript.style.width});
}

void ReplacementFinder::Measure(const FontNameParts& wanted, Distances& distances) const {
    const auto note = [&](const Index& index, const std::string& name, const auto& distanceOf) {
        const auto found = index.find(name);
        if (found == index.end())
            return;
        for (const uint32_t position : found->second) {
            const std::optional<int> distance = distanceOf(mNames[position]);
            if (!distance)
                continue;
            const auto [known, isNew] = distances.emplace(position, *distance);
            known->second = std::min(known->second, *distance);
        }
    };
    note(mByPlainName, wanted.plainName, [](const NamedFont&) { return kSamePlainName; });
    note(mByWholeName, wanted.wholeName, [](const NamedFont&) { return kSameWholeName; });
    note(mByFamily, wanted.familyName,
         [&](const NamedFont& font) { return kSameFamily + StyleDistance(wanted.style, font.style); });
    for (const std::string_view family : FamiliesOfSameMeasures(wanted.familyName))
        note(mByFamily, std::string(family), [&](const NamedFont& font) {
            const bool isAsWide = font.style.width == wanted.style.width && font.width == wanted.style.width;
            const bool isAlike = font.style.isSlanted == wanted.style.isSlanted &&
                                 std::abs(font.style.weight - wanted.style.weight) <= kNextWeight;
            return isAsWide && isAlike
                       ? std::optional(kSameMeasures + StyleDistance(wanted.style, font.style))
                       : std::nullopt;
        });
}

void ReplacementFinder::AppendBestOf(const std::string& postScriptName, const RequestedFont& request,
                                     std::vector<Font>& replacements) {
    std::vector<Font> fonts = mFonts.FindByPostScriptName(postScriptName);
    fonts.erase(
        std::remove_if(fonts.begin(), fonts.end(),
                       [](const Font& font) { return font.activationState == kFontActivationState_Missing; }),
        fonts.end());
    if (!fonts.empty())
        replacements.push_back(std::move(fonts[IndexOfBestMatch(fonts, request)]));
}

std::vector<Font> ReplacementFinder::Find(const RequestedFont& request) {
    while (IndexSome()) {
    }
    Distances distances;
    Measure(ParsePostScriptName(request.postScriptName), distances);
    Measure(ParseFamilyAndStyle(request.family, request.style), distances);
    std::set<std::pair<int, std::string>> nearest;
    for (const auto& [position, distance] : distances)
        nearest.emplace(distance, mNames[position].postScriptName);

    std::vector<Font> replacements;
    std::set<std::string> seen;
    for (const auto& [distance, postScriptName] : nearest) {
        if (seen.insert(postScriptName).second)
            AppendBestOf(postScriptName, request, replacements);
        if (replacements.size() == kMaxReplacements || seen.size() == kMaxTriedReplacements)
            break;
    }
    return replacements;
}

}  // namespace pellwick
