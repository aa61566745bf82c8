// What of a font tells whether text looks the same in it: its outlines, and how wide they stand.
#pragma once

#include <cstdint>
#include <string>

struct FT_FaceRec_;

namespace pellwick {

struct Fingerprint {
    std::string glyphs;  ///< of the outlines: the first half of a SHA-256, lower-case hexadecimal
    std::string widths;  ///< of advance widths and kerning, likewise
};

/// Takes the tables together, by their names as in https://learn.microsoft.com/typography/opentype/spec/otff#font-tables.
/// `budget`: bytes of the file's tables that may still be read, lessened by those that were. Empty for a font without
/// such tables, and when the budget is over.
Fingerprint FingerprintOf(FT_FaceRec_* face, uint64_t& budget);

}  // namespace pellwick
