// The name table of a font: https://learn.microsoft.com/typography/opentype/spec/name
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <string>

namespace pellwick {

/// Identifiers of the names that are of use here.
enum NameIdentifier : unsigned {
    kName_Family = 1,
    kName_Style = 2,
    kName_Full = 4,
    kName_Version = 5,
    kName_PostScript = 6,
    kName_TypographicFamily = 16,
    kName_TypographicStyle = 17
};

/// The name in UTF-8, English if it can be had; empty when the face has none that can be decoded.
std::string ReadName(FT_Face face, unsigned nameIdentifier);

/// Well-formed UTF-8 without unprintable characters or blanks at the ends, cut at kMaxNameSize.
std::string CleanName(const std::string& name);

}  // namespace pellwick
