#include "scan/FontNames.h"

#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H

#include <algorithm>

#include "PrintableText.h"
#include "StringConversion.h"
#include "common/Limits.h"

namespace pellwick {
namespace {

/// A hostile table may list any number of names; real ones list a few hundred.
constexpr unsigned kMaxNames = 4096;

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

std::string Decode(const FT_SfntName& name) {
    const char* encoding = name.platform_id == TT_PLATFORM_MACINTOSH ? "MACINTOSH" : "UTF-16BE";
    const std::string_view bytes(reinterpret_cast<const char*>(name.string), name.string_len);
    std::string decoded;
    if (ConvertEncoding(bytes, encoding, "UTF-8", decoded) != CoreErrorCodes::kSuccess)
        return {};
    return CleanName(decoded);
}

}  // namespace

std::string ReadName(FT_Face face, unsigned nameIdentifier) {
    std::string best;
    int bestPreference = 0;
    const unsigned count = std::min(FT_Get_Sfnt_Name_Count(face), kMaxNames);
    for (unsigned index = 0; index < count; ++index) {
        FT_SfntName name{};
        if (FT_Get_Sfnt_Name(face, index, &name) != 0 || name.name_id != nameIdentifier ||
            Preference(name) <= bestPreference)
            continue;
        if (std::string decoded = Decode(name); !decoded.empty()) {
            best = std::move(decoded);
            bestPreference = Preference(name);
        }
    }
    return best;
}

std::string CleanName(const std::string& name) {
    const std::string clean = WithoutUnprintables(name.substr(0, kMaxNameSize));
    const size_t first = clean.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return clean.substr(first, clean.find_last_not_of(' ') - first + 1);
}

}  // namespace pellwick
