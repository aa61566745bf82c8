// The documents that the host has open, in the order in which they came.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "OneTrackedDocument.h"

class FontActivationTracker;

/// Main thread only.
class AllTrackedDocuments {
public:
    using Document = std::shared_ptr<OneTrackedDocument>;

    static AllTrackedDocuments& GetSharedInstance();

    /// Appends `pInfo` under `path`, making a new record when it is empty. Does nothing when a document with
    /// this path is there already.
    void AddDocument(Document& pInfo, const std::string& path);
    /// Appends a document that has no path yet.
    void AddNewDocument(const Document& document);

    /// Gives a document of the list that path. Another one that has it loses it: the host's latest word
    /// counts, and a path occurs once.
    void SetPath(OneTrackedDocument& document, const std::string& path);

    /// The first document with exactly this path or identifier, or an empty reference.
    Document FindTrackedDocumentByPath(const std::string& path) const;
    Document FindTrackedDocumentByIdentifier(const std::string& inDocument) const;

    /// Takes the document off the list and lets go of its fonts; "CloseFontsOnDocClose" decides whether they
    /// are deactivated. Without a tracker that has preferences the fonts are left alone. Nothing is thrown.
    void RemoveClosedDocument(const OneTrackedDocument& document, FontActivationTracker* tracker);

    const std::vector<Document>& Documents() const { return mDocuments; }

private:
    std::vector<Document> mDocuments;
};
