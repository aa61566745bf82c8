// The font names that a saved document uses, read straight out of its bytes: the font dictionaries that
// authoring applications write are found by their markers, without parsing the document's format.
//
// The markers are those of PDF font descriptors (ISO 32000-1, 9.8) for Illustrator and PDF, and of the text
// engine data that Photoshop and After Effects keep with each text layer.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ErrorCodes.h"
#include "GFile.h"

class GBinaryDocumentFontExtractor {
public:
    explicit GBinaryDocumentFontExtractor(GFileSystemSpec fileSpec) : mFileSpec(std::move(fileSpec)) {}
    virtual ~GBinaryDocumentFontExtractor() = default;

    /// Replaces `fontNames` by the PostScript names found, UTF-8, as they stand in the file. The file name's
    /// extension picks the kind of document; an unknown one has all kinds tried, for files below 1 GiB. A
    /// document without names is no failure. On failure: the status of the file operation, after a report;
    /// names found before it stay. Any thread, one at a time for each extractor.
    [[nodiscard]] ErrorCode ExtractFontNames(std::set<std::string>& fontNames);

protected:
    /// How much of the file is read at once, in bytes.
    virtual size_t ChunkSize() const { return 0x20000000; }

private:
    using FontNames = std::set<std::string>;
    using NamesOfRange = std::vector<std::string>;

    struct Markers {
        std::string_view rangeStart;
        std::string_view nameStart;
        std::string_view prefixSeparator;  ///< what stands before it is no part of the name
        std::string_view nameEnd;
        std::string_view rangeEnd;
    };

    /// Searches one chunk and answers with the offset to go on from; 0 leaves it to the ordinary advance.
    using ChunkSearch = std::function<size_t(std::string_view chunk)>;

    ErrorCode ExtractFromIllustrator(FontNames& fontNames);
    ErrorCode ExtractFromPhotoshop(FontNames& fontNames);
    ErrorCode ExtractFromAfterEffects(FontNames& fontNames);
    ErrorCode ExtractFromAnyKind(FontNames& fontNames);
    ErrorCode SearchInChunks(std::string_view rangeStart, const ChunkSearch& search);
    static void GetFontNamesFromByteVector(std::string_view chunk, size_t begin, size_t end,
                                           const Markers& markers, FontNames& fontNames,
                                           std::vector<NamesOfRange>& namesByRange, size_t& resumeOffset);

    GFileSystemSpec mFileSpec;
};
