#include "activation/FontMatcher.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "FontNameParts.h"
#include "FontRecordKeys.h"
#include "GPickBestMatch.h"
#include "activation/MetricAliases.h"

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

bool IsInstance(const Font& font) {
    return font.face >> 16 != 0;
}

/// Leaves out the other fonts, unless it is all of them whose files are there.
template <class Predicate>
void KeepIfAny(std::vector<Font>& fonts, Predicate predicate) {
    const auto isWanted = [&](const Font& font) {
        return font.activationState != kFontActivationState_Missing && predicate(font);
    };
    if (std::any_of(fonts.begin(), fonts.end(), isWanted))
        std::erase_if(fonts, [&](const Font& font) { return !isWanted(font); });
}

/// The file that the document was made with, or else fonts with the same outlines.
void KeepTheDocuments(std::vector<Font>& fonts, const RequestedFont& request) {
    KeepIfAny(fonts, [&](const Font& font) { return font.file.checksum == request.checksum; });
    KeepIfAny(fonts, [&](const Font& font) { return !font.glyphs.empty() && font.glyphs == request.glyphs; });
}

/// Fonts of the family that look so, whatever words their style is told in.
std::vector<Font> FindByStyle(FontStore& fonts, const std::string& family, const FontStyle& style) {
    std::vector<Font> found = fonts.FindByFamily(family);
    std::erase_if(
        found, [&](const Font& font) { return ParseFamilyAndStyle(font.family, font.style).style != style; });
    return found;
}

/// The fonts of a family that has one style alone, whatever that is called. Of others none can be meant by the family's
/// name: where the regular is missing, "Condensed" comes near and is not a match.
std::vector<Font> FindOnlyStyle(FontStore& fonts, const std::string& family) {
    std::vector<Font> found = fonts.FindByFamily(family);
    const auto styleOf = [](const Font& font) { return ParseFamilyAndStyle(font.family, font.style).style; };
    const bool isOne = std::all_of(found.begin(), found.end(),
                                   [&](const Font& font) { return styleOf(font) == styleOf(found.front()); });
    return isOne ? found : std::vector<Font>();
}

/// A family alone means its regular style, or the one that the PostScript name tells, and if it has neither,
/// its only style.
std::vector<Font> MatchFamily(FontStore& fonts, const RequestedFont& request) {
    if (request.family.empty())
        return {};
    const FontNameParts byName = ParsePostScriptName(request.postScriptName);
    const bool tellsStyle = byName.style != FontStyle() &&
                            byName.familyName == ParseFamilyAndStyle(request.family, {}).familyName;
    const FontStyle style = !request.style.empty() ? ParseFamilyAndStyle(request.family, request.style).style
                            : tellsStyle           ? byName.style
                                                   : FontStyle();
    std::vector<Font> matches;
    if (!request.style.empty() || !tellsStyle)
        matches =
            fonts.FindByLookupName(request.family + (request.style.empty() ? "Regular" : request.style));
    if (matches.empty())
        matches = FindByStyle(fonts, request.family, style);
    if (matches.empty() && request.style.empty() && !tellsStyle)
        matches = FindOnlyStyle(fonts, request.family);
    return matches;
}

/// Reads "Family:style=Bold Italic" and "Family:bold:italic", as fontconfig writes names
/// (https://www.freedesktop.org/software/fontconfig/fontconfig-user.html, "Font Names"): of several families and
/// styles the first. Nothing for a name of another form.
std::optional<RequestedFont> PatternOf(const std::string& name) {
    const auto first = [](std::string_view list) { return std::string(list.substr(0, list.find(','))); };
    constexpr std::string_view kStyle = "style=";
    size_t end = name.find(':');
    if (end == std::string::npos)
        return std::nullopt;
    RequestedFont request;
    const std::string family = first(std::string_view(name).substr(0, end));
    for (const char character : family) {
        if (character != '\\')  // before a hyphen, which otherwise begins a size
            request.family += character;
    }
    while (end != std::string::npos) {
        const size_t begin = end + 1;
        end = name.find(':', begin);
        const std::string property = name.substr(begin, end == std::string::npos ? end : end - begin);
        if (property.starts_with(kStyle))
            request.style = first(std::string_view(property).substr(kStyle.size()));
        else if (property.find('=') == std::string::npos)
            request.style += (request.style.empty() ? "" : " ") + property;
    }
    return request;
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

std::vector<Font> BestOfEachName(const std::vector<Font>& fonts) {
    std::map<std::string, std::vector<Font>> fontsByName;
    for (const Font& font : fonts)
        fontsByName[font.postScriptName].push_back(font);
    std::vector<Font> best;
    best.reserve(fontsByName.size());
    for (auto& [name, sameName] : fontsByName)
        best.push_back(std::move(sameName[IndexOfBestMatch(sameName, RequestedFont())]));
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
    if (request.isExact) {
        std::erase_if(matches,
                      [&](const Font& font) { return font.postScriptName != request.postScriptName; });
        KeepTheDocuments(matches, request);
        return matches;
    }
    if (matches.empty() && !request.postScriptName.empty())
        matches = fonts.FindByLookupName(request.postScriptName);
    if (matches.empty())
        matches = MatchFamily(fonts, request);
    if (const auto pattern = matches.empty() ? PatternOf(request.postScriptName) : std::nullopt)
        matches = MatchFamily(fonts, *pattern);
    KeepTheDocuments(matches, request);
    KeepIfAny(matches, [](const Font& font) { return font.isPreferred; });
    KeepIfAny(matches, [](const Font& font) { return !IsInstance(font); });
    return matches;
}

std::string MatchReason(const Font& font, const RequestedFont& request) {
    std::string reason;
    if (!request.postScriptName.empty() &&
        SimplifyName(font.postScriptName) != SimplifyName(request.postScriptName))
        reason = SimplifyName(font.fullName) == SimplifyName(request.postScriptName) ? "by its full name"
                                                                                     : "by family and style";
    if (IsInstance(font))
        reason += (reason.empty() ? "" : ", ") + ("an instance of the variable font " + font.file.name);
    return reason;
}

std::string ReplacementReason(const Font& font, const RequestedFont& request) {
    const FontNameParts has = ParseFamilyAndStyle(font.family, font.style);
    const FontNameParts isCalled = ParsePostScriptName(font.postScriptName);
    const FontNameParts byName = ParsePostScriptName(request.postScriptName);
    const FontNameParts byFamily = ParseFamilyAndStyle(request.family, request.style);
    for (const FontNameParts& wanted : {byName, byFamily}) {
        if (!wanted.wholeName.empty() &&
            (wanted.wholeName == has.wholeName || wanted.wholeName == isCalled.wholeName))
            return "same name, written differently";
    }
    for (const FontNameParts* const reading : {&byName, &byFamily}) {
        const FontNameParts& wanted = *reading;
        if (wanted.familyName.empty())
            continue;
        if (wanted.familyName == has.familyName || wanted.familyName == isCalled.familyName)
            return wanted.style == has.style
                       ? "same style of a like-named family"
                       : "same family, " + font.style + " instead of " + StyleText(wanted.style);
        const auto alike = FamiliesOfSameMeasures(wanted.familyName);
        if (std::find(alike.begin(), alike.end(), has.familyName) != alike.end())
            return "as wide as " + (reading == &byFamily ? request.family : request.postScriptName);
    }
    return "a like-named font";
}

}  // namespace pellwick
