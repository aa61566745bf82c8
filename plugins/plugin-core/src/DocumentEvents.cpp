#include "DocumentEvents.h"

#include <CoreFoundation++/CFRef.h>

#include <vector>

#include "AllTrackedDocuments.h"
#include "CallScopes.h"
#include "CommonFunctionality.h"
#include "CoreAgentInterface.h"
#include "FontListJSON.h"
#include "FontManagerInterface.h"
#include "FontRequests.h"
#include "GFile.h"
#include "MarquellGlobals.h"
#include "PluginCoreInterface.h"
#include "TextBuffer.h"
#include "TraceLog.h"
#include "platform/Clock.h"

namespace {

using CommonFunctionality::Document;

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

bool HandOverFonts(const std::string& path, const OneTrackedDocument& record, const std::string& hint) {
    const std::string& text = hint.empty() ? record.fontUsage : hint;
    const CFRef<CFStringRef> usage = cf::String(text);
    return MarquellGlobals::SaveDocumentFonts(path, true, usage.get());
}

/// The file was written since the host last told of it.
bool WasWrittenBehindTheHost(const std::string& path, const OneTrackedDocument& record) {
    return VantorixFileUtils::GetFileModificationDate(path) > record.LastKnownModificationTime();
}

/// A host that quits may do so from behind a dialog of another call.
enum class CloseReason { kUser, kHostQuits };

ErrorCode Close(const std::string& path, const std::string& hint, CloseReason reason) {
    constexpr char kName[] = "PluginCoreInterface::HandleCloseDocument";
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ExitingWithResult(kName, result), "Entering %s('%s', ...)", kName, path.c_str());
    const DialogTurn turn = CommonFunctionality::TurnToMoveFonts(kName);
    if (!turn && reason == CloseReason::kUser)
        return result;
    FontManagerInterface::GetSharedInstance().OnUserAction();
    Document record = Documents().FindTrackedDocumentByPath(path);
    if (!record)  // one that was never saved has its identifier alone
        record = Documents().FindTrackedDocumentByIdentifier(path);
    if (!record)
        return result;
    const std::string filePath = record->DocumentFilePath();
    if (!filePath.empty() && (record->isSavePending || WasWrittenBehindTheHost(filePath, *record))) {
        HandOverFonts(filePath, *record, hint);
        record->isSavePending = false;
    }
    Documents().RemoveClosedDocument(*record, MarquellGlobals::GetSharedFontActivationTracker());
    return result = CoreErrorCodes::kSuccess;
}

}  // namespace

namespace DocumentEvents {

ErrorCode HandleCreateNewDocument(char* idBuffer, size_t* idBufferSize) {
    constexpr char kName[] = "PluginCoreInterface::HandleCreateNewDocument";
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ExitingWithResult(kName, result), "Entering %s('%s', ...)", kName, "");
    const Document record = MakeRecord();
    record->SetLastKnownModificationTime(0);
    record->isNewDocument = true;
    Documents().AddNewDocument(record);
    result = CopyTextToBuffer(record->Identifier(), idBuffer, idBufferSize);
    if (result == CoreErrorCodes::kIndexOutOfRange)
        result = CoreErrorCodes::kInvalidParam;
    return result;
}

ErrorCode HandleOpenExistingDocument(const std::string& path, const std::string& fontsJSON, char* bufferA,
                                     size_t* sizeA, char* bufferB, size_t* sizeB, int* numFontsActivated) {
    constexpr char kName[] = "PluginCoreInterface::HandleOpenExistingDocument";
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const char* writtenText = "";  // buffer A holds no text of ours until one was copied
    const TraceScope trace(
        [&] {
            LogMessage(-1, "Exiting %s('%s', '%s', %d) with result %d", kName, path.c_str(), writtenText,
                       static_cast<int>(*sizeA), static_cast<int>(result));
        },
        "Entering %s('%s', ...)", kName, path.c_str());
    *numFontsActivated = 0;
    const DialogTurn turn = CommonFunctionality::TurnToMoveFonts(kName);
    if (!turn)
        return result;
    FontManagerInterface::GetSharedInstance().OnUserAction();
    const CFRef<CFMutableArrayRef> fonts = FontsOfDocument(path, fontsJSON);
    const Document record = FindOrCreateRecord(path);
    record->SetLastKnownModificationTime(VantorixFileUtils::GetFileModificationDate(path));
    record->isSavePending = false;
    // The result speaks of the buffers; what activation came to shows in the lists.
    static_cast<void>(
        CommonFunctionality::ActivateDocumentFontsSilently(*numFontsActivated, path, *record, fonts.get()));
    result = CopyFontsToBuffer(record->FontArrayA(), bufferA, sizeA);
    if (result == CoreErrorCodes::kSuccess && record->FontArrayA() != nullptr)
        writtenText = bufferA;
    const ErrorCode resultB = CopyFontsToBuffer(record->FontArrayB(), bufferB, sizeB);
    if (result == CoreErrorCodes::kSuccess)
        result = resultB;
    record->openTime = Now();
    if (*numFontsActivated >= 1 && result == CoreErrorCodes::kSuccess)
        result = PLUGINCORE_FONTS_ACTIVATED;
    return result;
}

