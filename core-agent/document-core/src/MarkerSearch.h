// Finding what stands between markers in raw bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Bytes [begin, end) of a chunk.
struct ByteRange {
    size_t begin = 0;
    size_t end = 0;

    /// Its start was found but not its end marker.
    bool IsIncomplete() const { return begin == end; }
};

/// The offset of the first match of `pattern` in [from, to) of `chunk`. With an excluded byte, a match that
/// follows this byte is passed over (and logged), unless the match stands at offset 0 or 1 of [from, to).
std::optional<size_t> FindMarker(std::string_view chunk, size_t from, size_t to, std::string_view pattern,
                                 std::optional<uint8_t> excludedByte = std::nullopt);

struct RangeMarkers {
    std::string_view rangeStart;
    std::string_view nameStart;
    std::string_view rangeEnd;
};

/// The ranges in [from, to) that begin at the first name start at or after a range start, and end at the
/// range end that follows. A range without a name start is left out; one without an end is incomplete, and
/// the last. Starts that follow a backslash do not count.
std::vector<ByteRange> FindRanges(std::string_view chunk, size_t from, size_t to,
                                  const RangeMarkers& markers);
