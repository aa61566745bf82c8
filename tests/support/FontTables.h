// Fonts by their tables (ISO/IEC 14496-22).
#pragma once

#include <cstdint>
#include <map>

#include "TestFonts.h"

class Bytes {
public:
    Bytes& U8(unsigned value) {
        mText += static_cast<char>(value & 0xFF);
        return *this;
    }
    Bytes& U16(unsigned value) { return U8(value >> 8).U8(value); }
    Bytes& U32(uint32_t value) { return U16(value >> 16).U16(value & 0xFFFF); }
    Bytes& Zeros(size_t count) {
        mText.append(count, '\0');
        return *this;
    }
    Bytes& Text(const std::string& text) {
        mText += text;
        return *this;
    }
    const std::string& Get() const { return mText; }

private:
    std::string mText;
};

using FontTables = std::map<std::string, std::string>;

FontTables TablesOfTestFont(const TestFontNames& names);

/// The font as it stands at an offset of a file.
std::string FontOfTables(const FontTables& tables, uint32_t offset = 0);
