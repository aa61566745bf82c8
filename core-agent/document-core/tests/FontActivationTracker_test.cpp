#include "FontActivationTracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <thread>

#include "CapturedTrace.h"
#include "FakeFontManager.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

class FontActivationTrackerTest : public testing::Test {
protected:
    /// Opens a document that uses the fonts that were matched last.
    ErrorCode Open(const std::string& identifier) {
        const CFRef<CFMutableArrayRef> matchedFonts = cf::MutableArray();
        return tracker.ActivateDocumentFonts(identifier, "/doc/" + identifier,
                                             {.matchedFonts = matchedFonts.get()});
    }
    ErrorCode Close(const std::string& identifier, bool deactivate = true) {
        return tracker.CloseAllFontsForIdentifier(identifier, deactivate, nullptr);
    }

    CapturedTrace trace;
    FakeFontManager fontManager;
    FakePreferences preferences;
    FontActivationTracker tracker{&preferences};
};

using FontByFontTest = FontActivationTrackerTest;

}  // namespace

TEST_F(FontActivationTrackerTest, IdentifiersAreFreshUUIDs) {
    const std::string first = FontActivationTracker::GenerateUniqueIdentifier();
    EXPECT_TRUE(std::regex_match(first, std::regex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"))) << first;
    EXPECT_NE(first, FontActivationTracker::GenerateUniqueIdentifier());
    EXPECT_THAT(trace.Text(), HasSubstr("GenerateUniqueIdentifier() returning '" + first + "'"));
}

TEST(FontActivationTracker, WithoutAUUIDAnIdentifierIsASingleByte) {
    EXPECT_EQ(FontActivationTracker::IdentifierFromText(cf::String("x").get()), "x");
    EXPECT_EQ(FontActivationTracker::IdentifierFromText(cf::String(std::string(99, 'x')).get()).size(), 99u);
    EXPECT_EQ(FontActivationTracker::IdentifierFromText(cf::String(std::string(100, 'x')).get()).size(), 1u);
    std::srand(1);
    const auto expected = static_cast<char>(std::rand());
    std::srand(1);
    EXPECT_EQ(FontActivationTracker::IdentifierFromText(nullptr), std::string(1, expected));
}

TEST_F(FontActivationTrackerTest, ADocumentsRoadIsToldInTheTrace) {
    fontManager.Match(7, "Seven");
    fontManager.Match(8, "Eight", std::nullopt);
    Open("A");
    Close("A");
    tracker.CloseAllFonts(false);
    for (const char* lines :
         {"Entering FontActivationTracker::ActivateDocumentFonts(documentPath = \"/doc/A\")\n"
          " kGS_ActivationStateKey '0', kGS_DatabaseIDKey 7 for 'Seven')\n"
          " Entering RegisterFontWithDocument(postscriptName='Seven', sDocumentIdentifier='A')\n"
          " Exiting RegisterFontWithDocument\n"
          " kGS_ActivationStateKey 'NULL', kGS_DatabaseIDKey 8 for 'Eight')\n",
          "\nActivateDocumentFonts returning 0\n"
          "Entering FontActivationTracker::CloseAllFontsForIdentifier('A', bDeactivateClosedFonts=1, "
          "fontsDeactivated=0x00000000)\n"
          " Considering whether to deactivate databaseID 7\n",
          "\nFontActivationTracker::CloseAllFontsForIdentifier() returning 0\n"
          "Entering  FontActivationTracker::CloseAllFonts(bDeactivateClosedFonts=0)\n"
          "FontActivationTracker::CloseAllFonts() returning 0\n"})
        EXPECT_THAT(trace.Text(), HasSubstr(lines));
}

TEST_F(FontActivationTrackerTest, AFontGoesWithTheLastDocumentThatUsesIt) {
    fontManager.Match(7, "ComicNeue-Bold");
    Open("A");
    fontManager.Match(7, "ComicNeue-Bold");
    Open("B");
    Close("A");
    EXPECT_THAT(fontManager.deactivated, IsEmpty());
    EXPECT_THAT(trace.Text(), HasSubstr("Not deactivating 'ComicNeue-Bold' because its ref count is 1\n"));
    Close("B");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
    EXPECT_THAT(trace.Text(), HasSubstr("Adding 'ComicNeue-Bold' to fontsToDeactivate.\n"));
    trace.Clear();
    EXPECT_EQ(Close("B"), 0u);
    EXPECT_THAT(trace.Text(), HasSubstr("No entry in FontActivationTracker::m_mDocuments for 'B'\n"));
}

TEST_F(FontActivationTrackerTest, AFontThatWasActiveBeforeIsNeverDeactivated) {
    for (const int state : {1, 2, 3, 4, 5, 6, 9, 10, 11})
        fontManager.Match(static_cast<uint32_t>(100 + state), "Active", state);
    for (const int state : {-1, 0, 7, 8, 12})
        fontManager.Match(static_cast<uint32_t>(200 + state), "Inactive", state);
    fontManager.Match(300, "Stateless", std::nullopt);
    Open("A");
    Close("A");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(199, 200, 207, 208, 212, 300));
    EXPECT_THAT(trace.Text(), HasSubstr("Not deactivating 'Active' because it was already active\n"));
    fontManager.Match(1, "Active", 1);
    Open("B");
    fontManager.deactivated.clear();
    tracker.CloseAllFonts(true);
    EXPECT_THAT(fontManager.deactivated, IsEmpty());
}

TEST_F(FontActivationTrackerTest, ClosingWithoutDeactivationLeavesTheFontsForTheEnd) {
    fontManager.Match(7, "Seven");
    fontManager.Match(8, "Eight");
    Open("A");
    Close("A", false);
    EXPECT_THAT(fontManager.deactivated, IsEmpty());
    tracker.CloseAllFonts(true);
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7, 8));
    tracker.CloseAllFonts(true);
    EXPECT_EQ(fontManager.deactivated.size(), 2u) << "the register was not emptied";
}

