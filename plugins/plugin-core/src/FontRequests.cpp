#include "FontRequests.h"

#include <chrono>
#include <set>

#include "FontListJSON.h"
#include "FontManagerInterface.h"
#include "FontRecordKeys.h"
#include "GBinaryDocumentFontExtractor.h"
#include "GFile.h"
#include "MarquellGlobals.h"
#include "Preferences.h"
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

bool IsOfPlacedDocuments(CFDictionaryRef font) {
    return cf::Count(cf::GetArray(font, kGS_SubDocumentsWithFontKey)) != 0;
}

bool IsOn(const char* preference) {
    return MarquellGlobals::GetSharedVPFInterface()->GetBoolPreference(preference);
}

/// Switches of the preferences that change what is asked for; as they are at first, nothing.
struct RequestPreferences {
    const bool picksBestMatch = IsOn(preferences::PickBestMatch);
    const bool usesFingerprints = IsOn(preferences::EnableGlyphscan);
    const bool readsPlacedDocuments = IsOn(preferences::SupportEmbeddedObjects);
    const bool wantsFamilies = IsOn(preferences::ActivateEntireFamilies);

    CFRef<CFMutableDictionaryRef> RequestFor(CFDictionaryRef font) const {
        CFRef<CFMutableDictionaryRef> request =
            AdoptCF(CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, font));
        for (const char* key : {kGS_ChecksumKey, kGS_GlyphscanChecksumKey}) {
            if (!usesFingerprints)
                CFDictionaryRemoveValue(request.get(), cf::String(key).get());
        }
        if (!picksBestMatch)
            cf::Set(request, kGS_ExactMatchKey, true);
        if (wantsFamilies)
            cf::Set(request, kGS_EntireFamilyKey, true);
        return request;
    }
};

}  // namespace

CFRef<CFMutableArrayRef> FontsOfDocument(const std::string& path, const std::string& fontsJSON) {
    CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    if (fontsJSON.empty()) {
        if (!FontManagerInterface::GetSharedInstance().IsUsable())
            return fonts;  // nobody would be asked for them
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

CFRef<CFMutableArrayRef> RequestsByPreference(CFArrayRef fonts) {
    const RequestPreferences preferences;
    CFRef<CFMutableArrayRef> requests = cf::MutableArray();
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts)) {
        if (preferences.readsPlacedDocuments || !IsOfPlacedDocuments(font))
            cf::Append(requests, preferences.RequestFor(font));
    }
    return requests;
}
