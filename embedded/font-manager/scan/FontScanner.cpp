#include "scan/FontScanner.h"

#include "scan/FreeTypeFace.h"

#include FT_FONT_FORMATS_H
#include FT_MULTIPLE_MASTERS_H
#include FT_TRUETYPE_TABLES_H
#include FT_TRUETYPE_TAGS_H

#include <algorithm>
#include <array>
#include <string_view>

#include "GFontManagerConstants.h"
#include "common/Limits.h"
#include "scan/FontNames.h"

namespace pellwick {
namespace {

using Kinds = GFontManagerConstants;

constexpr std::array<std::string_view, 7> kFontExtensions = {".ttf", ".otf", ".ttc",  ".otc",
                                                             ".pfb", ".pfa", ".dfont"};

bool HasTable(FT_Face face, FT_ULong tag) {
    FT_ULong size = 0;
    return FT_Load_Sfnt_Table(face, tag, 0, nullptr, &size) == 0;
}

/// OpenType is what has layout tables or PostScript outlines; plain TrueType has neither.
int32_t KindOfSfnt(FT_Face face, bool hasPostScriptOutlines) {
    if (hasPostScriptOutlines)
        return Kinds::kFontKind_openTypePS;
    if (face->num_faces > 1)
        return Kinds::kFontKind_trueTypeCollection;
    const bool hasLayout =
        HasTable(face, FT_MAKE_TAG('G', 'S', 'U', 'B')) || HasTable(face, FT_MAKE_TAG('G', 'P', 'O', 'S'));
    return hasLayout ? Kinds::kFontKind_openTypeTT : Kinds::kFontKind_trueType;
}

int32_t KindOf(FT_Face face) {
    const char* format = FT_Get_Font_Format(face);
    const std::string_view name = format != nullptr ? format : "";
    if (FT_IS_SFNT(face))
        return KindOfSfnt(face, name == "CFF");
    if (name == "Type 1")
        return FT_HAS_MULTIPLE_MASTERS(face) ? Kinds::kFontKind_postScriptMM : Kinds::kFontKind_postScript;
    if (name == "CID Type 1")
        return Kinds::kFontKind_cid;
    return Kinds::kFontKind_outline;
}

/// The vendor of the OS/2 table, four characters at most.
std::string FoundryOf(FT_Face face) {
    const auto* table = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (table == nullptr || table->version == 0xFFFF)
        return {};
    return CleanName(std::string(reinterpret_cast<const char*>(table->achVendID), 4).c_str());
}

/// The style of a variable font's named instance, counted from 1; empty when it is not named.
std::string InstanceStyle(FT_Library library, FT_Face face, FT_Long instance) {
    FT_MM_Var* variations = nullptr;
    if (FT_Get_MM_Var(face, &variations) != 0)
        return {};
    std::string style;
    if (instance <= static_cast<FT_Long>(variations->num_namedstyles))
        style = ReadName(face, variations->namedstyle[instance - 1].strid);
    FT_Done_MM_Var(library, variations);
    return style;
}

std::string FirstNonEmpty(std::initializer_list<std::string> names) {
    const auto* found =
        std::find_if(names.begin(), names.end(), [](const auto& name) { return !name.empty(); });
    return found != names.end() ? *found : std::string();
}

std::string PostScriptNameOf(FT_Face face, const FontFace& names) {
    const char* name = FT_Get_Postscript_Name(face);
    std::string clean = CleanName(name != nullptr ? name : "");
    if (!clean.empty())
        return clean;
    clean = names.family + "-" + names.style;  // as those do that make up what the font lacks
    clean.erase(std::remove(clean.begin(), clean.end(), ' '), clean.end());
    return clean;
}

/// "Family Style" in the typographic and in the older four-style way, and the full name; the regular style
/// goes without saying.
void AddLookupNames(FT_Face face, bool isInstance, FontFace& names) {
    names.lookupNames = {names.family + names.style, names.fullName};
    if (names.style == "Regular")
        names.lookupNames.push_back(names.family);
    const std::string olderFamily = ReadName(face, kName_Family);
    if (!isInstance && !olderFamily.empty())
        names.lookupNames.push_back(olderFamily + ReadName(face, kName_Style));
}

FontFace Describe(FT_Library library, FT_Face face, FT_Long faceIndex) {
    const FT_Long instance = faceIndex >> 16;
    FontFace names;
    names.face = faceIndex;
    names.family = FirstNonEmpty({ReadName(face, kName_TypographicFamily), ReadName(face, kName_Family),
                                  CleanName(face->family_name != nullptr ? face->family_name : "")});
    if (instance > 0)
        names.style = InstanceStyle(library, face, instance);
    names.style =
        FirstNonEmpty({names.style, ReadName(face, kName_TypographicStyle), ReadName(face, kName_Style),
                       CleanName(face->style_name != nullptr ? face->style_name : ""), "Regular"});
    names.postScriptName = PostScriptNameOf(face, names);
    if (instance == 0)
        names.fullName = ReadName(face, kName_Full);
    if (names.fullName.empty())
        names.fullName = names.family + " " + names.style;
    names.foundry = FoundryOf(face);
    names.version = ReadName(face, kName_Version);
    names.kind = KindOf(face);
    AddLookupNames(face, instance > 0, names);
    return names;
}

/// Whether the content begins like a font: TrueType, OpenType, a collection, PostScript as text or in
/// segments.
bool HasFontSignature(std::string_view content) {
    using namespace std::literals;
    constexpr std::array<std::string_view, 8> kSignatures = {"\0\1\0\0"sv,   "true"sv,    "typ1"sv,
                                                             "OTTO"sv,       "ttcf"sv,    "%!PS-AdobeFont"sv,
                                                             "%!FontType"sv, "\x80\x01"sv};
    return std::any_of(kSignatures.begin(), kSignatures.end(), [&](std::string_view signature) {
        return content.substr(0, signature.size()) == signature;
    });
}

/// Why FreeType would not have it, in words of the user's. Its own codes depend on which of its drivers gave
/// up last.
const char* ReasonFor(std::string_view content) {
    return HasFontSignature(content) ? kReason_Damaged : "not a font file";
}

/// FreeType opens a face whose outlines it cannot read; a font of which no glyph loads is of no use.
bool HasUsableGlyphs(FT_Face face) {
    return face->num_glyphs > 0 && FT_Load_Glyph(face, 0, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING) == 0;
}

/// WOFF and WOFF2 (https://www.w3.org/TR/WOFF2/) are packed for browsers; host applications do not take them.
bool IsWebFont(std::string_view content) {
    return content.substr(0, 4) == "wOFF" || content.substr(0, 4) == "wOF2";
}

const char* ProblemOf(FT_Face face) {
    if (!FT_IS_SCALABLE(face))
        return "a bitmap font, which documents cannot use";
    return HasUsableGlyphs(face) ? nullptr : kReason_Damaged;
}

}  // namespace

void FontScanner::Closer::operator()(FT_Library library) const {
    FT_Done_FreeType(library);
}

FontScanner::FontScanner() {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0)
        throw std::bad_alloc();
    mLibrary.reset(library);
}

