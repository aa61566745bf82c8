// The vocabulary of the font manager: kinds of fonts and modes of activation.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Kinds of fonts: X(constant, code, name).
#define FONT_KINDS(X)                               \
    X(kFontKind_unknown, 0, "--")                   \
    X(kFontKind_trueType, 1, "TrueType")            \
    X(kFontKind_postScript, 2, "PostScript")        \
    X(kFontKind_outline, 3, "Outline")              \
    X(kFontKind_openTypeTT, 4, "OpenType - TT")     \
    X(kFontKind_openTypePS, 5, "OpenType - PS")     \
    X(kFontKind_postScriptMM, 6, "PostScript - MM") \
    X(kFontKind_ocf, 7, "OCF")                      \
    X(kFontKind_cid, 8, "CID")                      \
    X(kFontKind_trueTypeCollection, 9, "TrueType Collection")

class GFontManagerConstants {
public:
#define FONT_KIND_CONSTANT(constant, code, name) static constexpr int32_t constant = code;
    FONT_KINDS(FONT_KIND_CONSTANT)
#undef FONT_KIND_CONSTANT

    /// The kind's name; "--" for a code that is not in the table. Any thread.
    static const char* FontKindToName(int32_t kind);
    /// The kind with that name (exact). Any other name is reported and answers kFontKind_unknown. Any thread.
    static int32_t FontKindFromName(std::string_view name);
    /// The same for the kind of a font record, which may also be called "OpenType", of the flavour that is
    /// preferred, or "Postscript". No name answers kFontKind_unknown and is not reported. Any thread.
    static int32_t FontKindFromRecord(std::string_view name);
};
