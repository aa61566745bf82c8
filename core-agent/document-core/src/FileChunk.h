// One chunk of an open file as the marker search sees it. The bytes are read in windows that fit into the
// processor's cache, so that searching a chunk of any size costs one pass over the file and little memory. A
// file that others shorten meanwhile is a failed read and nothing worse, which a mapping could not promise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "GFile.h"

class FileChunk {
public:
    /// Asked before more is read: whether there is time for it.
    using HasTime = std::function<bool()>;

    /// The `size` bytes of `file` from `position` on. `window` is the memory to read into, as much at once as
    /// it holds; grown where a single name needs more. All of them outlive the chunk.
    FileChunk(GFile& file, uint64_t position, size_t size, std::vector<char>& window, const HasTime& hasTime)
        : mFile(file), mPosition(position), mSize(size), mWindow(window), mHasTime(hasTime) {}

    /// In bytes.
    size_t Size() const { return mSize; }
    /// The offset of the first `pattern` (not empty) in [from, to). Nothing also when the file
    /// cannot be read.
    std::optional<size_t> Find(size_t from, size_t to, std::string_view pattern);
    /// The bytes [begin, end), valid until the next call; empty when they cannot be read.
    std::string_view Bytes(size_t begin, size_t end);
    /// The first failure to read; from then on nothing is found.
    ErrorCode Status() const { return mStatus; }
    /// Whether there was no time to read on; from then on nothing is found.
    bool HasGivenWay() const { return mHasGivenWay; }
    /// Whether all that was asked for could be read.
    bool IsIntact() const { return mStatus == CoreErrorCodes::kSuccess && !mHasGivenWay; }

private:
    /// The bytes from `begin` to the window's end: at least `size` of them, or none when they cannot be read.
    std::string_view BytesFrom(size_t begin, size_t size);
    void MoveWindow(size_t begin, size_t size);

    GFile& mFile;
    uint64_t mPosition;
    size_t mSize;
    std::vector<char>& mWindow;
    size_t mWindowBegin = 0;  ///< in the window: bytes [mWindowBegin, mWindowEnd) of the chunk
    size_t mWindowEnd = 0;
    ErrorCode mStatus = CoreErrorCodes::kSuccess;
    const HasTime& mHasTime;
    bool mHasGivenWay = false;
};
