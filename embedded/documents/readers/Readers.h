// The readers, one for each family of formats. Each takes a whole document, adds the fonts that it uses, and
// throws ReadProblem where the document is damaged, locked, or over a limit of DocumentLimits.h. Any thread,
// several at once; none opens a file or a connection.
#pragma once

#include <string_view>

#include "FontList.h"

namespace documents {

/// PDF, and what is PDF as well, such as Illustrator documents: the fonts in the resources of pages, of the
/// forms and patterns on them, and of annotations' looks.
void ReadPdf(std::string_view content, FontList& fonts);
/// After Effects projects in XML: the fonts of text layers.
void ReadAfterEffectsXml(std::string_view content, FontList& fonts);
/// SVG: the fonts of text, as attributes, styles and simple style sheets set them.
void ReadSvg(std::string_view content, FontList& fonts);
/// OpenDocument text, spreadsheets, presentations and drawings: as archives, and flat.
void ReadOpenDocument(std::string_view content, FontList& fonts);
void ReadFlatOpenDocument(std::string_view content, FontList& fonts);
/// Scribus documents: the fonts of texts and styles.
void ReadScribus(std::string_view content, FontList& fonts);
/// InDesign's exchange format: the document's fonts of the families and styles that its text asks for.
void ReadIdml(std::string_view content, FontList& fonts);

}  // namespace documents
