// The fonts of a document as hosts hand them to the core and to the font manager.
#pragma once

#include <nlohmann/json.hpp>

#include "DocumentFonts.h"

namespace documents {

/// Font records (FontRecordKeys.h).
nlohmann::json FontRecords(const DocumentFonts& fonts);

}  // namespace documents
