#include "Workgroup.h"

#include <array>

#include "FontRecordKeys.h"
#include "LocalizedStrings.h"
#include "MarquellGlobals.h"

namespace {

struct TypeName {
    int32_t type;
    uint32_t stringID;
};

constexpr std::array<TypeName, 6> kTypeNames{{{kWorkgroupType_PersonalLibrary, localized::kPersonalLibrary},
                                              {kWorkgroupType_All, localized::kAllWorkgroups},
                                              {kWorkgroupType_CloudLibrary, localized::kCloudLibrary},
                                              {kWorkgroupType_System, localized::kSystemFonts},
                                              {kWorkgroupType_GoogleLibrary, localized::kGoogleLibrary},
                                              {kWorkgroupType_TypekitLibrary, localized::kTypekitLibrary}}};

/// 0 for a workgroup that has a name of its own.
uint32_t StringIDFor(int32_t type, const std::string& agentName) {
    for (const TypeName& each : kTypeNames) {
        if (each.type == type)
            return each.stringID;
    }
    if (type < 0 || type > kWorkgroupType_TypekitLibrary)
        return 0;  // not known: shown as the font manager has it
    if (agentName == WORKGROUP_NAME_FONT_LIBRARY)
        return localized::kFontLibrary;
    if (agentName == WORKGROUP_NAME_GOOGLE_LIBRARY)
        return localized::kGoogleLibrary;
    return 0;
}

}  // namespace

std::string WorkgroupDisplayName(int32_t type, const std::string& agentName) {
    const uint32_t stringID = StringIDFor(type, agentName);
    std::string name;
    if (stringID != 0)
        name = MarquellGlobals::GetSharedVPFInterface()->LocalizedString(stringID);
    return name.empty() ? agentName : name;
}

Workgroup WorkgroupFromRecord(CFDictionaryRef record) {
    const auto type = static_cast<int32_t>(cf::GetInt64(record, kGS_WorkgroupTypeKey).value_or(-1));
    return {static_cast<int32_t>(cf::GetInt64(record, kGS_WorkgroupIDKey).value_or(0)), type,
            WorkgroupDisplayName(type, cf::GetString(record, kGS_WorkgroupNameKey))};
}

CFRef<CFArrayRef> WorkgroupRecords(const std::vector<Workgroup>& workgroups) {
    const CFRef<CFMutableArrayRef> records = cf::MutableArray();
    for (const Workgroup& workgroup : workgroups) {
        const CFRef<CFMutableDictionaryRef> record = cf::MutableDictionary();
        cf::Set(record, kGS_WorkgroupIDKey, workgroup.id);
        cf::Set(record, kGS_WorkgroupTypeKey, workgroup.type);
        cf::Set(record, kGS_WorkgroupNameKey, workgroup.name);
        cf::Append(records, record);
    }
    return records;
}
