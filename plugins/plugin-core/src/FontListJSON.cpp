#include "FontListJSON.h"

#include <CoreFoundation++/CFRef.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "GJSONUtils.h"

namespace {

using nlohmann::json;

// A font record is three levels deep; what lies deeper than this is nothing that the font manager knows.
constexpr int kNestingLimit = 32;

CFRef<CFTypeRef> ObjectFromJSON(const json& value, int depth);

CFRef<CFDictionaryRef> DictionaryFromJSON(const json& object, int depth) {
    const CFRef<CFMutableDictionaryRef> dictionary = cf::MutableDictionary();
    for (const auto& [key, value] : object.items())
        cf::Set(dictionary, key, ObjectFromJSON(value, depth + 1));
    return dictionary;
}

CFRef<CFArrayRef> ArrayFromJSON(const json& values, int depth) {
    const CFRef<CFMutableArrayRef> array = cf::MutableArray();
    for (const json& value : values)
        cf::Append(array, ObjectFromJSON(value, depth + 1));
    return array;
}

/// The matching CoreFoundation object; nothing for null and for what is nested too deep.
CFRef<CFTypeRef> ObjectFromJSON(const json& value, int depth) {
    if (depth > kNestingLimit)
        return nullptr;
    switch (value.type()) {
        case json::value_t::string:
            return cf::Object(value.get_ref<const std::string&>());
        case json::value_t::boolean:
            return cf::Object(value.get<bool>());
        case json::value_t::number_integer:
            return cf::Object(value.get<int64_t>());
        case json::value_t::number_unsigned:
            if (value.get<uint64_t>() <= static_cast<uint64_t>(std::numeric_limits<int64_t>::max()))
                return cf::Object(value.get<int64_t>());
            return cf::Object(value.get<double>());
        case json::value_t::number_float:
            return cf::Object(value.get<double>());
        case json::value_t::object:
            return DictionaryFromJSON(value, depth);
        case json::value_t::array:
            return ArrayFromJSON(value, depth);
        default:
            return nullptr;
    }
}

json JSONFromObject(CFTypeRef object, int depth);

void AddMember(const void* key, const void* value, void* context) {
    auto& [members, depth] = *static_cast<std::pair<json, int>*>(context);
    members[cf::ToUtf8(cf::As<CFStringRef>(static_cast<CFTypeRef>(key)))] =
        JSONFromObject(static_cast<CFTypeRef>(value), depth + 1);
}

json JSONFromNumber(CFNumberRef number) {
    if (!CFNumberIsFloatType(number))
        return cf::ToInt64(number).value_or(0);
    return cf::ToDouble(number).value_or(0);
}

json JSONFromArray(CFArrayRef array, int depth) {
    json elements = json::array();
    for (CFIndex index = 0; index < CFArrayGetCount(array); ++index)
        elements.push_back(JSONFromObject(CFArrayGetValueAtIndex(array, index), depth + 1));
    return elements;
}

json JSONFromObject(CFTypeRef object, int depth) {
    if (depth > kNestingLimit)
        return nullptr;
    if (const auto text = cf::As<CFStringRef>(object))
        return cf::ToUtf8(text);
    if (const auto number = cf::As<CFNumberRef>(object))
        return JSONFromNumber(number);
    if (const auto boolean = cf::As<CFBooleanRef>(object))
        return CFBooleanGetValue(boolean) != 0;
    if (const auto array = cf::As<CFArrayRef>(object))
        return JSONFromArray(array, depth);
    if (const auto dictionary = cf::As<CFDictionaryRef>(object)) {
        std::pair<json, int> members{json::object(), depth};
        CFDictionaryApplyFunction(dictionary, AddMember, &members);
        return std::move(members.first);
    }
    return nullptr;
}

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
            cf::Append(fonts, DictionaryFromJSON(fontObject, 0));
    }
    return CoreErrorCodes::kSuccess;
}

ErrorCode FontsToJSON(CFArrayRef fonts, std::string& text) {
    constexpr int kListDepth = -1;  // each font is the root of its record
    return GJSONUtils::Serialise(JSONFromArray(fonts, kListDepth), text);
}
