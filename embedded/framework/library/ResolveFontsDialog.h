// Choosing a replacement for each missing font.
//
// Details: fonts: [{name, candidates: [{name, description}]}], names being PostScript names. Choices in the
// answer: replacements, an object with the name of the chosen candidate under the name of the font.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "presenters/Presenter.h"

DialogQuestion ResolveFontsQuestion(CFArrayRef fonts);

/// Names of candidates by the names of the fonts that they replace.
using Replacements = std::map<std::string, std::string>;

/// Nothing when the dialog was not confirmed, or when a font or a candidate is not in its list.
std::optional<Replacements> ChosenReplacements(const DialogQuestion& question, const DialogAnswer& answer);

/// Appends the record of each font to one of the two: to `resolvedFonts`, with the chosen candidate's record
/// under kGS_MatchedFontKey, or to `skippedFonts` as it is.
void SortOutFonts(CFArrayRef fonts, const Replacements& replacements, CFMutableArrayRef resolvedFonts,
                  CFMutableArrayRef skippedFonts);