TEST_F(FontActivationTrackerTest, AFontThatSomeoneElseTookOverIsLeftAloneAtCloseAndAtQuit) {
    for (const bool quits : {false, true}) {
        fontManager.deactivated.clear();
        for (uint32_t databaseID = 7; databaseID <= 9; ++databaseID)
            fontManager.Match(databaseID, "Font");
        Open("A");
        fontManager.states = {{7, false}, {8, true}};  // and nothing known of 9
        if (quits)
            tracker.CloseAllFonts(true);
        else
            Close("A");
        EXPECT_THAT(fontManager.deactivated, ElementsAre(8, 9));
        EXPECT_THAT(trace.Text(),
                    HasSubstr("Not deactivating 'Font' because it is no longer plugin activated\n"));
    }
}

TEST_F(FontActivationTrackerTest, WhatIsClosedWithoutAFontManagerIsCaughtUpWith) {
    fontManager.Match(7, "Seven");
    Open("A");
    fontManager.Match(8, "Eight");
    Open("B");
    fontManager.isRunning = false;
    tracker.CloseLater("A", true);
    tracker.CloseLater("B", false);
    tracker.CatchUp();
    EXPECT_TRUE(tracker.HasClosesToCatchUp());
    fontManager.isRunning = true;
    Open("C");
    EXPECT_FALSE(tracker.HasClosesToCatchUp());
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
    fontManager.isRunning = false;
    tracker.CloseLater("C", true);
    fontManager.isRunning = true;
    fontManager.whileDeactivating = [this] { fontManager.isRunning = false; };
    tracker.CatchUp();
    EXPECT_FALSE(tracker.HasClosesToCatchUp());
}

TEST_F(FontActivationTrackerTest, ACloseWithoutDeactivationCountsEveryFont) {
    for (const char* document : {"A", "B"}) {
        fontManager.Match(7, "Seven");
        fontManager.Match(8, "Eight");
        Open(document);
    }
    Close("A", false);
    Close("B");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7, 8));
}

TEST_F(FontActivationTrackerTest, AQuitWithoutDeactivationForgetsTheFonts) {
    fontManager.Match(7, "Seven");
    Open("A");
    tracker.CloseAllFonts(false);
    trace.Clear();
    EXPECT_EQ(Close("A"), 0u) << "the document is still known";
    EXPECT_THAT(trace.Text(),
                HasSubstr("No entry found for nDatabaseID(7) in FontManagerInterface::m_mFonts\n"));
    EXPECT_THAT(fontManager.deactivated, IsEmpty());
}

TEST_F(FontActivationTrackerTest, TheFirstRegistrationDecidesAboutAFont) {
    const CFRef<CFDictionaryRef> first = RetainCF<CFDictionaryRef>(fontManager.Match(7, "Seven", 0));
    Open("A");
    fontManager.Match(7, "Seven again", 1);  // active, for A
    Open("B");
    const CFRef<CFMutableArrayRef> deactivated = cf::MutableArray();
    Close("A");
    tracker.CloseAllFontsForIdentifier("B", true, deactivated.get());
    ASSERT_EQ(cf::Count(deactivated.get()), 1);
    EXPECT_EQ(CFArrayGetValueAtIndex(deactivated.get(), 0), first.get());
}

