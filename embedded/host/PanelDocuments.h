// The documents that are open beside the panel, and what pages are told of them. Main thread.
#pragma once

#include <string>
#include <vector>

#include "OpenedDocument.h"

class PanelDocuments {
public:
    explicit PanelDocuments(const CoreLibrary& core) : mCore(core) {}
    PanelDocuments(const PanelDocuments&) = delete;
    PanelDocuments& operator=(const PanelDocuments&) = delete;
    ~PanelDocuments();

    /// Opens the documents at the full paths, until the user interrupts.
    void Open(const std::vector<std::string>& paths);
    /// Has a font activated in the place of one that a document lacks, by what a page sent: `{"document":INDEX,
    /// "font":NAME,"fontID":NUMBER}`. What is no such choice, or was not offered, changes nothing.
    void Replace(const std::string& choice);
    /// For pages: a JSON array.
    std::string Describe() const;

private:
    const CoreLibrary& mCore;
    std::vector<OpenedDocument> mDocuments;
};
