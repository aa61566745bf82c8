// The commands of the plug-in menu that work on an open document. What comes of them is told to the user.
//
// `document` is a path or an identifier. The result is 0, or kOutOfMemory when a command could not be
// completed.
#pragma once

#include <string>

#include "ErrorCodes.h"

namespace DocumentCommands {

/// "Collect Fonts for Output...": copies the document's fonts into a folder named for the document, below one
/// that the user chooses. Nothing that is there is replaced.
ErrorCode HandleExportDocumentFonts(const std::string& document);

/// "Create Document Set...": a set of the document's fonts, named for the document, in the current workgroup.
ErrorCode HandleCreateDocumentSet(const std::string& document);

/// "Check Document's Fonts": has the document's fonts activated once more, tells which are missing, and lets
/// the user choose replacements. `fontsJSON`: the fonts that the document uses now, as for
/// HandleOpenExistingDocument; without a list the names in the document's file serve.
ErrorCode HandleCheckDocumentFonts(const std::string& document, const std::string& fontsJSON);

}  // namespace DocumentCommands