TEST_F(FontActivationTrackerTest, ACloseThatBreaksOffCountsOnce) {
    fontManager.Match(7, "Seven");
    Open("A");
    fontManager.Match(7, "Seven");
    Open("B");
    fontManager.whileDeactivating = [] { throw std::runtime_error("lost"); };
    EXPECT_THROW(Close("A"), std::runtime_error);
    fontManager.whileDeactivating = nullptr;
    EXPECT_EQ(Close("A"), 0u);
    EXPECT_THAT(fontManager.deactivated, IsEmpty()) << "B still holds it";
    Close("B");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
}

TEST_F(FontActivationTrackerTest, AFontRegisteredTwiceForADocumentIsLetGoTwice) {
    fontManager.Match(7, "Seven");
    fontManager.Match(7, "Seven");
    Open("A");
    Close("A");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
    EXPECT_THAT(trace.Text(), HasSubstr("because its ref count is 1\n"));
}

TEST_F(FontActivationTrackerTest, WithoutAnIdentifierFontsBelongToTheirSubDocuments) {
    const CFMutableDictionaryRef font = fontManager.Match(7, "Seven");
    const CFRef<CFMutableArrayRef> subDocuments = cf::MutableArray();
    cf::Append(subDocuments, "one");
    cf::Append(subDocuments, "two");
    cf::Set(font, kGS_SubDocumentsWithFontKey, subDocuments);
    fontManager.Match(8, "Eight");
    Open("");
    EXPECT_THAT(trace.Text(),
                HasSubstr("WARNING:  font 1 for document '' has no kGS_SubDocumentsWithFontKey\n"));
    Close("one");
    EXPECT_THAT(fontManager.deactivated, IsEmpty());
    Close("two");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
}

