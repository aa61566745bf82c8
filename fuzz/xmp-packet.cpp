// Documents with markers of metadata in any order: the fast search finds what the plain one does.
//
// An even first byte makes the rest the document. An odd one makes each byte of the rest a piece of it, some
// of which are so long that markers stand where the search reads on, or too far apart for a packet.

#include <cstdint>
#include <string>
#include <string_view>

#include "PlainXmpPacket.h"
#include "Require.h"
#include "ScratchFile.h"
#include "client/XmpPacket.h"
#include "common/FontManagerLimits.h"

namespace {

using namespace pellwick;

constexpr size_t kMaxLongPieces = 6;

/// Fills the document until `distance` bytes are missing to a whole number of MiB.
void FillToEdge(std::string& document, size_t distance, size_t& longPieces) {
    constexpr size_t kMiB = size_t{1} << 20;
    if (longPieces++ < kMaxLongPieces)
        document.resize((document.size() / kMiB + 1) * kMiB - distance, 'x');
}

void AppendPiece(std::string& document, uint8_t piece, size_t& longPieces) {
    constexpr std::string_view kPieces[] = {"<?xpacket begin=", "<?xpacket end=", "?>",       "?>",
                                            "<?xpacket begin=", "\xFF",           "\xE5\xAD", "<?xpacket "};
    if (piece < 0x80)
        document += kPieces[piece % std::size(kPieces)];
    else if (piece < 0xA0)
        FillToEdge(document, piece % 0x20, longPieces);
    else if (piece == 0xA0 && longPieces++ < kMaxLongPieces)
        document.append(kMaxXmpPacket - 64, 'x');
    else
        document.append(piece % 0x20, 'x');
}

std::string MakeDocument(std::string_view input) {
    if (input.empty() || input.front() % 2 == 0)
        return std::string(input.substr(std::min<size_t>(input.size(), 1)));
    std::string document;
    size_t longPieces = 0;
    for (const char piece : input.substr(1))
        AppendPiece(document, static_cast<uint8_t>(piece), longPieces);
    return document;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string document = MakeDocument({reinterpret_cast<const char*>(data), size});
    const ScratchFile file("xmp", document);
    std::string packet;
    const ErrorCode code = ReadXmpPacket(file.Path(), packet);
    Require(code == (packet.empty() ? CoreErrorCodes::kNotFound : CoreErrorCodes::kSuccess),
            "a packet is found, or none");
    Require(packet == test::PlainXmpPacket(document), "it is the one that the plain search finds");
    return 0;
}