ErrorCode HandleSaveDocument(const std::string& path, const std::string& hint) {
    constexpr char kName[] = "PluginCoreInterface::HandleSaveDocument";
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ExitingWithResult(kName, result), "Entering %s('%s', ...)", kName, path.c_str());
    FontManagerInterface::GetSharedInstance().OnUserAction();
    const Document record = FindOrCreateRecord(path);
    if (HandOverFonts(path, *record, hint)) {
        record->lastSaveTime = Now();
        record->isSavePending = false;
        result = CoreErrorCodes::kSuccess;
    } else {
        record->isSavePending = true;
    }
    record->SetLastKnownModificationTime(VantorixFileUtils::GetFileModificationDate(path));
    return result;
}

ErrorCode HandleCloseDocument(const std::string& path, const std::string& hint) {
    return Close(path, hint, CloseReason::kUser);
}

ErrorCode SetPathForDocument(const std::string& path, const std::string& documentId) {
    constexpr char kName[] = "PluginCoreInterface::SetPathForDocument";
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ExitingWithResult(kName, result), "Entering %s('%s', ...)", kName, path.c_str());
    const Document record = Documents().FindTrackedDocumentByIdentifier(documentId);
    if (!record)
        return result = CoreErrorCodes::kNotFound;
    Documents().SetPath(*record, path);
    return result = CoreErrorCodes::kSuccess;
}

ErrorCode GetIDForDocument(const std::string& path, char* idBuffer, size_t* idBufferSize) {
    constexpr char kName[] = "PluginCoreInterface::GetIDForDocument";
    ErrorCode result = CoreErrorCodes::kNotFound;
    std::string identifier;
    const TraceScope trace(
        [&] {
            LogMessage(-1, "%s('%s', id=%s, size=%d) returning %d", kName, path.c_str(), identifier.c_str(),
                       static_cast<int>(*idBufferSize), static_cast<int>(result));
        },
        "Entering %s('%s', ...)", kName, path.c_str());
    if (const Document record = Documents().FindTrackedDocumentByPath(path)) {
        identifier = record->Identifier();
        result = CopyTextToBuffer(identifier, idBuffer, idBufferSize);
    }
    return result;
}

ErrorCode UpdateDocumentFontUsage(const std::string& document, const std::string& fontUsage) {
    constexpr char kName[] = "PluginCoreInterface::UpdateDocumentFontUsage";
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ExitingWithResult(kName, result), "Entering %s('%s', ...)", kName,
                           document.c_str());
    const Document record = CommonFunctionality::FindDocument(document);
    if (!record)
        return result = CoreErrorCodes::kNotFound;
    record->fontUsage = fontUsage;
    return result = CoreErrorCodes::kSuccess;
}

ErrorCode ActivateChosenFonts(const std::string& path, const std::string& fontsJSON, uint32_t* outCount) {
    constexpr char kName[] = "PluginCoreInterface::ActivateChosenFonts";
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ExitingWithResult(kName, result), "Entering %s('%s', ...)", kName, path.c_str());
    *outCount = 0;
    const DialogTurn turn = CommonFunctionality::TurnToMoveFonts(kName);
    if (!turn)
        return result;
    FontManagerInterface::GetSharedInstance().OnUserAction();
    const Document record = Documents().FindTrackedDocumentByPath(path);
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    if (!fontsJSON.empty() &&
        AppendFontsFromJSON(fontsJSON, FontListForm::kArray, fonts.get()) != CoreErrorCodes::kSuccess)
        return result = CoreErrorCodes::kInvalidParam;
    if (record)
        result = MarquellGlobals::GetSharedFontActivationTracker()->ActivateFontsByID(record->Identifier(),
                                                                                      fonts.get(), *outCount);
    if (CoreAgentInterface::IsUndelivered(result))
        result = CoreErrorCodes::kUnknownError;
    if (result == CoreErrorCodes::kUnknownError) {
        const CFIndex missing = cf::Count(fonts.get()) - CommonFunctionality::CountActiveFonts(fonts.get()) -
                                static_cast<CFIndex>(*outCount);
        if (missing == 0)
            result = CoreErrorCodes::kSuccess;
        else if (missing > 0)
            result = CoreErrorCodes::kNotFound;
    }
    return result;
}

void CloseAllDocuments() {
    const std::vector<Document> documents = Documents().Documents();
    for (const Document& document : documents) {
        try {
            Close(document->DocumentFilePath(), "", CloseReason::kHostQuits);
        } catch (const std::exception& exception) {
            LogMessage(0, "Exception thrown in %s(): %s", "DocumentEvents::CloseAllDocuments",
                       exception.what());
        } catch (...) {
            LogMessage(0, "Exception thrown in %s()", "DocumentEvents::CloseAllDocuments");
        }
    }
}

}  // namespace DocumentEvents
