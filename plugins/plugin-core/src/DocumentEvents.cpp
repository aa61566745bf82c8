#include "DocumentEvents.h"

#include <CoreFoundation++/CFRef.h>

#include <set>
#include <vector>

#include "AllTrackedDocuments.h"
#include "CommonFunctionality.h"
#include "FontListJSON.h"
#include "FontRecordKeys.h"
#include "GBinaryDocumentFontExtractor.h"
#include "GFile.h"
#include "MarquellGlobals.h"
#include "TextBuffer.h"
#include "TraceLog.h"
#include "platform/Clock.h"

namespace {

using Document = AllTrackedDocuments::Document;

AllTrackedDocuments& Documents() {
    return AllTrackedDocuments::GetSharedInstance();
}

int64_t Now() {
    return platform::Current<platform::Clock>().Now();
}

Document MakeRecord() {
    auto record = std::make_shared<OneTrackedDocument>();
    record->SetIdentifier(FontActivationTracker::GenerateUniqueIdentifier());
    record->canExport = false;
    return record;
}

Document FindOrCreateRecord(const std::string& path) {
    Document record = Documents().FindTrackedDocumentByPath(path);
    if (!record) {
        record = MakeRecord();
        Documents().AddDocument(record, path);
    }
    return record;
}

/// Stands in for a font list that the host does not give: the names that the document's file holds.
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

CFRef<CFMutableArrayRef> FontsOfDocument(const std::string& path, const std::string& fontsJSON) {
    CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    if (fontsJSON.empty())
        AppendFontsFromFile(path, fonts.get());
    else  // text that does not parse counts as no fonts, and was logged
        static_cast<void>(AppendFontsFromJSON(fontsJSON, FontListForm::kArrayOrObject, fonts.get()));
    return fonts;
}

bool HandOverFonts(const std::string& path, const OneTrackedDocument& record, const std::string& hint) {
    const std::string& text = hint.empty() ? record.fontUsage : hint;
    const CFRef<CFStringRef> usage = cf::String(text);
    return MarquellGlobals::SaveDocumentFonts(path, true, usage.get());
}

/// The file was written since the host last told of it.
bool WasWrittenBehindTheHost(const std::string& path, const OneTrackedDocument& record) {
    return VantorixFileUtils::GetFileModificationDate(path) > record.LastKnownModificationTime();
}

}  // namespace

