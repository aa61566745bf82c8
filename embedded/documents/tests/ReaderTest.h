#pragma once

#include <gmock/gmock.h>

#include "Formats.h"

namespace documents::test {

/// Every font as "name | family | style | where", with a "+" behind the name where it is embedded; or the one
/// line that says why the document cannot be read.
inline std::vector<std::string> Fonts(std::string_view content, std::string_view extension = "") {
    const DocumentFonts found = ReadDocumentFonts(content, extension);
    if (found.status == ReadStatus::kUnknown)
        return {"unknown"};
    if (found.status == ReadStatus::kUnreadable)
        return {found.problem};
    std::vector<std::string> lines;
    for (const DocumentFont& font : found.fonts)
        lines.push_back(font.postScriptName + (font.isEmbedded ? "+" : "") + " | " + font.family + " | " +
                        font.style + " | " + font.where);
    return lines;
}

inline std::string Repeated(std::string_view text, size_t times) {
    std::string result;
    for (; times > 0; --times)
        result += text;
    return result;
}

}  // namespace documents::test
