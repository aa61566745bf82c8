// The fonts that a document uses, as the readers of document formats find them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace documents {

struct DocumentFont {
    /// Where the format has no PostScript names, the full name: family and style. Never empty.
    std::string postScriptName;
    std::string family;       ///< empty where the format does not tell
    std::string style;        ///< the same: "Bold Italic"
    std::string where;        ///< in which part of the document, for people: "pages 1-3, 7", "style Heading"
    bool isEmbedded = false;  ///< the document brings it, or a part of it, along
    /// Paths of the placed documents that use it, where the document itself does not.
    std::vector<std::string> placedIn{};
};

enum class ReadStatus {
    kRead,       ///< to its end
    kUnknown,    ///< of a format that no reader knows
    kUnreadable  ///< damaged, locked, or over a limit
};

struct DocumentFonts {
    ReadStatus status = ReadStatus::kUnknown;
    std::string reader;               ///< the format's name, in lower case; empty when unknown
    std::string problem;              ///< why it could not be read, as in "it is damaged: …"
    std::vector<DocumentFont> fonts;  ///< each once, in the order of their names; none unless read
    /// The files that it places, as it names them: absolute paths, on whatever machine, or relative to its own
    /// folder. Each once; those of no document at all, such as photographs, too.
    std::vector<std::string> placed{};
};

/// As processes hand it to each other; text that is not UTF-8 is mended on the way.
std::string EncodeDocumentFonts(const DocumentFonts& fonts);
/// Nothing when the text is something else.
std::optional<DocumentFonts> ParseDocumentFonts(std::string_view text);

}  // namespace documents
