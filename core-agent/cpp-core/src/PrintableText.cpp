#include "PrintableText.h"

#include <algorithm>

#include <utf8.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "StringConversion.h"

namespace {

constexpr char32_t kNoCharacter = 0xFFFFFFFF;

/// Calls `take` with each character and its bytes; bytes that are not UTF-8 come one by one, as kNoCharacter.

template <class Take>
void ForEachCharacter(std::string_view text, const Take& take) {
    for (size_t at = 0; at < text.size();) {
        auto next = text.begin() + static_cast<std::ptrdiff_t>(at);
        char32_t character = kNoCharacter;
        size_t size = 1;
        if (static_cast<unsigned char>(*next) < 0x80) {
            character = static_cast<unsigned char>(*next);
        } else if (uint32_t point = 0;
                   utf8::internal::validate_next(next, text.end(), point) == utf8::internal::UTF8_OK) {
            character = point;
            size = static_cast<size_t>(next - text.begin()) - at;
        }
        take(character, text.substr(at, size));
        at += size;
    }
}

template <class... Arguments>
std::string Formatted(const char* format, Arguments... arguments) {
    char text[16];
    return {text, static_cast<size_t>(std::snprintf(text, sizeof text, format, arguments...))};
}

bool IsBlankCharacter(char32_t character) {
    return character == ' ' || character == 0xA0 || character == 0x1680 ||
           (character >= 0x2000 && character <= 0x200D) || character == 0x202F || character == 0x205F ||
           character == 0x2060 || character == 0x3000 || character == 0xFEFF;
}

}  // namespace

bool IsUnprintable(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F) ||      // controls
           character == 0x61C || character == 0x200E || character == 0x200F ||  // marks of direction
           (character >= 0x2028 && character <= 0x202E) ||                      // separators, embeddings
           (character >= 0x2066 && character <= 0x2069);                        // isolates
}

bool IsPlainText(std::string_view text) {
    bool isPlain = true;
    ForEachCharacter(text, [&](char32_t character, std::string_view) {
        isPlain = isPlain && character != kNoCharacter && !IsUnprintable(character);
    });
    return isPlain;
}

bool IsBlank(std::string_view text) {
    bool isBlank = true;
    ForEachCharacter(text, [&](char32_t character, std::string_view) {
        isBlank = isBlank && IsBlankCharacter(character);
    });
    return isBlank;
}

std::string PrintableText(std::string_view text) {
    std::string printable;
    printable.reserve(text.size());
    ForEachCharacter(text, [&](char32_t character, std::string_view bytes) {
        if (character == kNoCharacter || (character < 0x80 && IsUnprintable(character)))
            printable += Formatted("\\x%02X", static_cast<unsigned char>(bytes.front()));
        else if (IsUnprintable(character))
            printable += Formatted("\\u{%04X}", static_cast<unsigned>(character));
        else
            printable += bytes;
    });
    return printable;
}

std::string PrintableJson(std::string_view json) {
    std::string printable;
    printable.reserve(json.size());
    ForEachCharacter(json, [&](char32_t character, std::string_view bytes) {
        if (character == kNoCharacter)
            printable += "\\uFFFD";
        else if (IsUnprintable(character))  // none of them needs a pair of surrogates
            printable += Formatted("\\u%04X", static_cast<unsigned>(character));
        else
            printable += bytes;
    });
    return printable;
}

std::string WithoutUnprintables(std::string_view text) {
    std::string clean;
    const std::string valid = ReplaceInvalidUtf8(text);
    ForEachCharacter(valid, [&](char32_t character, std::string_view bytes) {
        if (!IsUnprintable(character))
            clean += bytes;
    });
    return clean;
}

size_t CountCodePoints(std::string_view text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string FirstBytes(std::string_view text, size_t size) {
    constexpr size_t kMaxFollowingBytes = 3;  // of one character
    if (text.size() <= size)
        return std::string(text);
    size_t end = size;
    while (end > 0 && size - end < kMaxFollowingBytes && (text[end] & 0xC0) == 0x80)
        --end;
    return std::string(text.substr(0, end));
}

std::string FirstCodePoints(std::string_view text, size_t count) {
    size_t length = 0;
    for (; length < text.size(); ++length) {
        if ((text[length] & 0xC0) != 0x80 && count-- == 0)
            break;
    }
    return std::string(text.substr(0, length));
}
