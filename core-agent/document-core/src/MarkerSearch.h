// Finding what stands between markers in the bytes of a chunk.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

#include "FileChunk.h"

/// Bytes [begin, end) of a chunk.
struct ByteRange {
    size_t begin = 0;
    size_t end = 0;
};

/// The first start marker in the span. One that follows a backslash is text that was escaped: it is logged
/// and passed over, unless it stands at offset 0 or 1 of the span.
std::optional<size_t> FindStartMarker(FileChunk& chunk, ByteRange span, std::string_view marker);

/// Calls `take` with each range in the span, from its start marker to the end marker that follows, and looks
/// for the next one behind that. A start without an end is the last: its offset is the result.
std::optional<size_t> ForEachRange(FileChunk& chunk, ByteRange span, std::string_view startMarker,
                                   std::string_view endMarker, const std::function<void(ByteRange)>& take);
