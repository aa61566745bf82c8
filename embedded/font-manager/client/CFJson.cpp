#include "client/CFJson.h"

#include <nlohmann/json.hpp>
#include <vector>

#include "StringConversion.h"
#include "TarnwickPluginInterface.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

Json FromObject(CFTypeRef object, int depth);

Json FromArray(CFArrayRef array, int depth) {
    Json values = Json::array();
    for (CFIndex index = 0; index < CFArrayGetCount(array); ++index)
        values.push_back(FromObject(CFArrayGetValueAtIndex(array, index), depth + 1));
    return values;
}

Json FromDictionary(CFDictionaryRef dictionary, int depth) {
    const auto count = static_cast<size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
    Json members = Json::object();
    for (size_t index = 0; index < count; ++index) {
        if (const auto key = cf::As<CFStringRef>(keys[index]))
            members[cf::ToUtf8(key)] = FromObject(values[index], depth + 1);
    }
    return members;
}

Json FromNumber(CFNumberRef number) {
    if (const auto whole = cf::ToInt64(number))
        return *whole;
    return cf::ToDouble(number).value_or(0);
}

Json FromObject(CFTypeRef object, int depth) {
    if (object == nullptr || depth >= kMaxMessageDepth / 2)  // the rest is for the message around it
        return nullptr;
    if (const auto string = cf::As<CFStringRef>(object))
        return cf::ToUtf8(string);
    if (const auto number = cf::As<CFNumberRef>(object))
        return FromNumber(number);
    if (const auto boolean = cf::As<CFBooleanRef>(object))
        return CFBooleanGetValue(boolean) != 0;
    if (const auto array = cf::As<CFArrayRef>(object))
        return FromArray(array, depth);
    if (const auto dictionary = cf::As<CFDictionaryRef>(object))
        return FromDictionary(dictionary, depth);
    return nullptr;
}

CFRef<CFTypeRef> ArrayFrom(const Json& values) {
    const auto array = cf::MutableArray();
    for (const Json& value : values)
        cf::Append(array, CFFromJson(value));
    return array;
}

CFRef<CFTypeRef> DictionaryFrom(const Json& members) {
    const auto dictionary = cf::MutableDictionary();
    for (const auto& [key, value] : members.items())
        cf::Set(dictionary, ReplaceInvalidUtf8(key), CFFromJson(value));
    return dictionary;
}

}  // namespace

Json JsonFromCF(CFTypeRef object) {
    return FromObject(object, 0);
}

CFRef<CFTypeRef> CFFromJson(const Json& value) {
    switch (value.type()) {
        case Json::value_t::string:
            return cf::String(ReplaceInvalidUtf8(value.get_ref<const std::string&>()));
        case Json::value_t::boolean:
            return RetainCF<CFTypeRef>(cf::Bool(value.get<bool>()));
        case Json::value_t::number_integer:
        case Json::value_t::number_unsigned:
            return cf::Number(value.get<int64_t>());
        case Json::value_t::number_float:
            return cf::RealNumber(value.get<double>());
        case Json::value_t::array:
            return ArrayFrom(value);
        case Json::value_t::object:
            return DictionaryFrom(value);
        default:
            return nullptr;
    }
}

void AddPreviews(CFMutableDictionaryRef dictionary, const Json& previews) {
    for (const Json& preview : previews) {
        const auto paths = cf::MutableDictionary();
        for (const char* key : {kGS_PNGFilenameKey, kGS_2xPNGFilenameKey})
            cf::Set(paths, key, StringMember(preview, key));
        CFDictionarySetValue(dictionary, cf::Number(IntegerMember(preview, member::kFont)).get(),
                             paths.get());
    }
}

void AppendJson(CFMutableArrayRef array, const Json& values) {
    if (array == nullptr || !values.is_array())
        return;
    for (const Json& value : values)
        cf::Append(array, CFFromJson(value));
}

}  // namespace pellwick
