#include "DocumentFonts.h"

#include <chrono>
#include <set>

#include "FontListJSON.h"
#include "FontRecordKeys.h"
#include "GBinaryDocumentFontExtractor.h"
#include "GFile.h"
#include "TraceLog.h"

namespace {

/// How long the host's main thread may be kept by the search: so long that most documents, on most disks, are
/// read to the end, and so short that there is patience left to ask the font manager.
constexpr std::chrono::milliseconds kSearchLimit{2000};

void AppendFontsFromFile(const std::string& path, CFMutableArrayRef fonts) {
    std::set<std::string> names;
    GBinaryDocumentFontExtractor extractor{GFileSystemSpec(path)};
    extractor.SetTimeLimit(kSearchLimit);
    if (extractor.ExtractFontNames(names) != CoreErrorCodes::kSuccess)
        return;  // reported where it failed
    EraseImpossibleNames(names);
    for (const std::string& name : names) {
        const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
        cf::Set(font, kGS_PostScriptNameKey, name);
        cf::Append(fonts, font);
    }
}

}  // namespace

CFRef<CFMutableArrayRef> FontsOfDocument(const std::string& path, const std::string& fontsJSON) {
    CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    if (fontsJSON.empty()) {
        try {
            AppendFontsFromFile(path, fonts.get());
        } catch (const std::exception& exception) {  // memory; the document is open all the same
            LogMessage(0, "Exception thrown in %s(): %s", "FontsOfDocument", exception.what());
        }
    } else {  // what does not parse was logged
        static_cast<void>(AppendFontsFromJSON(fontsJSON, FontListForm::kArrayOrObject, fonts.get()));
    }
    return fonts;
}
