#include "FoundFonts.h"

#include "FontRecordKeys.h"
#include "Output.h"

namespace {

using nlohmann::json;

json FontRecord(const documents::DocumentFont& font) {
    json record = {
        {kGS_PostScriptNameKey, font.postScriptName}, {"where", font.where}, {"embedded", font.isEmbedded}};
    if (!font.family.empty())
        record[kGS_FamilyKey] = font.family;
    if (!font.style.empty())
        record[kGS_StyleKey] = font.style;
    return record;
}

}  // namespace

documents::DocumentFonts FontFinder::Find(const std::string& path) {
    try {
        return mIsMissing ? documents::DocumentFonts() : mReader.Read(path);
    } catch (const documents::NoDocumentReader& missing) {
        mIsMissing = true;
        PrintError(std::string(missing.what()) + "; documents are searched for font names instead");
        return {};
    }
}

json FontFinder::FindForCore(const std::string& path) {
    const documents::DocumentFonts fonts = Find(path);
    if (fonts.status == documents::ReadStatus::kUnreadable)
        PrintError(path + " is searched for font names, since " + fonts.problem);
    return fonts.status == documents::ReadStatus::kRead ? FontRecords(fonts) : json();
}

json FontRecords(const documents::DocumentFonts& fonts) {
    json records = json::array();
    for (const documents::DocumentFont& font : fonts.fonts)
        records.push_back(FontRecord(font));
    return records;
}