TEST_F(FontActivationTrackerTest, RecordsWithoutNameOrIDAreLoggedAndPassedOver) {
    cf::Append(fontManager.matched, "no dictionary");
    fontManager.Match(0, "NoID");
    cf::Set(fontManager.Match(5, "x"), kGS_PostScriptNameKey, static_cast<CFStringRef>(nullptr));
    fontManager.Match(7, "Seven", 0);
    fontManager.activationStatus = CoreErrorCodes::kError;
    EXPECT_EQ(Open("A"), CoreErrorCodes::kError) << "the font manager's status comes through";
    for (const char* index : {"0", "1", "2"})
        EXPECT_THAT(trace.Text(),
                    HasSubstr("   ...Error:  PostscriptName and/or DatabaseID not found in matched font "
                              "dict for i = " +
                              std::string(index) + "\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("kGS_ActivationStateKey '0', kGS_DatabaseIDKey 7 for 'Seven')\n"));
    Close("A");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
}

TEST_F(FontActivationTrackerTest, WithoutAFontManagerNothingChanges) {
    fontManager.Match(7, "Seven");
    Open("A");
    fontManager.isRunning = false;
    trace.Clear();
    uint32_t count = 42;
    EXPECT_EQ(Close("A"), kErrorMarquellNotRunning);
    EXPECT_EQ(tracker.CloseAllFonts(true), 1000u);
    EXPECT_EQ(trace.Text(), "");
    EXPECT_EQ(Open("B"), kErrorMarquellNotRunning);
    EXPECT_EQ(tracker.ActivateFontsByID("B", cf::MutableArray().get(), count), kErrorMarquellNotRunning);
    EXPECT_THAT(trace.Text(),
                HasSubstr("ActivateDocumentFonts returning kErrorMarquellNotRunning (EARLY RETURN)\n"));
    EXPECT_THAT(trace.Text(),
                HasSubstr("ActivateFontsByID returning kErrorMarquellNotRunning (EARLY RETURN)\n"));
    fontManager.isRunning = true;
    Close("A");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
}

TEST_F(FontActivationTrackerTest, ChosenFontsAreCountedAndRegistered) {
    fontManager.Match(7, "Seven");
    fontManager.Match(8, "Eight");
    uint32_t count = 0;
    EXPECT_EQ(tracker.ActivateFontsByID("A", cf::MutableArray().get(), count), 0u);
    EXPECT_EQ(count, 2u);
    const CFRef<CFMutableArrayRef> deactivated = cf::MutableArray();
    tracker.CloseAllFontsForIdentifier("A", true, deactivated.get());
    EXPECT_EQ(cf::Count(deactivated.get()), 2);
}

TEST_F(FontActivationTrackerTest, AHostThatComesBackFromBehindADialogIsRefused) {
    fontManager.Match(7, "Seven");
    Open("A");
    fontManager.Match(9, "Nine");
    Open("C");
    std::vector<ErrorCode> inner;
    fontManager.whileDeactivating = [&] {
        uint32_t count = 0;
        inner = {Close("B"), tracker.CloseAllFonts(true)};
        fontManager.Match(8, "Eight");
        inner.push_back(Open("B"));
        fontManager.Match(8, "Eight");
        inner.push_back(tracker.ActivateFontsByID("B", nullptr, count));
        EXPECT_EQ(count, 1u);
    };
    EXPECT_EQ(Close("A"), 0u);
    EXPECT_THAT(inner, testing::AllOf(testing::SizeIs(4), testing::Each(CoreErrorCodes::kUnknownError)));
    EXPECT_THAT(trace.Text(), HasSubstr("called recursively."));
    EXPECT_EQ(Close("A"), 0u) << "the lock was let go";
}

TEST_F(FontByFontTest, FailuresAreReportedAndALostFontManagerEndsTheLoop) {
    for (uint32_t databaseID = 1; databaseID <= 4; ++databaseID)
        fontManager.Match(databaseID, "Font");
    Open("A");
    fontManager.isBatchMode = false;
    fontManager.statusOfSingleDeactivation = {{2, -5}, {3, 1000}};
    EXPECT_EQ(Close("A"), 1000u);
    EXPECT_THAT(fontManager.deactivated, ElementsAre(1, 2, 3));
    EXPECT_THAT(trace.Text(), HasSubstr("XTDeactivateFont returned -5\n"));
    // 3 stayed as it was and 4 was not reached: both are still held.
    fontManager.deactivated.clear();
    fontManager.statusOfSingleDeactivation.clear();
    EXPECT_EQ(tracker.CloseAllFonts(true), 0u);
    EXPECT_THAT(fontManager.deactivated, ElementsAre(3, 4));
}

TEST_F(FontByFontTest, OnlyWhatWasDeactivatedIsReported) {
    fontManager.Match(5, "Shared");
    fontManager.Match(1, "Ours");
    fontManager.Match(2, "Failing");
    fontManager.Match(3, "Active before", 1);
    fontManager.Match(4, "Taken over");
    Open("A");
    fontManager.Match(5, "Shared");
    Open("B");
    fontManager.isBatchMode = false;
    fontManager.states = {{4, false}};  // not looked at
    fontManager.statusOfSingleDeactivation = {{2, -5}};
    const CFRef<CFMutableArrayRef> deactivated = cf::MutableArray();
    EXPECT_EQ(tracker.CloseAllFontsForIdentifier("A", true, deactivated.get()), static_cast<ErrorCode>(-5));
    EXPECT_THAT(fontManager.deactivated, ElementsAre(1, 2, 4));
    EXPECT_EQ(cf::Count(deactivated.get()), 2);
    EXPECT_EQ(fontManager.deactivationCalls, 0);
    tracker.CloseAllFontsForIdentifier("B", false, deactivated.get());
    EXPECT_EQ(cf::Count(deactivated.get()), 2);
    tracker.CloseAllFonts(true);
    EXPECT_THAT(fontManager.deactivated, ElementsAre(1, 2, 4, 5)) << "no record but that of 5 was left";
}

TEST_F(FontByFontTest, AtQuitALostFontManagerEndsTheLoopButEmptiesTheRegister) {
    for (uint32_t databaseID = 1; databaseID <= 3; ++databaseID)
        fontManager.Match(databaseID, "Font");
    Open("A");
    fontManager.isBatchMode = false;
    fontManager.statusOfSingleDeactivation = {{2, 1000}};
    EXPECT_EQ(tracker.CloseAllFonts(true), 1000u);
    EXPECT_THAT(fontManager.deactivated, ElementsAre(1, 2));
    fontManager.deactivated.clear();
    EXPECT_EQ(tracker.CloseAllFonts(true), 0u);
    EXPECT_THAT(fontManager.deactivated, IsEmpty());
}

TEST_F(FontByFontTest, NothingIsActivatedOutsideBatchMode) {
    fontManager.isBatchMode = false;
    fontManager.Match(7, "Seven");
    EXPECT_EQ(Open("A"), 0u);
    EXPECT_THAT(trace.Text(), Not(HasSubstr("RegisterFontWithDocument")));
}

TEST_F(FontActivationTrackerTest, RegistrationsFromSeveralThreadsAreAllCounted) {
    const CFMutableDictionaryRef font = fontManager.Match(7, "Seven");
    const CFRef<CFStringRef> name = cf::String("Seven");
    const auto registerMany = [&](const char* document) {
        for (int index = 0; index < 200; ++index)
            tracker.RegisterFontWithDocument(font, name.get(), 7, {false, document, 0});
    };
    std::thread other(registerMany, "A");
    registerMany("B");
    other.join();
    Close("A");
    EXPECT_THAT(fontManager.deactivated, IsEmpty());
    Close("B");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
}
