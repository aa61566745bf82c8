#include "PdfFont.h"

#include <algorithm>

#include "StringConversion.h"

namespace documents {
namespace {

using Object = QPDFObjectHandle;

/// Names are UTF-8 today and were any bytes once, which read as Latin-1 then.
std::string TextOf(const std::string& bytes) {
    if (IsValidUtf8(bytes))
        return bytes;
    std::u16string units;
    for (const char byte : bytes)
        units.push_back(static_cast<unsigned char>(byte));
    return Utf16ToUtf8(units);
}

/// "ABCDEF+", in front of the name of a font of which a part is embedded.
bool HasSubsetTag(std::string_view name) {
    constexpr size_t kLength = 6;
    return name.size() > kLength && name[kLength] == '+' &&
           std::all_of(name.begin(), name.begin() + kLength,
                       [](char each) { return each >= 'A' && each <= 'Z'; });
}

std::string FontName(Object name) {
    return name.isName() ? WithoutSubsetTags(TextOf(name.getName().substr(1))) : "";
}

/// The font that has the glyphs: what a composite font is composed of.
Object SimpleFont(Object font) {
    const Object descendants = font.getKeyIfDict("/DescendantFonts");
    return Object(descendants).isArray() ? Object(descendants).getArrayItem(0) : font;
}

bool IsEmbedded(Object descriptor) {
    for (const char* file : {"/FontFile", "/FontFile2", "/FontFile3"}) {
        if (!descriptor.getKeyIfDict(file).isNull())
            return true;
    }
    return false;
}

/// A TrueType font without a PostScript name stands as "Family,Style" (ISO 32000-1, 9.6.3).
void SplitTrueTypeName(DocumentFont& font) {
    const size_t comma = font.postScriptName.find(',');
    if (comma == std::string::npos || comma == 0 || !font.family.empty())
        return;
    font.family = font.postScriptName.substr(0, comma);
    font.style = font.postScriptName.substr(comma + 1);
}

}  // namespace

std::string WithoutSubsetTags(std::string name) {
    while (HasSubsetTag(name))
        name.erase(0, name.find('+') + 1);
    return name;
}

DocumentFont FontOf(const Object& dictionary) {
    Object font = SimpleFont(dictionary);
    Object descriptor = font.getKeyIfDict("/FontDescriptor");
    Object family = descriptor.getKeyIfDict("/FontFamily");
    DocumentFont result;
    result.postScriptName = FontName(font.getKeyIfDict("/BaseFont"));
    if (result.postScriptName.empty())
        result.postScriptName = FontName(descriptor.getKeyIfDict("/FontName"));
    if (family.isString())
        result.family = family.getUTF8Value();
    result.isEmbedded = IsEmbedded(descriptor);
    SplitTrueTypeName(result);
    return result;
}

bool IsType3(Object font) {
    Object subtype = font.getKeyIfDict("/Subtype");
    return subtype.isName() && subtype.getName() == "/Type3";
}

}  // namespace documents