namespace DocumentEvents {

ErrorCode HandleCreateNewDocument(char* idBuffer, size_t* idBufferSize) {
    constexpr char kName[] = "PluginCoreInterface::HandleCreateNewDocument";
    LogMessage(1, "Entering %s(...)", kName);
    const Document record = MakeRecord();
    record->SetLastKnownModificationTime(0);
    record->isNewDocument = true;
    Documents().AddNewDocument(record);
    ErrorCode result = CopyTextToBuffer(record->Identifier(), idBuffer, idBufferSize);
    if (result == CoreErrorCodes::kIndexOutOfRange)
        result = CoreErrorCodes::kInvalidParam;
    LogMessage(-1, "Exiting %s() with result %d", kName, static_cast<int>(result));
    return result;
}

ErrorCode HandleOpenExistingDocument(const std::string& path, const std::string& fontsJSON, char* bufferA,
                                     size_t* sizeA, char* bufferB, size_t* sizeB, int* numFontsActivated) {
    constexpr char kName[] = "PluginCoreInterface::HandleOpenExistingDocument";
    LogMessage(1, "Entering %s('%s', ...)", kName, path.c_str());
    const CFRef<CFMutableArrayRef> fonts = FontsOfDocument(path, fontsJSON);
    *numFontsActivated = 0;
    const Document record = FindOrCreateRecord(path);
    record->SetLastKnownModificationTime(VantorixFileUtils::GetFileModificationDate(path));
    record->isSavePending = false;
    // The result speaks of the buffers; what activation came to shows in the lists.
    static_cast<void>(
        CommonFunctionality::ActivateDocumentFontsSilently(*numFontsActivated, path, *record, fonts.get()));
    ErrorCode result = CopyFontsToBuffer(record->FontArrayA(), bufferA, sizeA);
    const bool isBufferAWritten = result == CoreErrorCodes::kSuccess && record->FontArrayA() != nullptr;
    const ErrorCode resultB = CopyFontsToBuffer(record->FontArrayB(), bufferB, sizeB);
    if (result == CoreErrorCodes::kSuccess)
        result = resultB;
    record->openTime = Now();
    if (*numFontsActivated >= 1 && result == CoreErrorCodes::kSuccess)
        result = 1;
    LogMessage(-1, "Exiting %s('%s', '%s', %d) with result %d", kName, path.c_str(),
               isBufferAWritten ? bufferA : "", static_cast<int>(*sizeA), static_cast<int>(result));
    return result;
}

ErrorCode HandleSaveDocument(const std::string& path, const std::string& hint) {
    constexpr char kName[] = "PluginCoreInterface::HandleSaveDocument";
    LogMessage(1, "Entering %s('%s', ...)", kName, path.c_str());
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const Document record = FindOrCreateRecord(path);
    if (HandOverFonts(path, *record, hint)) {
        record->lastSaveTime = Now();
        record->isSavePending = false;
        result = CoreErrorCodes::kSuccess;
    } else {
        record->isSavePending = true;
    }
    record->SetLastKnownModificationTime(VantorixFileUtils::GetFileModificationDate(path));
    LogMessage(-1, "Exiting %s() with result %d", kName, static_cast<int>(result));
    return result;
}

ErrorCode HandleCloseDocument(const std::string& path, const std::string& hint) {
    constexpr char kName[] = "PluginCoreInterface::HandleCloseDocument";
    LogMessage(1, "Entering %s('%s', ...)", kName, path.c_str());
    ErrorCode result = CoreErrorCodes::kUnknownError;
    if (const Document record = Documents().FindTrackedDocumentByPath(path)) {
        if (record->isSavePending || WasWrittenBehindTheHost(path, *record)) {
            HandOverFonts(path, *record, hint);
            record->isSavePending = false;
        }
        Documents().RemoveClosedDocument(*record, MarquellGlobals::GetSharedFontActivationTracker());
        result = CoreErrorCodes::kSuccess;
    }
    LogMessage(-1, "Exiting %s() with result %d", kName, static_cast<int>(result));
    return result;
}

ErrorCode SetPathForDocument(const std::string& path, const std::string& documentId) {
    constexpr char kName[] = "PluginCoreInterface::SetPathForDocument";
    LogMessage(1, "Entering %s('%s', ...)", kName, path.c_str());
    ErrorCode result = CoreErrorCodes::kNotFound;
    if (const Document record = Documents().FindTrackedDocumentByIdentifier(documentId)) {
        record->SetDocumentFilePath(path);
        result = CoreErrorCodes::kSuccess;
    }
    LogMessage(-1, "Exiting %s() with result %d", kName, static_cast<int>(result));
    return result;
}

ErrorCode GetIDForDocument(const std::string& path, char* idBuffer, size_t* idBufferSize) {
    constexpr char kName[] = "PluginCoreInterface::GetIDForDocument";
    LogMessage(1, "Entering %s('%s', ...)", kName, path.c_str());
    ErrorCode result = CoreErrorCodes::kNotFound;
    std::string identifier;
    if (const Document record = Documents().FindTrackedDocumentByPath(path)) {
        identifier = record->Identifier();
        result = CopyTextToBuffer(identifier, idBuffer, idBufferSize);
    }
    LogMessage(-1, "%s('%s', id=%s, size=%d) returning %d", kName, path.c_str(), identifier.c_str(),
               static_cast<int>(*idBufferSize), static_cast<int>(result));
    return result;
}

ErrorCode UpdateDocumentFontUsage(const std::string& document, const std::string& fontUsage) {
    constexpr char kName[] = "PluginCoreInterface::UpdateDocumentFontUsage";
    LogMessage(1, "Entering %s('%s', ...)", kName, document.c_str());
    Document record = Documents().FindTrackedDocumentByIdentifier(document);
    if (!record)
        record = Documents().FindTrackedDocumentByPath(document);
    if (record)
        record->fontUsage = fontUsage;
    const ErrorCode result = record ? CoreErrorCodes::kSuccess : CoreErrorCodes::kNotFound;
    LogMessage(-1, "Exiting %s() with result %d", kName, static_cast<int>(result));
    return result;
}

ErrorCode ActivateChosenFonts(const std::string& path, const std::string& fontsJSON, uint32_t* outCount) {
    constexpr char kName[] = "PluginCoreInterface::ActivateChosenFonts";
    LogMessage(1, "Entering %s('%s', ...)", kName, path.c_str());
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const ScopeExit exitLine(
        [&] { LogMessage(-1, "Exiting %s() with result %d", kName, static_cast<int>(result)); });
    const Document record = Documents().FindTrackedDocumentByPath(path);
    *outCount = 0;
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    if (!fontsJSON.empty() &&
        AppendFontsFromJSON(fontsJSON, FontListForm::kArray, fonts.get()) != CoreErrorCodes::kSuccess)
        return result = CoreErrorCodes::kInvalidParam;
    const CFIndex alreadyActive = CommonFunctionality::CountActiveFonts(fonts.get());
    if (record)
        result = MarquellGlobals::GetSharedFontActivationTracker()->ActivateFontsByID(record->Identifier(),
                                                                                      fonts.get(), *outCount);
    if (result == CoreErrorCodes::kUnknownError) {
        const CFIndex missing = cf::Count(fonts.get()) - alreadyActive - CFIndex{*outCount};
        result = missing > 0 ? CoreErrorCodes::kNotFound : CoreErrorCodes::kSuccess;
    }
    return result;
}

void CloseAllDocuments() {
    const std::vector<Document> documents = Documents().Documents();
    for (const Document& document : documents)
        HandleCloseDocument(document->DocumentFilePath(), "");
}

}  // namespace DocumentEvents
