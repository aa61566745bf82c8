#include "MarkerSearch.h"

#include "TraceLog.h"

namespace {
constexpr char kBackslash = '\\';
}

std::optional<size_t> FindStartMarker(FileChunk& chunk, ByteRange span, std::string_view marker) {
    for (size_t position = span.begin;;) {
        const std::optional<size_t> match = chunk.Find(position, span.end, marker);
        if (!match)
            return std::nullopt;
        // The byte before counts only when it lies after the first byte of the span.
        if (*match <= span.begin + 1 || !chunk.Bytes(*match - 1, *match).starts_with(kBackslash))
            return match;
        LogMessage(0, "Ignoring match at offset %d because previous char is 0x%04x",
                   static_cast<int>(*match - span.begin), kBackslash);
        position = *match + 1;
    }
}

std::optional<size_t> ForEachRange(FileChunk& chunk, ByteRange span, std::string_view startMarker,
                                   std::string_view endMarker, const std::function<void(ByteRange)>& take) {
    for (size_t position = span.begin;;) {
        const auto start = FindStartMarker(chunk, {position, span.end}, startMarker);
        if (!start)
            return std::nullopt;
        const auto end = chunk.Find(*start + startMarker.size(), span.end, endMarker);
        if (!end)
            return start;
        take({*start, *end});
        position = *end + endMarker.size();
    }
}
