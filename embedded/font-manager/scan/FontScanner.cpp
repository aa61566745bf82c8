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
#include "common/FontManagerLimits.h"
#include "scan/CleanName.h"
#include "scan/Fingerprint.h"
#include "scan/FontFiles.h"
#include "scan/FontNames.h"

namespace pellwick {
namespace {

using Kinds = GFontManagerConstants;

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

/// Of a PostScript font no flags and none set are the same; only flags that are set tell anything.
std::optional<uint16_t> EmbeddingOf(FT_Face face) {
    const auto* table = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    const bool hasTable = table != nullptr && table->version != 0xFFFF;
    const FT_UShort flags = FT_Get_FSType_Flags(face);
    return hasTable || flags != 0 ? std::optional<uint16_t>(flags) : std::nullopt;
}

/// The name identifiers of a variable font's named instances.
std::vector<unsigned> NamesOfInstances(FT_Library library, FT_Face face) {
    FT_MM_Var* variations = nullptr;
    if (FT_Get_MM_Var(face, &variations) != 0)
        return {};
    std::vector<unsigned> identifiers;
    const unsigned count = std::min(variations->num_namedstyles, kMaxInstancesPerFace);
    for (unsigned index = 0; index < count; ++index)
        identifiers.push_back(variations->namedstyle[index].strid);
    FT_Done_MM_Var(library, variations);
    return identifiers;
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
void AddLookupNames(const NameTable& table, bool isInstance, FontFace& names) {
    names.lookupNames = {names.family + names.style, names.fullName};
    if (names.style == "Regular")
        names.lookupNames.push_back(names.family);
    const std::string olderFamily = table.Find(kName_Family);
    if (!isInstance && !olderFamily.empty())
        names.lookupNames.push_back(olderFamily + table.Find(kName_Style));
}

/// `instanceStyle`: of a variable font's named instance that is set; empty when it is not named.
FontFace Describe(FT_Face face, const NameTable& table, FT_Long faceIndex, const std::string& instanceStyle) {
    const bool isInstance = faceIndex >> 16 != 0;
    FontFace names;
    names.face = faceIndex;
    names.family = FirstNonEmpty({table.Find(kName_TypographicFamily), table.Find(kName_Family),
                                  CleanName(face->family_name != nullptr ? face->family_name : "")});
    names.style = FirstNonEmpty({instanceStyle, table.Find(kName_TypographicStyle), table.Find(kName_Style),
                                 CleanName(face->style_name != nullptr ? face->style_name : ""), "Regular"});
    names.postScriptName = PostScriptNameOf(face, names);
    if (!isInstance)
        names.fullName = table.Find(kName_Full);
    if (names.fullName.empty())
        names.fullName = names.family + " " + names.style;
    names.foundry = FoundryOf(face);
    names.version = table.Find(kName_Version);
    names.kind = KindOf(face);
    AddLookupNames(table, isInstance, names);
    return names;
}

/// Why FreeType refused the file, in plain words. Its error codes depend on which of its drivers gave up
/// last.
const char* ReasonFor(std::string_view content) {
    return MayBeFontFile(content) ? kReason_Damaged : kReason_NoFont;
}

/// FreeType opens a face whose outlines it cannot read; a font of which no glyph loads is of no use.
/// A glyph made of others counts as one: the font decides how many these are.
bool HasUsableGlyphs(FT_Face face) {
    return face->num_glyphs > 0 && FT_Load_Glyph(face, 0, FT_LOAD_NO_RECURSE) == 0;
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

std::vector<FontFace> FontScanner::Scan(std::string_view content, std::string& reason) {
    std::vector<FontFace> faces;
    if (IsWebFont(content)) {
        reason = "a web font, which documents cannot use";
        return {};
    }
    size_t nameBudget = kMaxNameBytesPerFile;
    uint64_t tableBudget = kMaxTableBytesPerFile;
    FT_Long faceCount = 1;
    for (FT_Long index = 0; index < faceCount && faces.size() < kMaxFontsPerFile; ++index) {
        FT_Error error = 0;
        const OwnedFace face = OpenFace(mLibrary.get(), content, index, error);
        const char* problem = face ? ProblemOf(face.get()) : ReasonFor(content);
        if (problem != nullptr) {
            reason = problem;
            return {};
        }
        faceCount = std::min(face->num_faces, kMaxFacesPerFile);
        const NameTable names(face.get(), nameBudget);
        const size_t first = faces.size();
        const Fingerprint fingerprint = FingerprintOf(face.get(), tableBudget);
        faces.push_back(Describe(face.get(), names, index, {}));
        AddInstances(face.get(), names, index, faces);
        for (size_t each = first; each < faces.size(); ++each) {
            faces[each].glyphs = fingerprint.glyphs;
            faces[each].widths = fingerprint.widths;
        }
    }
    return faces;
}

FontLicence FontScanner::ReadLicence(std::string_view content, int64_t index) {
    FT_Error error = 0;
    size_t nameBudget = kMaxNameBytesPerFile;
    const OwnedFace face = OpenFace(mLibrary.get(), content, static_cast<FT_Long>(index), error);
    if (!face)
        return {};
    const NameTable names(face.get(), nameBudget);
    return {EmbeddingOf(face.get()), names.FindText(kName_Licence, kMaxLicenceSize),
            names.Find(kName_LicenceURL)};
}

void FontScanner::AddInstances(FT_Face face, const NameTable& names, FT_Long index,
                               std::vector<FontFace>& faces) {
    const std::vector<unsigned> identifiers = NamesOfInstances(mLibrary.get(), face);
    for (size_t instance = 1; instance <= identifiers.size() && faces.size() < kMaxFontsPerFile; ++instance) {
        if (FT_Set_Named_Instance(face, static_cast<FT_UInt>(instance)) == 0)
            faces.push_back(Describe(face, names, index | static_cast<FT_Long>(instance) << 16,
                                     names.Find(identifiers[instance - 1])));
    }
}

}  // namespace pellwick
