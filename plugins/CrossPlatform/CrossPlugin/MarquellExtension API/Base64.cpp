#include "Base64.h"

#include <cstdint>

namespace {
constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr size_t kBytesOfLine = 57;  // 76 characters
}  // namespace

std::string Base64Lines(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4 + bytes.size() / kBytesOfLine + 1);
    for (size_t at = 0; at < bytes.size(); at += 3) {
        const std::string_view group = bytes.substr(at, 3);
        uint32_t bits = 0;
        for (size_t index = 0; index < 3; ++index)
            bits = bits << 8 | (index < group.size() ? static_cast<unsigned char>(group[index]) : 0);
        for (size_t index = 0; index < 4; ++index)
            text += index <= group.size() ? kAlphabet[bits >> (18 - 6 * index) & 0x3F] : '=';
        if ((at + 3) % kBytesOfLine == 0 || at + 3 >= bytes.size())
            text += '\n';
    }
    return text;
}