FontScanner::~FontScanner() = default;

std::vector<FontFace> FontScanner::Scan(const std::string& content, std::string& reason) {
    std::vector<FontFace> faces;
    if (IsWebFont(content)) {
        reason = "a web font, which documents cannot use";
        return {};
    }
    FT_Long faceCount = 1;
    for (FT_Long index = 0; index < faceCount; ++index) {
        FT_Error error = 0;
        const OwnedFace face = OpenFace(mLibrary.get(), content, index, error);
        const char* problem = face ? ProblemOf(face.get()) : ReasonFor(content);
        if (problem != nullptr) {
            reason = problem;
            return {};
        }
        faceCount = std::min(face->num_faces, kMaxFacesPerFile);
        faces.push_back(Describe(mLibrary.get(), face.get(), index));
        const FT_Long instances = std::min<FT_Long>(face->style_flags >> 16 & 0x7FFF, kMaxInstancesPerFace);
        for (FT_Long instance = 1; instance <= instances; ++instance) {
            const FT_Long instanceIndex = index | instance << 16;
            if (const OwnedFace named = OpenFace(mLibrary.get(), content, instanceIndex, error))
                faces.push_back(Describe(mLibrary.get(), named.get(), instanceIndex));
        }
    }
    return faces;
}

std::string FontFileExtension(const std::string& fileName, const std::vector<FontFace>& faces) {
    const size_t dot = fileName.rfind('.');
    std::string extension = dot != std::string::npos ? fileName.substr(dot) : std::string();
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 'a' - 'A') : character;
    });
    if (std::find(kFontExtensions.begin(), kFontExtensions.end(), extension) != kFontExtensions.end())
        return extension;
    switch (faces.empty() ? Kinds::kFontKind_unknown : faces.front().kind) {
        case Kinds::kFontKind_openTypePS:
            return ".otf";
        case Kinds::kFontKind_trueTypeCollection:
            return ".ttc";
        case Kinds::kFontKind_postScript:
        case Kinds::kFontKind_postScriptMM:
            return ".pfb";
        default:
            return ".ttf";
    }
}

}  // namespace pellwick
