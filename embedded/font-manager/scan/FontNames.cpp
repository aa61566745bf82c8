#include "scan/FontNames.h"

#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H

#include <algorithm>

#include "StringConversion.h"
#include "common/FontManagerLimits.h"
#include "scan/CleanName.h"

namespace pellwick {
namespace {

/// Which record to take when a name is there several times: higher is better, 0 cannot be decoded.
int Preference(const FT_SfntName& name) {
    if (name.platform_id == TT_PLATFORM_MICROSOFT) {
        if (name.encoding_id != TT_MS_ID_UNICODE_CS && name.encoding_id != TT_MS_ID_UCS_4 &&
            name.encoding_id != TT_MS_ID_SYMBOL_CS)
            return 0;
        constexpr unsigned kPrimaryLanguage = 0x3FF;
        constexpr unsigned kEnglish = 0x09;
        if (name.language_id == TT_MS_LANGID_ENGLISH_UNITED_STATES)
            return 6;
        return (name.language_id & kPrimaryLanguage) == kEnglish ? 5 : 2;
    }
    if (name.platform_id == TT_PLATFORM_APPLE_UNICODE)
        return 3;
    if (name.platform_id == TT_PLATFORM_MACINTOSH && name.encoding_id == TT_MAC_ID_ROMAN)
        return name.language_id == TT_MAC_LANGID_ENGLISH ? 4 : 1;
    return 0;
}

/// The text as the font has it; `limit`: the bytes of it that are of use.
std::string Decode(const FT_SfntName& name, size_t limit) {
    const char* encoding = name.platform_id == TT_PLATFORM_MACINTOSH ? "MACINTOSH" : "UTF-16BE";
    // The longest text that is kept has no more bytes in any of these encodings.
    const size_t size = std::min<size_t>(name.string_len, 2 * limit);
    const std::string_view bytes(reinterpret_cast<const char*>(name.string), size);
    std::string decoded;
    return ConvertEncoding(bytes, encoding, "UTF-8", decoded) == CoreErrorCodes::kSuccess ? decoded : "";
}

}  // namespace

NameTable::NameTable(FT_Face face, size_t& budget) : mFace(face) {
    const unsigned count = std::min(FT_Get_Sfnt_Name_Count(face), kMaxNamesPerFace);
    for (unsigned index = 0; index < count && budget != 0; ++index) {
        FT_SfntName name{};
        if (FT_Get_Sfnt_Name(face, index, &name) != 0)
            continue;
        budget -= std::min<size_t>(budget, name.string_len);
        if (Preference(name) != 0)
            mCandidates[name.name_id].push_back({Preference(name), index});
    }
    for (auto& [identifier, candidates] : mCandidates) {
        std::stable_sort(
            candidates.begin(), candidates.end(),
            [](const Candidate& left, const Candidate& right) { return left.preference > right.preference; });
        candidates.resize(std::min(candidates.size(), kMaxNameCandidates));
    }
}

template <class Clean>
std::string NameTable::FindBest(unsigned nameIdentifier, size_t limit, const Clean& clean) const {
    const auto found = mCandidates.find(nameIdentifier);
    if (found == mCandidates.end())
        return {};
    for (const Candidate& candidate : found->second) {
        FT_SfntName name{};
        if (FT_Get_Sfnt_Name(mFace, candidate.index, &name) != 0)
            continue;
        if (std::string text = clean(Decode(name, limit)); !text.empty())
            return text;
    }
    return {};
}

std::string NameTable::Find(unsigned nameIdentifier) const {
    return FindBest(nameIdentifier, kMaxNameSize, CleanName);
}

std::string NameTable::FindText(unsigned nameIdentifier, size_t limit) const {
    return FindBest(nameIdentifier, limit,
                    [limit](std::string text) { return CleanText(std::move(text), limit); });
}

}  // namespace pellwick
