// The fonts that a page of a PDF is drawn with.
#pragma once

#include <cstddef>
#include <vector>

#include "Qpdf.h"

namespace documents {

/// Dictionaries of the fonts in the page's resources, in those of what is drawn on it, and in its annotations;
/// some may come twice. `formFonts`: a dictionary of those that form fields may name. `visitsLeft`: how many
/// objects may be looked at, from which those that were are taken. Throws ReadProblem when there are more.
std::vector<QPDFObjectHandle> FontsOfPage(QPDFPageObjectHelper page, const QPDFObjectHandle& formFonts,
                                          size_t& visitsLeft);

}  // namespace documents
