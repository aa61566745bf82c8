#include "HostileFonts.h"

#include "FontTables.h"

namespace hostile {
namespace {

// In letters that there are glyphs for.
const TestFontNames kNames{"AAAA", "AAAA", "AAAA"};

/// Faces that are all the same font.
std::string Collection(const FontTables& tables, unsigned faces) {
    const uint32_t offset = 12 + 4 * faces;
    Bytes header;
    header.Text("ttcf").U32(0x00010000).U32(faces);
    for (unsigned face = 0; face < faces; ++face)
        header.U32(offset);
    // A reader may expect so many bytes for each face at least.
    const std::string font = FontOfTables(tables, offset);
    return header.Text(font).Zeros(faces * 32).Get();
}

std::string NameTable(unsigned count, unsigned size) {
    Bytes table;
    table.U16(0).U16(count).U16(6 + 12 * count);
    for (unsigned index = 0; index < count; ++index)
        table.U16(3).U16(1).U16(0x409).U16(1).U16(size).U16(0);
    for (unsigned index = 0; index < size / 2; ++index)
        table.U16(1);  // a control character, of which nothing is left
    return table.Get();
}

std::string AxisTable(unsigned instances) {
    Bytes table;
    table.U32(0x00010000).U16(16).U16(2).U16(1).U16(20).U16(instances).U16(8);
    table.Text("wght").U32(100 << 16).U32(400 << 16).U32(900 << 16).U16(0).U16(1);
    for (unsigned index = 0; index < instances; ++index)
        table.U16(2).U16(0).U32(400 << 16);
    return table.Get();
}

/// Variations of none of the glyphs.
std::string VariationTable(unsigned glyphs) {
    Bytes table;
    table.U32(0x00010000).U16(1).U16(0).U32(20).U16(glyphs).U16(0).U32(20 + 2 * (glyphs + 1));
    return table.Zeros(2 * (glyphs + 1)).Get();
}

/// One that is ten times the next one.
std::string Composite(unsigned next) {
    constexpr unsigned kMoreComponents = 0x20;
    constexpr unsigned kOffsets = 0x02;
    Bytes glyph;
    glyph.U16(0xFFFF).U16(0).U16(0).U16(500).U16(500);
    for (unsigned component = 0; component < 10; ++component)
        glyph.U16(kOffsets | (component < 9 ? kMoreComponents : 0)).U16(next).U8(0).U8(0);
    return glyph.Get();
}

void SetU16(std::string& table, size_t offset, unsigned value) {
    table.replace(offset, 2, Bytes().U16(value).Get());
}

/// 4,096 names of 60,000 bytes that come to nothing, in each of 64 faces. 100 KB.
std::string ManyLongNames() {
    FontTables tables = TablesOfTestFont(kNames);
    tables["name"] = NameTable(4096, 60000);
    return Collection(tables, 64);
}

/// A glyph made of ten, each again of ten, eight deep: glyph 0, or that of the letter A, of no width. 5 KB.
std::string DeepGlyph(bool isLetter) {
    constexpr unsigned kDepth = 8;
    constexpr unsigned kGlyphs = kDepth + 3;  // 0, the letter, those below it, and an empty one at the end
    FontTables tables = TablesOfTestFont(kNames);
    const std::string square = tables["glyf"].substr(0, tables["glyf"].size() / 2);
    Bytes glyphs;
    Bytes offsets;
    for (unsigned glyph = 0; glyph < kGlyphs; ++glyph) {
        offsets.U32(static_cast<uint32_t>(glyphs.Get().size()));
        const bool isEmpty = glyph == kGlyphs - 1;  // or there would soon be too many points
        const bool isSquare = glyph == 0 && isLetter;
        glyphs.Text(isEmpty ? "" : isSquare ? square : Composite(glyph + 1));
    }
    offsets.U32(static_cast<uint32_t>(glyphs.Get().size()));
    tables["glyf"] = glyphs.Get();
    tables["loca"] = offsets.Get();
    tables["hmtx"] = std::string(4 * kGlyphs, '\0');
    SetU16(tables["hhea"], 34, kGlyphs);
    SetU16(tables["maxp"], 4, kGlyphs);
    SetU16(tables["maxp"], 28, 10);       // components
    SetU16(tables["maxp"], 30, kGlyphs);  // how deep
    return FontOfTables(tables);
}

}  // namespace

std::string Instances(unsigned faces, unsigned instances) {
    FontTables tables = TablesOfTestFont(kNames);
    tables["fvar"] = AxisTable(instances);
    tables["gvar"] = VariationTable(2);
    return Collection(tables, faces);
}

std::string MacintoshNames() {
    FontTables tables = TablesOfTestFont(kNames);
    Bytes table;
    table.U16(0).U16(1).U16(18).U16(1).U16(0).U16(0).U16(1).U16(4).U16(0).Text("Caf\x8E");
    tables["name"] = table.Get();
    return FontOfTables(tables);
}

std::vector<Font> All() {
    return {{"many long names", ManyLongNames()},
            {"many instances", Instances(256, 512)},
            {"deep glyph 0", DeepGlyph(false)},
            {"deep letter", DeepGlyph(true)}};
}

}  // namespace hostile
