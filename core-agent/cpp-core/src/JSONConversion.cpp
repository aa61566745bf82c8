#include "JSONConversion.h"

#include <nlohmann/json.hpp>
#include <vector>

#include "StringConversion.h"

namespace {

using nlohmann::json;

json FromNumber(CFNumberRef number, WholeNumbers wholeNumbers) {
    const auto whole = cf::ToInt64(number);
    if (whole && (wholeNumbers == WholeNumbers::kAsIntegers || !CFNumberIsFloatType(number)))
        return *whole;
    return cf::ToDouble(number).value_or(0);
}

json FromArray(CFArrayRef array, int deepest, WholeNumbers wholeNumbers) {
    json elements = json::array();
    for (const CFTypeRef element : cf::Elements<CFTypeRef>(array))
        elements.push_back(JSONFromCF(element, deepest - 1, wholeNumbers));
    return elements;
}

json FromDictionary(CFDictionaryRef dictionary, int deepest, WholeNumbers wholeNumbers) {
    const auto count = static_cast<size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
    json members = json::object();
    for (size_t index = 0; index < count; ++index) {
        if (const auto key = cf::As<CFStringRef>(keys[index]))
            members[cf::ToUtf8(key)] = JSONFromCF(values[index], deepest - 1, wholeNumbers);
    }
    return members;
}

CFRef<CFTypeRef> ToArray(const json& values, int deepest) {
    const CFRef<CFMutableArrayRef> array = cf::MutableArray();
    for (const json& value : values)
        cf::Append(array, CFFromJSON(value, deepest - 1));
    return array;
}

CFRef<CFTypeRef> ToDictionary(const json& members, int deepest) {
    const CFRef<CFMutableDictionaryRef> dictionary = cf::MutableDictionary();
    for (const auto& [key, value] : members.items())
        cf::Set(dictionary, ReplaceInvalidUtf8(key), CFFromJSON(value, deepest - 1));
    return dictionary;
}

}  // namespace

json JSONFromCF(CFTypeRef object, int deepest, WholeNumbers wholeNumbers) {
    if (deepest < 0)
        return nullptr;
    if (const auto text = cf::As<CFStringRef>(object))
        return cf::ToUtf8(text);
    if (const auto number = cf::As<CFNumberRef>(object))
        return FromNumber(number, wholeNumbers);
    if (const auto boolean = cf::As<CFBooleanRef>(object))
        return CFBooleanGetValue(boolean) != 0;
    if (const auto array = cf::As<CFArrayRef>(object))
        return FromArray(array, deepest, wholeNumbers);
    if (const auto dictionary = cf::As<CFDictionaryRef>(object))
        return FromDictionary(dictionary, deepest, wholeNumbers);
    return nullptr;
}

CFRef<CFTypeRef> CFFromJSON(const json& value, int deepest) {
    if (deepest < 0)
        return nullptr;
    switch (value.type()) {
        case json::value_t::string:
            return cf::Object(ReplaceInvalidUtf8(value.get_ref<const std::string&>()));
        case json::value_t::boolean:
            return cf::Object(value.get<bool>());
        case json::value_t::number_integer:
            return cf::Object(value.get<int64_t>());
        case json::value_t::number_unsigned:
            if (!std::in_range<int64_t>(value.get<uint64_t>()))
                return cf::Object(value.get<double>());
            return cf::Object(value.get<int64_t>());
        case json::value_t::number_float:
            return cf::Object(value.get<double>());
        case json::value_t::array:
            return ToArray(value, deepest);
        case json::value_t::object:
            return ToDictionary(value, deepest);
        default:
            return nullptr;
    }
}
