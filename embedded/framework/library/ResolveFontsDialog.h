// Choosing a replacement for each missing font.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "presenters/Dialogs.h"

ResolveFontsDialog MakeResolveFontsDialog(CFArrayRef fonts);

/// Appends the record of each font to one of the two: to `resolvedFonts`, with the record of the candidate in
/// `replacements` under kGS_MatchedFontKey, or to `skippedFonts` as it is.
void SortOutFonts(CFArrayRef fonts, const std::map<std::string, std::string>& replacements,
                  CFMutableArrayRef resolvedFonts, CFMutableArrayRef skippedFonts);
