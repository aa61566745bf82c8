// The font names that a saved document uses, read straight out of its bytes: the font dictionaries that
// authoring applications write are found by their markers, without parsing the document's format.
//
// The markers are those of PDF font descriptors (ISO 32000-1, 9.8) for Illustrator and PDF, and of the text
// engine data that Photoshop and After Effects keep with each text layer.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ErrorCodes.h"
#include "GFile.h"
#include "MarkerSearch.h"

/// Takes out what a damaged document may hold in place of names and no font is called: empty ones, and
/// those that are many times as long as the name of any font.
void EraseImpossibleNames(std::set<std::string>& fontNames);

class GBinaryDocumentFontExtractor {
public:
    explicit GBinaryDocumentFontExtractor(GFileSystemSpec fileSpec) : mFileSpec(std::move(fileSpec)) {}
    virtual ~GBinaryDocumentFontExtractor() = default;

    /// Whether the file name's extension is that of a kind whose names can be found. Any thread.
    static bool KnowsKindOf(const GFileSystemSpec& fileSpec);

    /// An extraction that takes longer than this stops, since the user waits for it; its result is what it
    /// has found by then.
    void SetTimeLimit(std::chrono::milliseconds limit) { mTimeLimit = limit; }
    /// Whether the last extraction stopped before the end of the file.
    bool HasGivenWay() const { return mHasGivenWay; }

    /// Replaces `fontNames` by the PostScript names found, UTF-8, as they stand in the file. The file name's
    /// extension picks the kind of document; an unknown one has all kinds tried, for files below 1 GiB. A
    /// document without names is not a failure. On failure: the status of the file operation, after a report;
    /// names found before it stay, in a chunk that was read in part too. Any thread, one at a time for each
    /// extractor. Takes as long as reading the file, unless a limit is set.
    [[nodiscard]] ErrorCode ExtractFontNames(std::set<std::string>& fontNames);

protected:
    /// How much of the file is searched at once, in bytes: the longest range of markers that is found whole.
    virtual size_t ChunkSize() const { return 0x20000000; }
    /// How much of a chunk is read at once, in bytes: enough to make the calls to the system cheap, little
    /// enough to stay in the processor's cache.
    virtual size_t WindowSize() const { return size_t{256} << 10; }

private:
    using FontNames = std::set<std::string>;
    struct FoundName {
        size_t range;  ///< its range, counted from 0 among those that hold names
        size_t index;  ///< in that range, from 0
        std::string name;
    };
    using NameTaker = std::function<void(FoundName&& found)>;

    struct Markers {
        std::string_view rangeStart;
        std::span<const std::string_view> nameStarts;  ///< writers differ
        std::string_view prefixSeparator;              ///< ends a prefix that does not belong to the name
        std::string_view nameEnd;
        std::string_view rangeEnd;
    };

    /// Searches one chunk and answers with the offset to go on from; 0 leaves it to the ordinary advance.
    using ChunkSearch = std::function<size_t(FileChunk& chunk)>;

    ErrorCode ExtractFromIllustrator(FontNames& fontNames);
    ErrorCode ExtractFromPhotoshop(FontNames& fontNames);
    ErrorCode ExtractFromAfterEffects(FontNames& fontNames);
    ErrorCode ExtractFromAnyKind(FontNames& fontNames);
    ErrorCode SearchInChunks(std::string_view rangeStart, const ChunkSearch& search);
    /// Calls `take` with each name, in order. The result is the offset of a range that the span cuts, if any.
    static std::optional<size_t> GetFontNamesFromByteVector(FileChunk& chunk, ByteRange span,
                                                            const Markers& markers, const NameTaker& take);
    static std::string ReadName(FileChunk& chunk, ByteRange name, const Markers& markers);

    bool HasTime() const;
    ErrorCode SearchChunk(uint64_t position, size_t size, const ChunkSearch& search, size_t& resumeOffset);

    GFileSystemSpec mFileSpec;
    std::optional<std::chrono::milliseconds> mTimeLimit;
    uint32_t mBeginTick = 0;  ///< of the extraction
    bool mHasGivenWay = false;
    std::vector<char> mWindow;  ///< what the chunks are read into
};
