// Bytes as text: base64 as in RFC 4648, section 4.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cf {

inline constexpr std::string_view kBase64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Four characters for three bytes, padded at the end, without line feeds.
inline std::string EncodeBase64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t at = 0; at < bytes.size(); at += 3) {
        const std::string_view group = bytes.substr(at, 3);
        uint32_t bits = 0;
        for (size_t index = 0; index < 3; ++index)
            bits = bits << 8 | (index < group.size() ? static_cast<unsigned char>(group[index]) : 0);
        for (size_t index = 0; index < 4; ++index)
            text += index <= group.size() ? kBase64Alphabet[bits >> (18 - 6 * index) & 0x3F] : '=';
    }
    return text;
}

// Blanks and line ends are skipped; nothing for text with other foreign characters or of a wrong length or
// padding.
inline std::optional<std::vector<uint8_t>> DecodeBase64(std::string_view text) {
    std::string packed(text);
    std::erase_if(packed, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
    if (packed.size() % 4 != 0)
        return std::nullopt;
    const size_t padding = packed.ends_with("==") ? 2 : packed.ends_with('=') ? 1 : 0;
    const std::string_view digits = std::string_view(packed).substr(0, packed.size() - padding);
    std::vector<uint8_t> bytes;
    bytes.reserve(packed.size() / 4 * 3);
    uint32_t pending = 0;
    int pendingBits = 0;
    for (const char digit : digits) {
        const size_t value = kBase64Alphabet.find(digit);
        if (value == std::string_view::npos)
            return std::nullopt;
        pending = (pending << 6 | static_cast<uint32_t>(value)) & 0xFFFF;
        pendingBits += 6;
        if (pendingBits >= 8) {
            pendingBits -= 8;
            bytes.push_back(static_cast<uint8_t>(pending >> pendingBits));
        }
    }
    return bytes;
}

}  // namespace cf
