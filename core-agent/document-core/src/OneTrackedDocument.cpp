#include "OneTrackedDocument.h"

#include "TraceLog.h"

void OneTrackedDocument::SetDocumentFilePath(const std::string& path) {
    LogMessage(0, "OneTrackedDocument::SetDocumentFilePath('%s')", path.c_str());
    mDocumentFilePath = path;
}

void OneTrackedDocument::SetLastKnownModificationTime(int64_t seconds) {
    LogMessage(0, "%s(%d)", "OneTrackedDocument::SetLastKnownModificationTime", static_cast<int>(seconds));
    mLastKnownModificationTime = seconds;
}

void OneTrackedDocument::SetFontArrays(const DocumentFontLists& lists) {
    mFontArrayA = CFRef<CFArrayRef>::Retain(lists.reportedFonts);
    mFontArrayB = CFRef<CFArrayRef>::Retain(lists.unmatchedFonts);
}
