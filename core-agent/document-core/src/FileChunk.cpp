#include "FileChunk.h"

#include <algorithm>

#include "FindBytes.h"

namespace {
// The part of a window that reaches back before what is asked for: the start of the range whose end is being
// looked for is most often there.
constexpr size_t kLookBehindShare = 64;
}  // namespace

std::optional<size_t> FileChunk::Find(size_t from, size_t to, std::string_view pattern) {
    to = std::min(to, mSize);
    while (from + pattern.size() <= to) {
        const std::string_view bytes = BytesFrom(from, pattern.size()).substr(0, to - from);
        if (bytes.empty())
            return std::nullopt;
        if (const size_t match = FindBytes(bytes, pattern); match != std::string_view::npos)
            return from + match;
        from += bytes.size() - pattern.size() + 1;
    }
    return std::nullopt;
}

std::string_view FileChunk::Bytes(size_t begin, size_t end) {
    return BytesFrom(begin, end - begin).substr(0, end - begin);
}

std::string_view FileChunk::BytesFrom(size_t begin, size_t size) {
    if (begin < mWindowBegin || begin + size > mWindowEnd)
        MoveWindow(begin, size);
    if (!IsIntact())
        return {};
    return {mWindow.data() + (begin - mWindowBegin), mWindowEnd - begin};
}

void FileChunk::MoveWindow(size_t begin, size_t size) {
    mHasGivenWay = mHasGivenWay || !mHasTime();
    if (!IsIntact())
        return;
    mWindowBegin = begin - std::min(begin, mWindow.size() / kLookBehindShare);
    const size_t needed = begin + size - mWindowBegin;
    if (mWindow.size() < needed)
        mWindow.assign(needed, '\0');
    mWindowEnd = std::min(mSize, mWindowBegin + mWindow.size());
    mStatus = mFile.SetFilePosition(GFile::eBeginning, mPosition + mWindowBegin);
    if (mStatus == CoreErrorCodes::kSuccess)
        mStatus = mFile.Read(mWindowEnd - mWindowBegin, mWindow.data());
}
