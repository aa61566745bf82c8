#include "FontRecords.h"

#include "FontRecordKeys.h"

namespace documents {
namespace {

nlohmann::json FontRecord(const DocumentFont& font) {
    nlohmann::json record = {{kGS_PostScriptNameKey, font.postScriptName},
                             {kGS_WhereKey, font.where},
                             {kGS_EmbeddedKey, font.isEmbedded}};
    if (!font.family.empty())
        record[kGS_FamilyKey] = font.family;
    if (!font.style.empty())
        record[kGS_StyleKey] = font.style;
    if (!font.placedIn.empty())
        record[kGS_SubDocumentsWithFontKey] = font.placedIn;
    return record;
}

}  // namespace

nlohmann::json FontRecords(const DocumentFonts& fonts) {
    nlohmann::json records = nlohmann::json::array();
    for (const DocumentFont& font : fonts.fonts)
        records.push_back(FontRecord(font));
    return records;
}

}  // namespace documents
