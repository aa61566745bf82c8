// The formats that there are readers for, and reading a document of any of them.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "DocumentFonts.h"
#include "FontList.h"

namespace documents {

/// What a document of a format is at first sight.
enum class Form { kXml, kArchive, kBytes };

struct Format {
    std::string_view name;
    /// Takes a whole document, adds the fonts that it uses, and throws ReadProblem where the document is damaged,
    /// locked, or over a limit of DocumentLimits.h. Any thread, several at once; opens no file and no connection.
    void (*read)(std::string_view content, FontList& fonts);
    Form form;
    std::string_view root = {};  ///< how the name of the outermost element of an XML document begins
    std::string_view mark = {};  ///< what the document's beginning holds
    std::array<std::string_view, 4> extensions;  ///< of file names, in lower case
};

/// Those that this build reads.
std::span<const Format> Formats();

/// By what the content shows, or else by the file name's extension, without its dot; null for another format.
const Format* FindFormat(std::string_view content, std::string_view extension);

/// Has the libraries do once what they need files for; comes before all in a process that is to be confined.
void PrepareReaders();

/// By the format that FindFormat finds. Any thread, several at once; opens no file and no connection.
DocumentFonts ReadDocumentFonts(std::string_view content, std::string_view extension);

}  // namespace documents
