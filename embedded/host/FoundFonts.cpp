#include "FoundFonts.h"

#include "FontRecords.h"
#include "Output.h"
#include "PlacedDocuments.h"

documents::DocumentFonts FontFinder::Find(const std::string& path) {
    try {
        return mIsMissing ? documents::DocumentFonts() : ReadWithPlaced(mReader, path);
    } catch (const documents::NoDocumentReader& missing) {
        mIsMissing = true;
        PrintError(std::string(missing.what()) + "; documents are searched for font names instead");
        return {};
    }
}

nlohmann::json FontFinder::FindForCore(const std::string& path) {
    const documents::DocumentFonts fonts = Find(path);
    if (fonts.status == documents::ReadStatus::kUnreadable)
        PrintError(path + " is searched for font names, since " + fonts.problem);
    return fonts.status == documents::ReadStatus::kRead ? documents::FontRecords(fonts) : nlohmann::json();
}
