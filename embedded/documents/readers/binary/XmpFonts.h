// The list of fonts that Illustrator keeps in a document's XMP packet ("xmpTPg:Fonts"). It is complete where the
// pages are not: in documents that were saved without PDF content.
#pragma once

#include <string_view>
#include <vector>

#include "DocumentFonts.h"

namespace documents {

/// The fonts of a packet, with families and styles; those that stand before the place where it is damaged.
std::vector<DocumentFont> ReadXmpFonts(std::string_view packet);

}  // namespace documents
