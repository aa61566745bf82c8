#include "DocumentCommands.h"

#include <CoreFoundation++/CFRef.h>

#include "CommonFunctionality.h"
#include "FontDialogs.h"
#include "FontManagerInterface.h"
#include "FontRequests.h"
#include "GFile.h"
#include "LocalizedStrings.h"
#include "MarquellGlobals.h"
#include "Preferences.h"
#include "TraceLog.h"

namespace {

using CommonFunctionality::Document;

constexpr ErrorCode kNotCompleted = CoreErrorCodes::kOutOfMemory;
constexpr char kCheckName[] = "PluginCoreInterface::HandleCheckDocumentFonts";
constexpr int kMostSetsOfOneName = 99;

VPFInterface& Framework() {
    return *MarquellGlobals::GetSharedVPFInterface();
}

/// What a command needs; `document` is empty, and the user was told, when it is not all there.
struct CommandTarget {
    Document document;
    CoreAgentInterface* agent = nullptr;
};

CommandTarget FindTarget(const std::string& document) {
    CommandTarget target{CommonFunctionality::FindDocument(document),
                         FontManagerInterface::GetSharedInstance().GetFontManager()};
    if (!target.document)
        Framework().ShowMessageAbout(message_boxes::kDocumentNotOpen, document);
    else if (target.agent == nullptr)
        Framework().ShowMessageBox(message_boxes::kAgentNotRunning);
    return target.document && target.agent != nullptr ? target : CommandTarget{};
}

/// The file's name without its extension.
std::string NameOf(const OneTrackedDocument& document) {
    const GFileSystemSpec file(document.DocumentFilePath());
    std::string name = file.FileName();
    const std::string extension = file.Extension();
    if (!extension.empty() && extension.size() + 1 < name.size())
        name.resize(name.size() - extension.size() - 1);
    return name.empty() ? "Untitled" : name;
}

/// Hosts may close a document behind a dialog; fonts that it was given then nobody would let go.
bool IsOpen(const OneTrackedDocument& document) {
    return CommonFunctionality::FindDocument(document.Identifier()) != nullptr;
}

ErrorCode ActivateFonts(OneTrackedDocument& document, CFArrayRef fonts) {
    const DialogTurn turn = CommonFunctionality::TurnToMoveFonts("DocumentCommands::ActivateFonts");
    if (!turn || !IsOpen(document))
        return CoreErrorCodes::kUnknownError;
    int numFontsActivated = 0;
    return CommonFunctionality::ActivateDocumentFontsSilently(numFontsActivated, document.DocumentFilePath(),
                                                              document, fonts);
}

/// The document's matched fonts; those of a document that was opened while the plug-in was off are looked for
/// now. May be null.
CFArrayRef MatchedFonts(OneTrackedDocument& document) {
    const std::string& path = document.DocumentFilePath();
    if (document.FontArrayA() == nullptr && !path.empty())
        static_cast<void>(ActivateFonts(document, FontsOfDocument(path, "").get()));
    return document.FontArrayA();
}

// ---- Collecting

bool ChooseDestination(const OneTrackedDocument& document, std::string& destination) {
    const std::string& path = document.DocumentFilePath();
    std::string folder = Framework().GetStringPreference(preferences::LastCFOFolder);
    if (folder.empty())
        folder = platform::FolderPart(path);
    const std::string initialFolder = folder;
    if (!FontManagerInterface::GetSharedInstance().ShowSaveFolderDialog(initialFolder, folder))
        return false;
    Framework().SetStringPreference(preferences::LastCFOFolder, folder);
    if (!platform::NamePart(folder).empty())
        folder += platform::kPathSeparator;
    destination = folder + NameOf(document) + " Fonts";
    return true;
}

bool AreFontsMissing(const OneTrackedDocument& document, ErrorCode code) {
    return code == GZephyrinExportFonts::kFontUnavailableToExport || cf::Count(document.FontArrayB()) > 0;
}

/// What to say about an attempt to collect `count` fonts that ended with `code`.
MessageBoxAbout MessageForCollecting(const OneTrackedDocument& document, CFIndex count, ErrorCode code) {
    switch (code) {
        case CoreErrorCodes::kSuccess:
        case GZephyrinExportFonts::kFontUnavailableToExport:
            if (AreFontsMissing(document, code))
                return message_boxes::kFontsCollectedExceptMissing;
            return count > 0 ? message_boxes::kFontsCollected : message_boxes::kNoFontsToCollect;
        case GZephyrinExportFonts::kTaskStopped:
            return message_boxes::kCollectingStopped;
        case GZephyrinExportFonts::kNotGrantedPermissionToExportFonts:
            return message_boxes::kCollectingNotPermitted;
        default:
            return message_boxes::kFontsNotCollected;
    }
}

// ---- Sets

/// Makes the set under the name or, where that is taken, under the name and the next free number, which comes
/// out in `name`.
ErrorCode CreateSet(CoreAgentInterface& agent, std::string& name, int32_t workgroupID, int32_t& setID) {
    const std::string wanted = name;
    ErrorCode code = agent.CreateTopLevelSet(name, workgroupID, setID);
    for (int number = 2; code == CoreErrorCodes::kItemAlreadyExists && number <= kMostSetsOfOneName;
         ++number) {
        name = wanted + " " + std::to_string(number);
        code = agent.CreateTopLevelSet(name, workgroupID, setID);
    }
    return code;
}

ErrorCode CreateSetOfFonts(CoreAgentInterface& agent, CFArrayRef fonts, std::string& name) {
    const auto workgroupID = FontManagerInterface::GetSharedInstance().GetDefaultWorkgroupID();
    if (!workgroupID || *workgroupID == kWorkgroupID_All)
        return kNotCompleted;
    int32_t setID = 0;
    const ErrorCode code = CreateSet(agent, name, *workgroupID, setID);
    return code == CoreErrorCodes::kSuccess ? agent.AddFontsToSet(fonts, setID) : code;
}

// ---- Checking

/// The fonts that the document lacks: those without a match, and those that could not be made active.
CFRef<CFMutableArrayRef> MissingFonts(const OneTrackedDocument& document) {
    CFRef<CFMutableArrayRef> missing = cf::MutableArray();
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(document.FontArrayB()))
        cf::Append(missing, font);
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(document.FontArrayA())) {
        const auto state = cf::GetInt64(font, kGS_ActivationStateKey);
        if (state && !FontActivationStateCountsAsActive(*state))
            cf::Append(missing, font);
    }
    return missing;
}

