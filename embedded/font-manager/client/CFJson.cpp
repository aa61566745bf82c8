#include "client/CFJson.h"

#include <nlohmann/json.hpp>

#include "JSONConversion.h"
#include "TarnwickPluginInterface.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {

Json JsonFromCF(CFTypeRef object) {
    // The rest of the depth is for the message around it.
    return JSONFromCF(object, kMaxMessageDepth / 2 - 1, WholeNumbers::kAsIntegers);
}

Json IDsFromCF(CFArrayRef fonts) {
    Json ids = Json::array();
    for (const Json& font : JsonFromCF(fonts))
        ids.push_back(font.is_object() ? Json(IntegerMember(font, kGS_DatabaseIDKey)) : font);
    return ids;
}

CFRef<CFTypeRef> CFFromJson(const Json& value) {
    return CFFromJSON(value, kMaxMessageDepth);
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
