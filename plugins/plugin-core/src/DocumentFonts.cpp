#include "DocumentFonts.h"

#include <set>

#include "FontListJSON.h"
#include "FontRecordKeys.h"
#include "GBinaryDocumentFontExtractor.h"
#include "GFile.h"

namespace {

void AppendFontsFromFile(const std::string& path, CFMutableArrayRef fonts) {
    std::set<std::string> names;
    GBinaryDocumentFontExtractor extractor{GFileSystemSpec(path)};
    if (extractor.ExtractFontNames(names) != CoreErrorCodes::kSuccess)
        return;  // reported where it failed
    for (const std::string& name : names) {
        const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
        cf::Set(font, kGS_PostScriptNameKey, name);
        cf::Append(fonts, font);
    }
}

}  // namespace

CFRef<CFMutableArrayRef> FontsOfDocument(const std::string& path, const std::string& fontsJSON) {
    CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    if (fontsJSON.empty())
        AppendFontsFromFile(path, fonts.get());
    else  // what does not parse was logged
        static_cast<void>(AppendFontsFromJSON(fontsJSON, FontListForm::kArrayOrObject, fonts.get()));
    return fonts;
}
