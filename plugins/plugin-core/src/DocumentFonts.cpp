#include "DocumentFonts.h"

#include <set>

#include "FontListJSON.h"
#include "FontRecordKeys.h"
#include "GBinaryDocumentFontExtractor.h"
#include "GFile.h"
#include "TraceLog.h"

namespace {

void AppendFontsFromFile(const std::string& path, CFMutableArrayRef fonts) {
    std::set<std::string> names;
    GBinaryDocumentFontExtractor extractor{GFileSystemSpec(path)};
    if (extractor.ExtractFontNames(names) != CoreErrorCodes::kSuccess)
        return;       // reported where it failed
    names.erase("");  // what a damaged document may hold, and nobody can look for
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
