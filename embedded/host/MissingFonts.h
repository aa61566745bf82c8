// What is done about the fonts that a document lacks.
#pragma once

#include "OpenedDocument.h"

/// Asks the user for replacements where there are any, unless the preference "DialogSuppression" is on, and has
/// those activated that were chosen. They go from the document's unmatched fonts to its matched ones.
void OfferReplacements(const CoreLibrary& core, OpenedDocument& document);
