#include "AllTrackedDocuments.h"

#include <algorithm>

#include "FontActivationTracker.h"
#include "FontManagerAccess.h"
#include "NoDestructor.h"
#include "Preferences.h"
#include "TraceLog.h"

AllTrackedDocuments& AllTrackedDocuments::GetSharedInstance() {
    static NoDestructor<AllTrackedDocuments> shared;
    return *shared;
}

void AllTrackedDocuments::AddDocument(Document& pInfo, const std::string& path) {
    LogMessage(0, "AllTrackedDocuments::AddDocument(pInfo=0x%08x, path='%s')", TraceAddress(pInfo.get()),
               path.c_str());
    if (FindTrackedDocumentByPath(path))
        return;
    if (!pInfo)
        pInfo = std::make_shared<OneTrackedDocument>();
    pInfo->mDocumentFilePath = path;
    mDocuments.push_back(pInfo);
}

void AllTrackedDocuments::AddNewDocument(const Document& document) {
    LogMessage(0, "AllTrackedDocuments::AddDocument(pInfo=0x%08x, path='%s')", TraceAddress(document.get()),
               "");
    if (document)
        mDocuments.push_back(document);
}

void AllTrackedDocuments::SetPath(OneTrackedDocument& document, const std::string& path) {
    for (const Document& each : mDocuments) {
        if (each.get() != &document && !path.empty() && each->DocumentFilePath() == path) {
            LogMessage(0, "WARNING:  document %s has lost the path '%s' to document %s",
                       each->Identifier().c_str(), path.c_str(), document.Identifier().c_str());
            each->mDocumentFilePath.clear();
        }
    }
    document.SetDocumentFilePath(path);
}

AllTrackedDocuments::Document AllTrackedDocuments::FindTrackedDocumentByPath(const std::string& path) const {
    const auto found = std::find_if(mDocuments.begin(), mDocuments.end(),
                                    [&](const Document& each) { return each->DocumentFilePath() == path; });
    return found != mDocuments.end() ? *found : nullptr;
}

AllTrackedDocuments::Document AllTrackedDocuments::FindTrackedDocumentByIdentifier(
    const std::string& inDocument) const {
    Document document;
    const TraceScope trace(
        [&] {
            LogMessage(-1, "AllTrackedDocuments::FindTrackedDocumentByIdentifier() returning 0x%08x",
                       TraceAddress(document.get()));
        },
        "Entering AllTrackedDocuments::FindTrackedDocumentByIdentifier(inDocument=%s)", inDocument.c_str());
    const auto found = std::find_if(mDocuments.begin(), mDocuments.end(),
                                    [&](const Document& each) { return each->Identifier() == inDocument; });
    if (found != mDocuments.end())
        document = *found;
    return Document(document);  // not moved from: the closing line tells it
}

void AllTrackedDocuments::RemoveClosedDocument(const OneTrackedDocument& document,
                                               FontActivationTracker* tracker) {
    static constexpr char kName[] = "AllTrackedDocuments::RemoveClosedDocument";
    const TraceScope trace([] { LogMessage(-1, "Exiting %s()", kName); }, "Entering %s(%s)", kName,
                           document.Identifier().c_str());
    try {
        const auto found = std::find_if(mDocuments.begin(), mDocuments.end(), [&](const Document& each) {
            return each->Identifier() == document.Identifier();
        });
        if (found == mDocuments.end())
            return;
        // Held and looked up again: what the tracker asks may change the list.
        const Document closed = *found;
        if (tracker != nullptr && tracker->Preferences() != nullptr) {
            const bool deactivate =
                tracker->Preferences()->GetBoolPreference(preferences::CloseFontsOnDocClose);
            if (tracker->CloseAllFontsForIdentifier(closed->Identifier(), deactivate, nullptr) ==
                kErrorMarquellNotRunning)
                tracker->CloseLater(closed->Identifier(), deactivate);
        }
        std::erase(mDocuments, closed);
    } catch (...) {
        LogMessage(0, "Exception thrown in %s()", kName);
    }
}
