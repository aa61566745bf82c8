#include "client/XmpPacket.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "StringConversion.h"
#include "common/FontManagerLimits.h"
#include "platform/Files.h"

namespace pellwick {
namespace {

constexpr std::string_view kBegin = "<?xpacket begin=";
constexpr std::string_view kEnd = "<?xpacket end=";
constexpr std::string_view kClose = "?>";
constexpr size_t kPieceSize = size_t{1} << 20;

/// Up to `size` bytes of the file; fewer at its end, none where it cannot be read.
std::string ReadPiece(platform::ReadOnlyFile& file, uint64_t offset, uint64_t size) {
    std::string piece(static_cast<size_t>(size), '\0');
    size_t bytesRead = 0;
    if (file.ReadAt(offset, piece.data(), piece.size(), bytesRead))
        bytesRead = 0;
    piece.resize(bytesRead);
    return piece;
}

/// Where the marker stands in the file, asked from the front to the back: no byte is looked at twice.
class MarkerSearch {
public:
    MarkerSearch(platform::ReadOnlyFile& file, std::string_view marker) : mFile(file), mMarker(marker) {}

    /// The first one that begins at `from` or behind it and ends before `to`. `from` never goes back.
    std::optional<uint64_t> Find(uint64_t from, uint64_t to) {
        if (!mFound || *mFound < from)
            Advance(from, to);
        return mFound && *mFound + mMarker.size() <= to ? mFound : std::nullopt;
    }

private:
    void Advance(uint64_t from, uint64_t to) {
        mFound.reset();
        mNext = std::max(mNext, from);
        while (!mFound && !mIsAtEnd && mNext + mMarker.size() <= to) {
            if (mNext < mPieceBegin || mNext + mMarker.size() > mPieceBegin + mPiece.size()) {
                mPiece = ReadPiece(mFile, mNext, kPieceSize);
                mPieceBegin = mNext;
                mIsAtEnd = mPiece.size() < mMarker.size();
                if (mIsAtEnd)
                    return;
            }
            const size_t match = mPiece.find(mMarker, static_cast<size_t>(mNext - mPieceBegin));
            if (match != std::string::npos)
                mFound = mPieceBegin + match;
            // A marker may stand across the end of a piece.
            mNext = mFound ? *mFound + 1 : mPieceBegin + mPiece.size() - mMarker.size() + 1;
        }
    }

    platform::ReadOnlyFile& mFile;
    const std::string_view mMarker;
    std::optional<uint64_t> mFound;
    bool mIsAtEnd = false;  ///< of the file
    uint64_t mNext = 0;     ///< no marker that was not asked for begins before
    std::string mPiece;
    uint64_t mPieceBegin = 0;
};

/// The packets of a document. Several beginnings may have one end, and several ends may be closed by one
/// mark: what is found out about a stretch of the file is kept for all of them.
class PacketSearch {
public:
    explicit PacketSearch(platform::ReadOnlyFile& file)
        : mFile(file), mBegins(file, kBegin), mEnds(file, kEnd), mCloses(file, kClose) {}

    /// The first packet that begins between the offsets, which come after those of the search before.
    std::optional<std::string> Find(uint64_t from, uint64_t to) {
        while (const auto begin = mBegins.Find(from, to + kBegin.size() - 1)) {
            const auto end = EndOf(*begin);
            if (end && WellFormedFrom(*begin, *end) == *begin)
                return ReadPiece(mFile, *begin, *end - *begin);
            from = *begin + 1;
        }
        return std::nullopt;
    }

private:
    std::optional<uint64_t> EndOf(uint64_t begin) {
        const uint64_t limit = begin + kMaxXmpPacket;
        const auto end = mEnds.Find(begin, limit);
        const auto close = end ? mCloses.Find(*end, limit) : std::nullopt;
        return close ? std::optional(*close + kClose.size()) : std::nullopt;
    }

    /// The first offset from `begin` on from which all bytes to `end` are UTF-8.
    uint64_t WellFormedFrom(uint64_t begin, uint64_t end) {
        if (end != mCheckedEnd) {
            mCheckedEnd = end;
            mWellFormedFrom = begin + WellFormedTail(ReadPiece(mFile, begin, end - begin));
        }
        return std::max(begin, mWellFormedFrom);
    }

    platform::ReadOnlyFile& mFile;
    MarkerSearch mBegins;
    MarkerSearch mEnds;
    MarkerSearch mCloses;
    uint64_t mCheckedEnd = 0;
    uint64_t mWellFormedFrom = 0;
};

}  // namespace

ErrorCode ReadXmpPacket(const std::string& path, std::string& packet) {
    platform::ReadOnlyFile file;
    uint64_t size = 0;
    if (file.Open(path) || file.Size(size))
        return error_codes::GFileSystem::kFileNotFound;
    std::vector<std::pair<uint64_t, uint64_t>> ranges = {{0, size}};
    if (size > kMaxXmpSearch)
        ranges = {{0, kMaxXmpSearch / 2}, {size - kMaxXmpSearch / 2, size}};
    PacketSearch search(file);
    for (const auto& [from, to] : ranges) {
        if (auto found = search.Find(from, to)) {
            packet = std::move(*found);
            return CoreErrorCodes::kSuccess;
        }
    }
    return CoreErrorCodes::kNotFound;
}

}  // namespace pellwick
