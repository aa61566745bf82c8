#include "agent/FontRecord.h"

#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "GFontManagerConstants.h"

namespace pellwick {

bool IsActive(const Font& font) {
    return FontActivationStateCountsAsActive(font.activationState) != 0;
}

Json FontRecord(const FontManager& manager, const Font& font) {
    const bool isMissing = font.activationState == kFontActivationState_Missing;
    return {{kGS_DatabaseIDKey, font.id},
            {kGS_PostScriptNameKey, font.postScriptName},
            {kGS_FamilyKey, font.family},
            {kGS_StyleKey, font.style},
            {kGS_FoundryKey, font.foundry},
            {kGS_FontKindKey, GFontManagerConstants::FontKindToName(font.kind)},
            {kGS_VersionKey, font.version},
            {kGS_ChecksumKey, font.file.checksum},
            {kGS_OutlineFileNameKey, font.file.name},
            {kGS_OutlineFileSizeKey, font.file.size},
            {kGS_PathKey, manager.PathOf(font)},
            {kGS_ActivationStateKey, font.activationState},
            {kGS_WorkgroupIDKey, font.workgroupID},
            {kGS_WorkgroupNameKey, font.workgroupName},
            {kGS_WorkgroupTypeKey, font.workgroupType},
            {kGS_LocationKey, isMissing ? 0 : 1}};
}

Json FontRecordWithFingerprint(const FontManager& manager, const Font& font) {
    Json record = FontRecord(manager, font);
    record[kGS_GlyphscanChecksumKey] = font.glyphs;
    record[kGS_KerningChecksumKey] = font.widths;
    return record;
}

Json FontRecords(const FontManager& manager, const std::vector<Font>& fonts) {
    Json records = Json::array();
    for (const Font& font : fonts)
        records.push_back(FontRecord(manager, font));
    return records;
}

Json WorkgroupRecord(const Workgroup& workgroup) {
    return {{kGS_WorkgroupIDKey, workgroup.id},
            {kGS_WorkgroupNameKey, workgroup.name},
            {kGS_WorkgroupTypeKey, workgroup.type}};
}

RequestedFont RequestedFontOf(const Json& record) {
    RequestedFont request;
    if (record.is_string()) {
        request.postScriptName = record.get<std::string>();
        return request;
    }
    request.postScriptName = StringMember(record, kGS_PostScriptNameKey);
    request.family = StringMember(record, kGS_FamilyKey);
    request.style = StringMember(record, kGS_StyleKey);
    request.foundry = StringMember(record, kGS_FoundryKey);
    request.kind = GFontManagerConstants::FontKindFromRecord(StringMember(record, kGS_FontKindKey));
    request.checksum = StringMember(record, kGS_ChecksumKey);
    request.glyphs = StringMember(record, kGS_GlyphscanChecksumKey);
    request.isExact = BoolMember(record, kGS_ExactMatchKey);
    request.wantsFamily = BoolMember(record, kGS_EntireFamilyKey);
    return request;
}

uint32_t FontIDOf(long long number) {
    return number > 0 && number <= UINT32_MAX ? static_cast<uint32_t>(number) : 0;
}

std::vector<uint32_t> FontIDsOf(const Json& fonts) {
    std::vector<uint32_t> ids;
    for (const Json& font : fonts) {
        const long long number =
            font.is_number_integer() ? font.get<long long>() : IntegerMember(font, kGS_DatabaseIDKey);
        if (const uint32_t id = FontIDOf(number))
            ids.push_back(id);
    }
    return ids;
}

}  // namespace pellwick