std::string NamesOf(CFArrayRef fonts) {
    std::string names;
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts)) {
        names += names.empty() ? "" : ", ";
        names += cf::GetString(font, kGS_PostScriptNameKey);
    }
    return names;
}

/// Lets the user choose replacements, and activates them for the document.
ErrorCode ResolveFonts(const OneTrackedDocument& document, CFArrayRef missingFonts) {
    const CFRef<CFMutableArrayRef> resolved = cf::MutableArray();
    const CFRef<CFMutableArrayRef> skipped = cf::MutableArray();
    const ErrorCode code =
        FontDialogs::ShowResolveFonts(kCheckName, missingFonts, resolved.get(), skipped.get());
    if (code != CoreErrorCodes::kSuccess)
        return code;
    const CFRef<CFMutableArrayRef> replacements = cf::MutableArray();
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(resolved.get()))
        cf::Append(replacements, cf::GetDictionary(font, kGS_MatchedFontKey));
    if (cf::Count(replacements.get()) == 0)
        return CoreErrorCodes::kSuccess;
    const DialogTurn turn = CommonFunctionality::TurnToMoveFonts("DocumentCommands::ResolveFonts");
    if (!turn || !IsOpen(document))
        return CoreErrorCodes::kUnknownError;
    uint32_t matchedCount = 0;
    return MarquellGlobals::GetSharedFontActivationTracker()->ActivateFontsByID(
        document.Identifier(), replacements.get(), matchedCount);
}

