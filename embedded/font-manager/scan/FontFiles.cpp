#include "scan/FontFiles.h"

#include <algorithm>
#include <array>

#include "GFontManagerConstants.h"
#include "StringConversion.h"

namespace pellwick {
namespace {

using Kinds = GFontManagerConstants;

constexpr std::array<std::string_view, 7> kFontExtensions = {".ttf", ".otf", ".ttc",  ".otc",
                                                             ".pfb", ".pfa", ".dfont"};

}  // namespace

bool MayBeFontFile(std::string_view beginning) {
    using namespace std::literals;
    // TrueType, OpenType, collections, PostScript as text or in segments, resources of a Macintosh, and what
    // browsers take, of which the scanner says so.
    constexpr std::array<std::string_view, 13> kSignatures = {"\0\1\0\0"sv,
                                                              "true"sv,
                                                              "typ1"sv,
                                                              "OTTO"sv,
                                                              "ttcf"sv,
                                                              "%!PS-AdobeFont"sv,
                                                              "%!FontType"sv,
                                                              "%!PS-Adobe-3.0 R"sv,
                                                              "%!PS-TrueTypeFon"sv,
                                                              "\x80\x01"sv,
                                                              "\0\0\1\0"sv,
                                                              "wOFF"sv,
                                                              "wOF2"sv};
    return std::any_of(kSignatures.begin(), kSignatures.end(),
                       [&](std::string_view signature) { return beginning.starts_with(signature); });
}

std::string FontFileExtension(const std::string& fileName, const std::vector<FontFace>& faces) {
    const size_t dot = fileName.rfind('.');
    std::string extension = AsciiLowerCase(dot != std::string::npos ? fileName.substr(dot) : "");
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
