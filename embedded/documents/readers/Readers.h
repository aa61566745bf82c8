// The formats that there are readers for: the one table from which readers are declared and documents recognised.
//
// A reader takes a whole document, adds the fonts that it uses, and throws ReadProblem where the document is
// damaged, locked, or over a limit of DocumentLimits.h. Any thread, several at once; none opens a file or a
// connection.
#pragma once

#include <string_view>

#include "FontList.h"

// X(reader, name, form, how the name of an XML document's outermost element begins, what the document's
// beginning holds, file extensions in lower case).
/* clang-format off */
#define TEXT_DOCUMENT_FORMATS(X)                                                                            \
    /* After Effects projects: the fonts of text layers. */                                                 \
    X(ReadAfterEffectsXml, "aepx", kXml, "AfterEffectsProject", "", "aepx")                                 \
    /* The fonts of text, as attributes, styles and simple style sheets set them. */                        \
    X(ReadSvg, "svg", kXml, "svg", "", "svg")                                                               \
    /* OpenDocument text, spreadsheets, presentations and drawings without an archive around them. */       \
    X(ReadFlatOpenDocument, "opendocument", kXml, "document", "urn:oasis:names:tc:opendocument",            \
      "fodt", "fods", "fodp", "fodg")                                                                       \
    /* The fonts of texts and styles. */                                                                    \
    X(ReadScribus, "sla", kXml, "SCRIBUS", "", "sla")
/// Those that take qpdf and libzip to read.
#define BINARY_DOCUMENT_FORMATS(X)                                                                          \
    /* And what is PDF as well, such as Illustrator documents: the fonts in the resources of pages, of the  \
       forms and patterns on them, and of annotations' looks. */                                            \
    X(ReadPdf, "pdf", kBytes, "", "%PDF-", "pdf")                                                           \
    X(ReadOpenDocument, "opendocument", kArchive, "", "mimetypeapplication/vnd.oasis.opendocument",         \
      "odt", "ods", "odp", "odg")                                                                           \
    /* InDesign's exchange format: the document's fonts of the families and styles that its text asks for. */ \
    X(ReadIdml, "idml", kArchive, "", "mimetypeapplication/vnd.adobe.indesign-idml", "idml")
/* clang-format on */

namespace documents {

#define DECLARE_READER(reader, ...) void reader(std::string_view content, FontList& fonts);
TEXT_DOCUMENT_FORMATS(DECLARE_READER)
BINARY_DOCUMENT_FORMATS(DECLARE_READER)
#undef DECLARE_READER

}  // namespace documents
