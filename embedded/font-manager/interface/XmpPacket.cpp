#include "interface/XmpPacket.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "StringConversion.h"
#include "common/Limits.h"
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

/// The packet that begins at the offset, if it ends as one.
std::optional<std::string> PacketAt(platform::ReadOnlyFile& file, uint64_t offset) {
    std::string packet = ReadPiece(file, offset, kMaxXmpPacket);
    const size_t end = packet.find(kEnd);
    const size_t close = end == std::string::npos ? end : packet.find(kClose, end);
    if (close == std::string::npos)
        return std::nullopt;
    packet.resize(close + kClose.size());
    return IsValidUtf8(packet) ? std::optional(std::move(packet)) : std::nullopt;
}

/// The first packet that begins between the offsets.
std::optional<std::string> FindPacket(platform::ReadOnlyFile& file, uint64_t from, uint64_t to) {
    for (uint64_t offset = from; offset < to; offset += kPieceSize) {
        // A marker may stand across the end of a piece.
        const std::string piece =
            ReadPiece(file, offset, std::min<uint64_t>(kPieceSize, to - offset) + kBegin.size() - 1);
        for (size_t found = piece.find(kBegin); found != std::string::npos;
             found = piece.find(kBegin, found + 1)) {
            if (auto packet = PacketAt(file, offset + found))
                return packet;
        }
    }
    return std::nullopt;
}

}  // namespace

ErrorCode ReadXmpPacket(const std::string& path, std::string& packet) {
    platform::ReadOnlyFile file;
    uint64_t size = 0;
    if (file.Open(path) || file.Size(size))
        return error_codes::GFileSystem::kFileNotFound;
    std::vector<std::pair<uint64_t, uint64_t>> ranges = {{0, size}};
    if (size > kMaxXmpSearch)
        ranges = {{0, kMaxXmpSearch / 2}, {size - kMaxXmpSearch / 2, size}};
    for (const auto& [from, to] : ranges) {
        if (auto found = FindPacket(file, from, to)) {
            packet = std::move(*found);
            return CoreErrorCodes::kSuccess;
        }
    }
    return CoreErrorCodes::kNotFound;
}

}  // namespace pellwick
