// The record of one document that the host has open.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <cstdint>
#include <string>

#include "FontManagerAccess.h"

class OneTrackedDocument {
public:
    const std::string& DocumentFilePath() const { return mDocumentFilePath; }
    void SetDocumentFilePath(const std::string& path);
    const std::string& Identifier() const { return mIdentifier; }
    void SetIdentifier(const std::string& identifier) { mIdentifier = identifier; }

    /// Seconds since 1970-01-01 UTC.
    int64_t LastKnownModificationTime() const { return mLastKnownModificationTime; }
    void SetLastKnownModificationTime(int64_t seconds);

    /// Fonts reported for the document, and the second list; retained while they are held. May be null.
    CFArrayRef FontArrayA() const { return mFontArrayA.get(); }
    CFArrayRef FontArrayB() const { return mFontArrayB.get(); }
    /// Takes the reported fonts for A and the unmatched ones for B.
    void SetFontArrays(const DocumentFontLists& lists);

    bool isSavePending = false;  ///< handing the fonts to the font manager failed and is to be tried again
    // Recorded with the document; nothing goes by them yet.
    bool isNewDocument = false;  ///< the user made it in the host; it had no file then
    bool canExport = false;      ///< the user may copy the document's fonts out
    int64_t openTime = 0;        ///< seconds since 1970-01-01 UTC
    int64_t lastSaveTime = 0;
    std::string fontUsage;

private:
    friend class AllTrackedDocuments;

    int64_t mLastKnownModificationTime = 0;
    std::string mDocumentFilePath;
    std::string mIdentifier;
    CFRef<CFArrayRef> mFontArrayA;
    CFRef<CFArrayRef> mFontArrayB;
};
