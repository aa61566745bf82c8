// The formats that there are readers for.
#pragma once

#include <span>
#include <string_view>

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

}  // namespace documents
