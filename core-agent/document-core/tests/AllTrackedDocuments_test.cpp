#include "AllTrackedDocuments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "CapturedTrace.h"
#include "FakeFontManager.h"
#include "FontActivationTracker.h"
#include "TraceLog.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

AllTrackedDocuments::Document Add(AllTrackedDocuments& documents, const std::string& path) {
    auto document = std::make_shared<OneTrackedDocument>();
    document->SetIdentifier("id of " + path);
    if (path.empty())
        documents.AddNewDocument(document);
    else
        documents.AddDocument(document, path);
    return document;
}

}  // namespace

TEST(AllTrackedDocuments, APathOccursOnce) {
    AllTrackedDocuments documents;
    const auto first = Add(documents, "/a.ai");
    AllTrackedDocuments::Document empty;
    documents.AddDocument(empty, "/a.ai");
    EXPECT_EQ(empty, nullptr);
    documents.AddDocument(empty, "/A.ai");
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->DocumentFilePath(), "/A.ai");
    EXPECT_EQ(documents.Documents().size(), 2u);
    EXPECT_EQ(documents.FindTrackedDocumentByPath("/a.ai"), first);
    EXPECT_EQ(documents.FindTrackedDocumentByIdentifier("id of /a.ai"), first);
    EXPECT_EQ(documents.FindTrackedDocumentByPath("/missing"), nullptr);
}

TEST(AllTrackedDocuments, APathThatIsGivenToAnotherDocumentIsLostToTheFirst) {
    AllTrackedDocuments documents;
    const auto old = Add(documents, "/a.ai");
    const auto saved = Add(documents, "");
    const auto untitled = Add(documents, "");
    documents.SetPath(*saved, "/a.ai");
    EXPECT_EQ(documents.FindTrackedDocumentByPath("/a.ai"), saved);
    EXPECT_EQ(old->DocumentFilePath(), "");
    documents.SetPath(*saved, "/a.ai");
    documents.SetPath(*untitled, "");
    EXPECT_EQ(saved->DocumentFilePath(), "/a.ai");
}

TEST(AllTrackedDocuments, AClosedDocumentLetsItsFontsGoAsThePreferenceSays) {
    for (const bool deactivate : {true, false}) {
        FakeFontManager fontManager;
        FakePreferences preferences;
        preferences.values["CloseFontsOnDocClose"] = deactivate;
        FontActivationTracker tracker(&preferences);
        AllTrackedDocuments documents;
        const auto document = Add(documents, "/a.ai");
        fontManager.Match(7, "Seven");
        tracker.ActivateDocumentFonts(document->Identifier(), "/a.ai",
                                      {.matchedFonts = cf::MutableArray().get()});
        documents.RemoveClosedDocument(*document, &tracker);
        EXPECT_EQ(fontManager.deactivated.size(), deactivate ? 1u : 0u);
        EXPECT_THAT(documents.Documents(), IsEmpty());
    }
}

TEST(AllTrackedDocuments, OfSeveralWithOneIdentifierOnlyTheFirstIsRemoved) {
    AllTrackedDocuments documents;
    for (const char* path : {"/a.ai", "/b.ai"})
        Add(documents, path)->SetIdentifier("same");
    documents.RemoveClosedDocument(*documents.FindTrackedDocumentByPath("/b.ai"), nullptr);
    ASSERT_EQ(documents.Documents().size(), 1u);
    EXPECT_EQ(documents.Documents().front()->DocumentFilePath(), "/b.ai");
}

TEST(AllTrackedDocuments, WhatIsAskedOfThemStandsInTheLog) {
    AllTrackedDocuments documents;
    const auto document = Add(documents, "/a.ai");
    char address[16];
    std::snprintf(address, sizeof address, "0x%08x", TraceAddress(document.get()));
    CapturedTrace trace;
    auto same = document;
    documents.AddDocument(same, "/a.ai");
    documents.FindTrackedDocumentByIdentifier("id of /a.ai");
    documents.FindTrackedDocumentByIdentifier("other");
    documents.RemoveClosedDocument(OneTrackedDocument(), nullptr);
    for (const std::string& line :
         {"AllTrackedDocuments::AddDocument(pInfo=" + std::string(address) + ", path='/a.ai')\n",
          "(inDocument=id of /a.ai)\nAllTrackedDocuments::FindTrackedDocumentByIdentifier() returning " +
              std::string(address) + "\n",
          std::string("(inDocument=other)\nAllTrackedDocuments::FindTrackedDocumentByIdentifier() returning "
                      "0x00000000\nEntering AllTrackedDocuments::RemoveClosedDocument()\nExiting ")})
        EXPECT_THAT(trace.Text(), HasSubstr(line));
    EXPECT_EQ(documents.Documents().size(), 1u);
}

TEST(AllTrackedDocuments, AnExceptionStaysInsideAndIsLogged) {
    FakeFontManager fontManager;
    FakePreferences preferences;
    FontActivationTracker tracker(&preferences);
    AllTrackedDocuments documents;
    const auto document = Add(documents, "/a.ai");
    fontManager.Match(7, "Seven");
    tracker.ActivateDocumentFonts(document->Identifier(), "/a.ai",
                                  {.matchedFonts = cf::MutableArray().get()});
    fontManager.whileDeactivating = [] { throw std::runtime_error("lost"); };
    CapturedTrace trace;
    EXPECT_NO_THROW(documents.RemoveClosedDocument(*document, &tracker));
    EXPECT_THAT(trace.Text(),
                HasSubstr("FontActivationTracker::CloseAllFontsForIdentifier() exiting abnormally\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("Exception thrown in AllTrackedDocuments::RemoveClosedDocument()\n"));
    EXPECT_THAT(trace.Text(), testing::EndsWith("Exiting AllTrackedDocuments::RemoveClosedDocument()\n"));
    fontManager.whileDeactivating = nullptr;
    EXPECT_EQ(tracker.CloseAllFonts(true), 0u) << "the tracker's lock was let go";
}

TEST(OneTrackedDocument, HoldsItsFontListsEachUnderItsName) {
    const CFRef<CFMutableArrayRef> reported = cf::MutableArray();
    const CFRef<CFMutableArrayRef> unmatched = cf::MutableArray();
    {
        OneTrackedDocument document;
        document.SetFontArrays({.reportedFonts = reported.get(), .unmatchedFonts = unmatched.get()});
        EXPECT_EQ(document.FontArrayA(), reported.get());
        EXPECT_EQ(document.FontArrayB(), unmatched.get());
        EXPECT_EQ(CFGetRetainCount(reported.get()), 2);
        document.SetLastKnownModificationTime(7);
        EXPECT_EQ(document.LastKnownModificationTime(), 7);
        document.SetFontArrays({});
        EXPECT_EQ(CFGetRetainCount(reported.get()), 1);
    }
    EXPECT_EQ(CFGetRetainCount(unmatched.get()), 1);
}