ErrorCode TellMissingFonts(const OneTrackedDocument& document) {
    const CFRef<CFMutableArrayRef> missing = MissingFonts(document);
    if (cf::Count(missing.get()) == 0) {
        Framework().ShowMessageBox(message_boxes::kAllFontsActive);
        return CoreErrorCodes::kSuccess;
    }
    Framework().ShowMessageAbout(message_boxes::kFontsMissing, NamesOf(missing.get()));
    return FontDialogs::CountResolvable(missing.get()) > 0 ? ResolveFonts(document, missing.get())
                                                           : CoreErrorCodes::kSuccess;
}

}  // namespace

namespace DocumentCommands {

ErrorCode HandleExportDocumentFonts(const std::string& document) {
    const TraceScope trace(
        [] { LogMessage(-1, "Exiting %s()", "PluginCoreInterface::HandleExportDocumentFonts"); },
        "Entering %s(%s, ...)", "PluginCoreInterface::HandleExportDocumentFonts", document.c_str());
    const CommandTarget target = FindTarget(document);
    std::string destination;
    if (!target.document || !ChooseDestination(*target.document, destination))
        return kNotCompleted;
    const CFRef<CFArrayRef> fonts = RetainCF(MatchedFonts(*target.document));
    const ErrorCode code = target.agent->CollectFontsUsedByCurrentDocument(
        target.document->DocumentFilePath(), destination, fonts.get(),
        [](int done, int total) { return Framework().ShowProgress(localized::kCollectFonts, done, total); });
    Framework().ShowMessageAbout(MessageForCollecting(*target.document, cf::Count(fonts.get()), code),
                                 destination);
    return code == CoreErrorCodes::kSuccess || code == GZephyrinExportFonts::kFontUnavailableToExport
               ? CoreErrorCodes::kSuccess
               : kNotCompleted;
}

ErrorCode HandleCreateDocumentSet(const std::string& document) {
    const TraceScope trace(
        [] { LogMessage(-1, "Exiting %s()", "PluginCoreInterface::HandleCreateDocumentSet"); },
        "Entering %s(%s, ...)", "PluginCoreInterface::HandleCreateDocumentSet", document.c_str());
    const CommandTarget target = FindTarget(document);
    if (!target.document)
        return kNotCompleted;
    const CFRef<CFArrayRef> fonts = RetainCF(MatchedFonts(*target.document));
    if (cf::Count(fonts.get()) == 0) {
        Framework().ShowMessageBox(message_boxes::kDocumentHasNoFonts);
        return kNotCompleted;
    }
    std::string name = NameOf(*target.document);
    const ErrorCode code = CreateSetOfFonts(*target.agent, fonts.get(), name);
    const bool isCreated = code == CoreErrorCodes::kSuccess;
    Framework().ShowMessageAbout(
        isCreated ? message_boxes::kDocumentSetCreated : message_boxes::kDocumentSetNotCreated, name);
    return isCreated ? code : kNotCompleted;
}

ErrorCode HandleCheckDocumentFonts(const std::string& document, const std::string& fontsJSON) {
    const TraceScope trace([] { LogMessage(-1, "Exiting %s()", kCheckName); }, "Entering %s(%s, ...)",
                           kCheckName, document.c_str());
    const CommandTarget target = FindTarget(document);
    if (!target.document)
        return kNotCompleted;
    OneTrackedDocument& record = *target.document;
    CFRef<CFMutableArrayRef> fonts = FontsOfDocument(record.DocumentFilePath(), fontsJSON);
    if (cf::Count(fonts.get()) == 0 && !fontsJSON.empty())
        fonts = FontsOfDocument(record.DocumentFilePath(), "");
    if (cf::Count(fonts.get()) == 0) {
        Framework().ShowMessageBox(message_boxes::kDocumentHasNoFonts);
        return CoreErrorCodes::kSuccess;
    }
    if (!FontManagerInterface::GetSharedInstance().IsUsable() ||
        ActivateFonts(record, fonts.get()) != CoreErrorCodes::kSuccess) {
        Framework().ShowMessageBox(message_boxes::kFontsNotChecked);
        return kNotCompleted;
    }
    return TellMissingFonts(record) == CoreErrorCodes::kSuccess ? CoreErrorCodes::kSuccess : kNotCompleted;
}

}  // namespace DocumentCommands
