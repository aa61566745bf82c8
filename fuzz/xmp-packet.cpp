// Documents with markers of metadata in any order: the fast search finds what the plain one does.
//
// An even first byte makes the rest the document. An odd one makes each byte of the rest a piece of it, some
// of which are so long that markers stand where the search reads on, or too far apart for a packet.
#include <cstdint>
#include <utility>

#include "Fuzz.h"
#include "StringConversion.h"
#include "client/XmpPacket.h"
#include "common/FontManagerLimits.h"

using namespace pellwick;

namespace {

void AppendPiece(std::string& document, uint8_t piece, size_t& longPieces) {
    constexpr std::string_view kPieces[] = {"<?xpacket begin=", "<?xpacket end=", "?>",       "?>",
                                            "<?xpacket begin=", "\xFF",           "\xE5\xAD", "<?xpacket "};
    constexpr size_t kMaxLongPieces = 6;
    constexpr size_t kMiB = size_t{1} << 20;
    if (piece < 0x80)
        document += kPieces[piece % std::size(kPieces)];
    else if (piece > 0xA0)
        document.append(piece % 0x20, 'x');
    else if (longPieces++ >= kMaxLongPieces)
        return;
    else if (piece == 0xA0)
        document.append(kMaxXmpPacket - 64, 'x');
    else  // until a few bytes are missing to a whole number of MiB
        document.resize((document.size() / kMiB + 1) * kMiB - piece % 0x20, 'x');
}

/// What ReadXmpPacket finds, found the plain and slow way.
std::string PlainXmpPacket(const std::string& document) {
    for (size_t begin = 0; (begin = document.find("<?xpacket begin=", begin)) != std::string::npos; ++begin) {
        const size_t end = document.find("<?xpacket end=", begin);
        const size_t close = end != std::string::npos ? document.find("?>", end) : end;
        if (close == std::string::npos)
            return {};
        const std::string packet = document.substr(begin, close + 2 - begin);
        if (packet.size() <= kMaxXmpPacket && IsValidUtf8(packet))
            return packet;
    }
    return {};
}

}  // namespace

std::vector<std::string> Seeds() {
    return {};
}

void TryInput(const std::string& input) {
    std::string document = input.substr(input.empty() ? 0 : 1);
    if (!input.empty() && input.front() % 2 != 0) {
        const std::string pieces = std::exchange(document, {});
        size_t longPieces = 0;
        for (const char piece : pieces)
            AppendPiece(document, static_cast<uint8_t>(piece), longPieces);
    }
    static const ScratchFolder folder;
    std::string packet;
    const ErrorCode code = ReadXmpPacket(folder.Write("document", document), packet);
    Require(code == (packet.empty() ? CoreErrorCodes::kNotFound : CoreErrorCodes::kSuccess),
            "a packet is found, or none");
    Require(packet == PlainXmpPacket(document), "it is the one that the plain search finds");
}
