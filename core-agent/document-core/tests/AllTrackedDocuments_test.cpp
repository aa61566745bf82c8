#include "AllTrackedDocuments.h"

#include <gmock/gmock.h>

#include "CapturedTrace.h"
#include "FakeFontManager.h"
#include "FontActivationTracker.h"

using testing::HasSubstr, testing::IsEmpty;

namespace {

class AllTrackedDocumentsTest : public testing::Test {
protected:
    AllTrackedDocuments::Document Add(const std::string& path) {
        auto document = std::make_shared<OneTrackedDocument>();
        document->SetIdentifier("id of " + path);
        if (path.empty())
            documents.AddNewDocument(document);
        else
            documents.AddDocument(document, path);
        return document;
    }
    AllTrackedDocuments::Document AddWithFont(const std::string& path) {
        fontManager.Match(7, "Seven");
        const auto document = Add(path);
        tracker.ActivateDocumentFonts(document->Identifier(), path,
                                      {.matchedFonts = cf::MutableArray().get()});
        return document;
    }

    CapturedTrace trace;
    FakeFontManager fontManager;
    FakePreferences preferences;
    FontActivationTracker tracker{&preferences};
    AllTrackedDocuments documents;
};

}  // namespace

TEST_F(AllTrackedDocumentsTest, APathOccursOnce) {
    const auto first = Add("/a.ai");
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
    EXPECT_EQ(documents.FindTrackedDocumentByIdentifier("other"), nullptr);
    const CFRef<CFMutableArrayRef> reported = cf::MutableArray(), unmatched = cf::MutableArray();
    first->SetFontArrays({.reportedFonts = reported.get(), .unmatchedFonts = unmatched.get()});
    first->SetLastKnownModificationTime(5);
    EXPECT_EQ(first->FontArrayA(), reported.get());
    EXPECT_EQ(first->FontArrayB(), unmatched.get());
    EXPECT_EQ(first->LastKnownModificationTime(), 5);
}

TEST_F(AllTrackedDocumentsTest, APathThatIsGivenToAnotherDocumentIsLostToTheFirst) {
    const auto old = Add("/a.ai"), saved = Add(""), untitled = Add("");
    documents.SetPath(*saved, "/a.ai");
    EXPECT_EQ(documents.FindTrackedDocumentByPath("/a.ai"), saved);
    EXPECT_EQ(old->DocumentFilePath(), "");
    documents.SetPath(*saved, "/a.ai");
    documents.SetPath(*untitled, "");
    EXPECT_EQ(saved->DocumentFilePath(), "/a.ai");
}

TEST_F(AllTrackedDocumentsTest, AClosedDocumentLetsItsFontsGoAsThePreferenceSays) {
    for (const bool deactivate : {false, true}) {
        preferences.values["CloseFontsOnDocClose"] = deactivate;
        const auto document = AddWithFont("/a.ai");
        documents.RemoveClosedDocument(OneTrackedDocument(), &tracker);
        EXPECT_EQ(documents.Documents().size(), 1u) << "that was no document of theirs";
        documents.RemoveClosedDocument(*document, &tracker);
        EXPECT_THAT(documents.Documents(), IsEmpty());
        EXPECT_EQ(fontManager.deactivated.size(), deactivate ? 1u : 0u);
        tracker.CloseAllFonts(false);
    }
    const auto document = AddWithFont("/b.ai");
    fontManager.isRunning = false;
    documents.RemoveClosedDocument(*document, &tracker);
    EXPECT_TRUE(tracker.HasClosesToCatchUp());
}

TEST_F(AllTrackedDocumentsTest, AnExceptionStaysInsideAndIsLogged) {
    const auto document = AddWithFont("/a.ai");
    fontManager.whileDeactivating = [] { throw std::runtime_error("lost"); };
    EXPECT_NO_THROW(documents.RemoveClosedDocument(*document, &tracker));
    EXPECT_THAT(trace.Text(), HasSubstr("CloseAllFontsForIdentifier() exiting abnormally\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("Exception thrown in AllTrackedDocuments::RemoveClosedDocument()\n"));
    fontManager.whileDeactivating = nullptr;
    EXPECT_EQ(tracker.CloseAllFonts(true), 0u) << "the tracker's lock was let go";
}
