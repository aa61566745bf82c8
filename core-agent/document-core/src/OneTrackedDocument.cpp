#include "OneTrackedDocument.h"

#include "TraceLog.h"

namespace {
bool HasElements(const CFRef<CFArrayRef>& array) {
    return array && CFArrayGetCount(array.get()) > 0;
}
}  // namespace

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

bool OneTrackedDocument::HasFonts() const {
    return HasElements(mFontArrayA) || HasElements(mFontArrayB);
}
