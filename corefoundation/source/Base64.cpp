#include "Base64.h"

namespace corefoundation {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The text without blanks.
std::string Packed(std::string_view text) {
    std::string packed(text);
    std::erase_if(packed, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
    return packed;
}

size_t PaddingOf(std::string_view text) {
    return text.ends_with("==") ? 2 : (text.ends_with('=') ? 1 : 0);
}

}  // namespace

std::string EncodeBase64(std::span<const UInt8> bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = bytes[i] << 16;
        group |= count > 1 ? bytes[i + 1] << 8 : 0;
        group |= count > 2 ? bytes[i + 2] : 0;
        text += kAlphabet[group >> 18];
        text += kAlphabet[group >> 12 & 0x3F];
        text += count > 1 ? kAlphabet[group >> 6 & 0x3F] : '=';
        text += count > 2 ? kAlphabet[group & 0x3F] : '=';
    }
    return text;
}

std::optional<std::vector<UInt8>> DecodeBase64(std::string_view text) {
    const std::string packed = Packed(text);
    if (packed.size() % 4 != 0)
        return std::nullopt;
    const std::string_view digits = std::string_view(packed).substr(0, packed.size() - PaddingOf(packed));
    std::vector<UInt8> bytes;
    bytes.reserve(packed.size() / 4 * 3);
    uint32_t pending = 0;
    int pendingBits = 0;
    for (const char digit : digits) {
        const size_t value = kAlphabet.find(digit);
        if (value == std::string_view::npos)
            return std::nullopt;
        pending = (pending << 6 | static_cast<uint32_t>(value)) & 0xFFFF;
        pendingBits += 6;
        if (pendingBits >= 8) {
            pendingBits -= 8;
            bytes.push_back(static_cast<UInt8>(pending >> pendingBits));
        }
    }
    return bytes;
}

}  // namespace corefoundation
