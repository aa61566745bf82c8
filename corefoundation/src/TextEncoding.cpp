#include "TextEncoding.h"

#include <utf8.h>

#include <algorithm>
#include <bit>
#include <iterator>
#include <vector>

namespace corefoundation {
namespace {

constexpr UniChar kByteOrderMark = 0xFEFF;
constexpr UniChar kSwappedByteOrderMark = 0xFFFE;

bool IsBigEndian(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF16BE ||
           (encoding == kCFStringEncodingUTF16 && std::endian::native == std::endian::big);
}

UniChar Swapped(UniChar unit) {
    return static_cast<UniChar>(unit << 8 | unit >> 8);
}

std::optional<std::string> DecodeUtf8(std::span<const UInt8> bytes, ByteOrderMark mark) {
    if (mark == ByteOrderMark::kObey && utf8::starts_with_bom(bytes.begin(), bytes.end()))
        bytes = bytes.subspan(3);
    if (!utf8::is_valid(bytes.begin(), bytes.end()))
        return std::nullopt;
    return std::string(bytes.begin(), bytes.end());
}

std::optional<std::string> DecodeAscii(std::span<const UInt8> bytes) {
    if (std::any_of(bytes.begin(), bytes.end(), [](UInt8 byte) { return byte >= 0x80; }))
        return std::nullopt;
    return std::string(bytes.begin(), bytes.end());
}

std::string DecodeLatin1(std::span<const UInt8> bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const UInt8 byte : bytes)
        utf8::append(static_cast<char32_t>(byte), text);
    return text;
}

std::optional<std::string> DecodeUtf16Bytes(std::span<const UInt8> bytes, CFStringEncoding encoding,
                                            ByteOrderMark mark) {
    if (bytes.size() % 2 != 0)
        return std::nullopt;
    std::vector<UniChar> units(bytes.size() / 2);
    const size_t high = IsBigEndian(encoding) ? 0 : 1;
    for (size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<UniChar>(bytes[2 * i + high] << 8 | bytes[2 * i + 1 - high]);
    std::span<const UniChar> text(units);
    if (mark == ByteOrderMark::kObey && !units.empty()) {
        if (units[0] == kSwappedByteOrderMark && encoding == kCFStringEncodingUTF16)
            std::transform(units.begin(), units.end(), units.begin(), Swapped);
        text = text.subspan(units[0] == kByteOrderMark ? 1 : 0);
    }
    return DecodeUtf16(text);
}

}  // namespace

bool IsUtf16(CFStringEncoding encoding) noexcept {
    return encoding == kCFStringEncodingUTF16 || encoding == kCFStringEncodingUTF16BE ||
           encoding == kCFStringEncodingUTF16LE;
}

CFIndex MaximumBytesPerUnit(CFStringEncoding encoding) noexcept {
    switch (encoding) {
        case kCFStringEncodingUTF8:
            return 3;
        case kCFStringEncodingUTF16:
        case kCFStringEncodingUTF16BE:
        case kCFStringEncodingUTF16LE:
            return 2;
        case kCFStringEncodingASCII:
        case kCFStringEncodingISOLatin1:
            return 1;
        default:
            return 0;
    }
}

std::optional<std::string> Decode(std::span<const UInt8> bytes, CFStringEncoding encoding,
                                  ByteOrderMark mark) {
    switch (encoding) {
        case kCFStringEncodingUTF8:
            return DecodeUtf8(bytes, mark);
        case kCFStringEncodingASCII:
            return DecodeAscii(bytes);
        case kCFStringEncodingISOLatin1:
            return DecodeLatin1(bytes);
        default:
            return IsUtf16(encoding) ? DecodeUtf16Bytes(bytes, encoding, mark) : std::nullopt;
    }
}

std::optional<std::string> DecodeUtf16(std::span<const UniChar> units) {
    try {
        std::string text;
        text.reserve(units.size());
        utf8::utf16to8(units.begin(), units.end(), std::back_inserter(text));
        return text;
    } catch (const utf8::exception&) {
        return std::nullopt;
    }
}

EncodedCharacter Encode(char32_t character, CFStringEncoding encoding) noexcept {
    EncodedCharacter result;
    const auto append = [&](char32_t byte) { result.bytes[result.size++] = static_cast<UInt8>(byte); };
    const auto appendUnit = [&](char32_t unit) {
        const bool big = IsBigEndian(encoding);
        append(big ? unit >> 8 : unit & 0xFF);
        append(big ? unit & 0xFF : unit >> 8);
    };
    if (encoding == kCFStringEncodingUTF8) {
        const auto* end = utf8::unchecked::append(character, result.bytes.data());
        result.size = static_cast<size_t>(end - result.bytes.data());
    } else if (IsUtf16(encoding) && character > 0xFFFF) {
        appendUnit(0xD7C0 + (character >> 10));
        appendUnit(0xDC00 + (character & 0x3FF));
    } else if (IsUtf16(encoding)) {
        appendUnit(character);
    } else if (character < (encoding == kCFStringEncodingASCII ? 0x80U : 0x100U)) {
        append(character);
    }
    return result;
}

}  // namespace corefoundation
