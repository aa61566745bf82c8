#include "FontListJSON.h"

#include <nlohmann/json.hpp>

#include "GJSONUtils.h"
#include "JSONConversion.h"

namespace {

using nlohmann::json;

// A font record is three levels deep; what lies deeper than this is nothing that the font manager knows.
constexpr int kNestingLimit = 32;

/// The array of fonts within the document, or null.
const json* FontArray(const json& document, FontListForm form) {
    if (document.is_array())
        return &document;
    if (form != FontListForm::kArrayOrObject || !document.is_object())
        return nullptr;
    const auto member = document.find("DocumentFonts");
    return member != document.end() && member->is_array() ? &*member : nullptr;
}

}  // namespace

ErrorCode AppendFontsFromJSON(const std::string& text, FontListForm form, CFMutableArrayRef fonts) {
    json document;
    if (const ErrorCode code = GJSONUtils::Parse(text, document))
        return code;
    const json* fontObjects = FontArray(document, form);
    if (fontObjects == nullptr)
        return CoreErrorCodes::kInvalidParam;
    for (const json& fontObject : *fontObjects) {
        if (fontObject.is_object())
            cf::Append(fonts, CFFromJSON(fontObject, kNestingLimit));
    }
    return CoreErrorCodes::kSuccess;
}

ErrorCode FontsToJSON(CFArrayRef fonts, std::string& text) {
    constexpr int kListNestingLimit = kNestingLimit + 1;
    return GJSONUtils::Serialise(JSONFromCF(fonts, kListNestingLimit, WholeNumbers::kAsTheyAre), text);
}
