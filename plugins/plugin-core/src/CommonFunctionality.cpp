#include "CommonFunctionality.h"

#include "FontManagerInterface.h"
#include "FontRequests.h"
#include "GeneralInterface.h"
#include "MarquellGlobals.h"
#include "TraceLog.h"

CommonFunctionality::Document CommonFunctionality::FindDocument(const std::string& identifierOrPath) {
    AllTrackedDocuments& documents = AllTrackedDocuments::GetSharedInstance();
    const Document document = documents.FindTrackedDocumentByIdentifier(identifierOrPath);
    return document ? document : documents.FindTrackedDocumentByPath(identifierOrPath);
}

DialogTurn CommonFunctionality::TurnToMoveFonts(const char* caller) {
    static Turn turn;
    return {turn, caller};
}

CFIndex CommonFunctionality::CountActiveFonts(CFArrayRef fonts) {
    CFIndex count = 0;
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts)) {
        const auto state = cf::GetInt64(font, kGS_ActivationStateKey);
        if (state && FontActivationStateCountsAsActive(*state))
            ++count;
    }
    return count;
}

ErrorCode CommonFunctionality::ActivateDocumentFontsSilently(int& numFontsActivated,
                                                             const std::string& filePath,
                                                             OneTrackedDocument& record, CFArrayRef fonts) {
    constexpr char kName[] = "CommonFunctionality::ActivateDocumentFontsSilently";
    constexpr char kLine[] = "%s(numFontsActivated=%d, filePath='%s', ...)";  // opens and closes the step
    const TraceScope trace([&] { LogMessage(-1, kLine, kName, numFontsActivated, filePath.c_str()); }, kLine,
                           kName, numFontsActivated, filePath.c_str());
    numFontsActivated = 0;
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
    if (!fontManager.IsUsable())
        return CoreErrorCodes::kSuccess;

    const CFRef<CFMutableArrayRef> matchedFonts = cf::MutableArray();
    const CFRef<CFMutableArrayRef> reportedFonts = cf::MutableArray();
    const CFRef<CFMutableArrayRef> unmatchedFonts = cf::MutableArray();
    if (!matchedFonts || !reportedFonts || !unmatchedFonts)
        return CoreErrorCodes::kOutOfMemory;
    const CFRef<CFMutableArrayRef> requests = RequestsByPreference(fonts);
    const DocumentFontLists lists{.requestedFonts = requests.get(),
                                  .matchedFonts = matchedFonts.get(),
                                  .reportedFonts = reportedFonts.get(),
                                  .unmatchedFonts = unmatchedFonts.get()};
    const ErrorCode status = MarquellGlobals::GetSharedFontActivationTracker()->ActivateDocumentFonts(
        record.Identifier(), filePath, lists);
    numFontsActivated =
        static_cast<int>(cf::Count(matchedFonts.get()) - CountActiveFonts(matchedFonts.get()));
    if (CoreAgentInterface* agent = fontManager.GetFontManager())
        record.canExport = agent->CanExportFromWorkgroup(matchedFonts.get());
    record.SetFontArrays(lists);
    return status;
}

GeneralInterface* CommonFunctionality::SharedHostAppInterface() {
    if (MarquellGlobals::GetSharedHostAppInterface() == nullptr)
        MarquellGlobals::SetSharedHostAppInterface(std::make_unique<GeneralInterface>());
    return dynamic_cast<GeneralInterface*>(MarquellGlobals::GetSharedHostAppInterface());
}

void CommonFunctionality::ShowNoWorkgroupMessage() {
    CoreAgentInterface* agent = FontManagerInterface::GetSharedInstance().GetFontManager();
    MarquellGlobals::GetSharedVPFInterface()->ShowMessageBox(agent != nullptr && agent->IsRunningStandalone()
                                                                 ? message_boxes::kNoWorkgroupStandalone
                                                                 : message_boxes::kNoWorkgroup);
}

void CommonFunctionality::ShowNotLoggedInMessage() {
    VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface();
    if (!framework->IsMade())
        return;
    MarquellGlobals::SetLoggedIn(false);
    framework->ShowMessageBox(message_boxes::kNotLoggedIn);
}
