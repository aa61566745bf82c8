// What is done about the fonts that a document lacks.
#pragma once

#include "OpenedDocument.h"

/// Asks the user for replacements where there are any, unless the preference "DialogSuppression" is on, and has
/// those activated that were chosen. They go from the document's unmatched fonts to its matched ones.
void OfferReplacements(const CoreLibrary& core, OpenedDocument& document);

/// What could be chosen in place of a font that is missing: records, the best first.
std::vector<nlohmann::json> ReplacementsOf(const nlohmann::json& font);

/// Has the font under kGS_MatchedFontKey activated in the place of `font`, which goes to the document's matched fonts
/// then, and else to its unmatched ones.
void TakeReplacement(const CoreLibrary& core, OpenedDocument& document, nlohmann::json font);
