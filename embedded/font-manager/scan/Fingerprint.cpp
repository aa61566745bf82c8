#include "scan/Fingerprint.h"

#include "scan/FreeTypeFace.h"

#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

#include <algorithm>
#include <array>
#include <initializer_list>

#include "scan/Checksum.h"

namespace pellwick {
namespace {

constexpr FT_ULong Tag(const char (&name)[5]) {
    return FT_MAKE_TAG(name[0], name[1], name[2], name[3]);
}

/// False when the table cannot be read.
bool Append(FT_Face face, FT_ULong tag, FT_ULong size, Checksum& checksum) {
    std::array<FT_Byte, 65536> piece;
    for (FT_ULong offset = 0; offset < size;) {
        FT_ULong length = std::min<FT_ULong>(size - offset, piece.size());
        if (FT_Load_Sfnt_Table(face, tag, static_cast<FT_Long>(offset), piece.data(), &length) != 0)
            return false;
        checksum.Append({reinterpret_cast<const char*>(piece.data()), length});
        offset += length;
    }
    return true;
}

/// Those of the tables that the font has; empty when it has none.
std::string DigitsOf(FT_Face face, std::initializer_list<FT_ULong> tags, uint64_t& budget) {
    Checksum checksum;
    bool isAnyThere = false;
    for (const FT_ULong tag : tags) {
        FT_ULong size = 0;
        if (FT_Load_Sfnt_Table(face, tag, 0, nullptr, &size) != 0)
            continue;
        const uint64_t before = budget;
        budget -= std::min<uint64_t>(size, budget);
        if (size > before || !Append(face, tag, size, checksum))
            return {};
        isAnyThere = true;
    }
    return isAnyThere ? checksum.Digits().substr(0, kChecksumLength / 2) : std::string();
}

}  // namespace

Fingerprint FingerprintOf(FT_Face face, uint64_t& budget) {
    Fingerprint fingerprint;
    fingerprint.glyphs = DigitsOf(face, {Tag("glyf"), Tag("CFF "), Tag("CFF2"), Tag("gvar")}, budget);
    fingerprint.widths = DigitsOf(face, {Tag("hmtx"), Tag("HVAR"), Tag("kern"), Tag("GPOS")}, budget);
    return fingerprint;
}

}  // namespace pellwick
