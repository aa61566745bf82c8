#include "GFontManagerConstants.h"

#include "FailureReport.h"

namespace {

constexpr char kLogCategory[] = "GFontManagerConstants";

struct FontKind {
    int32_t code;
    const char* name;
};

constexpr FontKind kFontKinds[] = {
#define FONT_KIND_ROW(constant, code, name) {code, name},
    FONT_KINDS(FONT_KIND_ROW)
#undef FONT_KIND_ROW
};

}  // namespace

const char* GFontManagerConstants::FontKindToName(int32_t kind) {
    for (const FontKind& row : kFontKinds) {
        if (row.code == kind)
            return row.name;
    }
    return kFontKinds[0].name;
}

int32_t GFontManagerConstants::FontKindFromRecord(std::string_view name) {
    if (name.empty())
        return kFontKind_unknown;
    if (name == "OpenType")
        return kFontKind_openTypeTT;
    return name == "Postscript" ? kFontKind_postScript : FontKindFromName(name);
}

int32_t GFontManagerConstants::FontKindFromName(std::string_view name) {
    for (const FontKind& row : kFontKinds) {
        if (name == row.name)
            return row.code;
    }
    ReportFailure(kLogCategory, CheckLocation{"Unsupported font type", __FILE__, __LINE__},
                  CoreErrorCodes::kNotSupported, GLogger::kDebug);
    return kFontKind_unknown;
}
