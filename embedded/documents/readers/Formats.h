// The formats that there are readers for, and reading a document of any of them.
#pragma once

#include <span>
#include <string_view>

#include "DocumentFonts.h"
#include "FontList.h"

namespace documents {

struct Format {
    std::string_view name;
    void (*read)(std::string_view content, FontList& fonts);
};

struct FormatExtension {
    std::string_view extension;  ///< in lower case, without its dot
    const Format* format;
};

/// Of the formats that take qpdf and libzip to read; there are none where the project is built without these.
const Format* FormatOfBytes(std::string_view content);
std::span<const FormatExtension> BinaryExtensions();

/// By what the content shows, or else by the file name's extension, without its dot; null for another format.
const Format* FindFormat(std::string_view content, std::string_view extension);

/// Has the libraries do once what they need files for; comes before all in a process that is to be confined.
void PrepareReaders();

/// By the format that FindFormat finds. Any thread, several at once; opens no file and no connection.
DocumentFonts ReadDocumentFonts(std::string_view content, std::string_view extension);

}  // namespace documents
