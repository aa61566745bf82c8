// Conversions between UTF-8 and the encodings that strings are created from and read as.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "CoreFoundation/CFString.h"

namespace corefoundation {

bool IsUtf16(CFStringEncoding encoding) noexcept;
// The most bytes that one UTF-16 code unit becomes; 0 for an unknown encoding.
CFIndex MaximumBytesPerUnit(CFStringEncoding encoding) noexcept;

enum class ByteOrderMark { kIsText, kObey };

// The text of bytes as valid UTF-8; nothing when they are invalid or the encoding is unknown.
std::optional<std::string> Decode(std::span<const UInt8> bytes, CFStringEncoding encoding,
                                  ByteOrderMark mark);
std::optional<std::string> DecodeUtf16(std::span<const UniChar> units);

struct EncodedCharacter {
    std::array<UInt8, 4> bytes{};
    size_t size = 0;  // 0 when the encoding cannot express the character
};
EncodedCharacter Encode(char32_t character, CFStringEncoding encoding) noexcept;

}  // namespace corefoundation
