// What a PDF tells of a font.
#pragma once

#include <string>

#include "DocumentFonts.h"
#include "Qpdf.h"

namespace documents {

/// Of a font dictionary: names and whether it is embedded. No name where it has none.
DocumentFont FontOf(const QPDFObjectHandle& dictionary);

/// Whether the font draws its glyphs itself, by what else the document has.
bool IsType3(QPDFObjectHandle dictionary);

/// A name without "ABCDEF+" in front of it, which tells that a part of the font is embedded. Some programs put
/// a tag in front of a tag.
std::string WithoutSubsetTags(std::string name);

}  // namespace documents
