#include "MarkerSearch.h"

#include <cstring>

#include "TraceLog.h"

namespace {

constexpr uint8_t kBackslash = 0x5C;

std::optional<size_t> FindBytes(std::string_view chunk, size_t from, size_t to, std::string_view pattern) {
    while (from + pattern.size() <= to) {
        const size_t candidates = to - pattern.size() + 1 - from;
        const void* first = std::memchr(chunk.data() + from, pattern[0], candidates);
        if (first == nullptr)
            return std::nullopt;
        const auto at = static_cast<size_t>(static_cast<const char*>(first) - chunk.data());
        if (std::memcmp(chunk.data() + at, pattern.data(), pattern.size()) == 0)
            return at;
        from = at + 1;
    }
    return std::nullopt;
}

}  // namespace

std::optional<size_t> FindMarker(std::string_view chunk, size_t from, size_t to, std::string_view pattern,
                                 std::optional<uint8_t> excludedByte) {
    for (size_t position = from;;) {
        const std::optional<size_t> match = FindBytes(chunk, position, to, pattern);
        if (!match || !excludedByte)
            return match;
        // The byte before counts only when it lies after the first byte of the span.
        const bool isGuarded = *match > from + 1;
        if (!isGuarded || static_cast<uint8_t>(chunk[*match - 1]) != *excludedByte)
            return match;
        LogMessage(0, "Ignoring match at offset %d because previous char is 0x%04x",
                   static_cast<int>(*match - from), *excludedByte);
        position = *match + 1;
    }
}

std::vector<ByteRange> FindRanges(std::string_view chunk, size_t from, size_t to,
                                  const RangeMarkers& markers) {
    std::vector<ByteRange> ranges;
    for (size_t position = from;;) {
        const auto start = FindMarker(chunk, position, to, markers.rangeStart, kBackslash);
        if (!start)
            return ranges;
        const auto end = FindMarker(chunk, *start + markers.rangeStart.size(), to, markers.rangeEnd);
        if (!end) {
            ranges.push_back({*start, *start});
            return ranges;
        }
        if (const auto name = FindMarker(chunk, *start, *end, markers.nameStart, kBackslash))
            ranges.push_back({*name, *end});
        position = *end + markers.rangeEnd.size();
    }
}
