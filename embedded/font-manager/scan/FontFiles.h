// Recognising font files by their first bytes and names.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "store/FontStore.h"

namespace pellwick {

// Reasons for which a file is refused, for people.

/// For what looks like a font but cannot be read.
inline constexpr char kReason_Damaged[] = "damaged font file";
inline constexpr char kReason_NoFont[] = "not a font file";

/// How many bytes of a file tell whether it may be a font's.
constexpr size_t kSignatureSize = 16;
/// Whether a file of that beginning may be a font's: one that is not need not be looked at any further.
bool MayBeFontFile(std::string_view beginning);

/// What the file of such a font is called: the extension of `fileName` when it is one that font files have,
/// else ".ttf" and so on by the faces. With its dot, lower case.
std::string FontFileExtension(const std::string& fileName, const std::vector<FontFace>& faces);

}  // namespace pellwick
