#include "TestFonts.h"

#include "FontTables.h"

namespace {

constexpr unsigned kGlyphCount = 2;
constexpr unsigned kUnitsPerEm = 1000;
constexpr unsigned kAdvance = 600;

std::string Utf16(const std::string& ascii) {
    Bytes text;
    for (const char character : ascii)
        text.U16(static_cast<unsigned char>(character));
    return text.Get();
}

std::string Glyph() {
    Bytes glyph;
    glyph.U16(1).U16(0).U16(0).U16(500).U16(500);  // one contour in its box
    glyph.U16(3).U16(0);                           // ends at point 3; no instructions
    glyph.U8(1).U8(1).U8(1).U8(1);                 // four points on the curve
    glyph.U16(0).U16(500).U16(0).U16(0xFE0C);      // x: 0, 500, 500, 0
    glyph.U16(0).U16(0).U16(500).U16(0);           // y: 0, 0, 500, 500
    return glyph.Get();
}

std::string Head() {
    Bytes head;
    head.U32(0x00010000).U32(0x00010000).U32(0).U32(0x5F0F3CF5).U16(3).U16(kUnitsPerEm).Zeros(16);
    head.U16(0).U16(0).U16(500).U16(500).U16(0).U16(8).U16(2).U16(1).U16(0);  // 1: long offsets in loca
    return head.Get();
}

std::string Hhea() {
    Bytes hhea;
    hhea.U32(0x00010000).U16(800).U16(0xFF38).U16(0).U16(kAdvance).U16(0).U16(0).U16(500).U16(1);
    return hhea.Zeros(14).U16(kGlyphCount).Get();
}

/// The letter A is glyph 1.
std::string Cmap() {
    Bytes cmap;
    cmap.U16(0).U16(1).U16(3).U16(1).U32(12);
    cmap.U16(4).U16(32).U16(0).U16(4).U16(4).U16(1).U16(0);
    cmap.U16('A').U16(0xFFFF).U16(0).U16('A').U16(0xFFFF).U16(1 - 'A').U16(1).U16(0).U16(0);
    return cmap.Get();
}

std::string Os2(unsigned embedding) {
    Bytes os2;
    os2.U16(4).U16(500).U16(400).U16(5).U16(embedding).Zeros(22).Zeros(10).Zeros(16).Text("TEST");
    for (const unsigned value :
         {0x40u, 65u, 65u, 800u, 0xFF38u, 0u, 800u, 200u, 0u, 0u, 0u, 0u, 500u, 500u, 0u, 32u, 1u})
        os2.U16(value);
    return os2.Get();
}

std::string NameTable(const TestFontNames& names) {
    std::map<unsigned, std::string> texts = {{1, names.family},
                                             {2, names.style},
                                             {4, names.family + " " + names.style},
                                             {5, "Version " + names.version},
                                             {6, names.postScriptName},
                                             {13, names.licence},
                                             {14, names.licenceURL}};
    std::erase_if(texts, [](const auto& text) { return text.first > 6 && text.second.empty(); });
    Bytes records;
    std::string strings;
    for (const auto& [identifier, text] : texts) {
        const std::string encoded = Utf16(text);
        records.U16(3).U16(1).U16(0x409).U16(identifier);
        records.U16(static_cast<unsigned>(encoded.size())).U16(static_cast<unsigned>(strings.size()));
        strings += encoded;
    }
    const auto count = static_cast<unsigned>(texts.size());
    return Bytes().U16(0).U16(count).U16(6 + 12 * count).Text(records.Get()).Text(strings).Get();
}

uint32_t Checksum(const std::string& table) {
    uint32_t sum = 0;
    for (size_t index = 0; index < table.size(); ++index)
        sum += static_cast<uint32_t>(static_cast<unsigned char>(table[index])) << (24 - 8 * (index % 4));
    return sum;
}

}  // namespace

FontTables TablesOfTestFont(const TestFontNames& names) {
    const std::string glyph = Glyph();
    const auto size = static_cast<uint32_t>(glyph.size());
    Bytes maxp;
    maxp.U32(0x00010000).U16(kGlyphCount).U16(4).U16(1).Zeros(4).U16(1).Zeros(16);
    return {{"OS/2", Os2(names.embedding)},
            {"cmap", Cmap()},
            {"glyf", glyph + glyph},
            {"head", Head()},
            {"hhea", Hhea()},
            {"hmtx", Bytes().U16(kAdvance).U16(0).U16(kAdvance).U16(0).Get()},
            {"loca", Bytes().U32(0).U32(size).U32(2 * size).Get()},
            {"maxp", maxp.Get()},
            {"name", NameTable(names)},
            {"post", Bytes().U32(0x00030000).Zeros(28).Get()}};
}

std::string FontOfTables(const FontTables& tables, uint32_t offset) {
    const auto count = static_cast<unsigned>(tables.size());
    Bytes directory;
    directory.U32(0x00010000).U16(count).U16(128).U16(3).U16(count * 16 - 128);
    std::string content;
    for (const auto& [tag, table] : tables) {
        const auto position = static_cast<uint32_t>(offset + 12 + 16 * count + content.size());
        directory.Text(tag).U32(Checksum(table)).U32(position).U32(static_cast<uint32_t>(table.size()));
        content += table;
        content.append((4 - content.size() % 4) % 4, '\0');
    }
    return directory.Get() + content;
}

std::string MakeTestFont(const TestFontNames& names) {
    return FontOfTables(TablesOfTestFont(names));
}

std::string MakeTestFontCollection(const std::vector<TestFontNames>& fonts) {
    const auto count = static_cast<uint32_t>(fonts.size());
    Bytes header;
    header.Text("ttcf").U32(0x00010000).U32(count);
    std::string content;
    for (const TestFontNames& names : fonts) {
        const auto offset = static_cast<uint32_t>(12 + 4 * count + content.size());
        header.U32(offset);
        content += FontOfTables(TablesOfTestFont(names), offset);
    }
    return header.Get() + content;
}
