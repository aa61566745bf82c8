#include "FontActivationTracker.h"

#include <gmock/gmock.h>

#include <regex>

#include "CapturedTrace.h"
#include "FakeFontManager.h"
#include "Records.h"

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty;

namespace {

class FontActivationTrackerTest : public testing::Test {
protected:
    ErrorCode Open(const std::string& identifier, std::initializer_list<uint32_t> databaseIDs = {}) {
        for (const uint32_t databaseID : databaseIDs)
            fontManager.Match(databaseID, "Font " + std::to_string(databaseID));
        const CFRef<CFMutableArrayRef> matchedFonts = cf::MutableArray();
        return tracker.ActivateDocumentFonts(identifier, "/doc/" + identifier,
                                             {.matchedFonts = matchedFonts.get()});
    }
    ErrorCode Close(const std::string& identifier, bool deactivate = true) {
        return tracker.CloseAllFontsForIdentifier(identifier, deactivate, deactivated.get());
    }
    std::vector<uint32_t> TakeDeactivated() { return std::exchange(fontManager.deactivated, {}); }

    CapturedTrace trace;
    FakeFontManager fontManager;
    FakePreferences preferences;
    FontActivationTracker tracker{&preferences};
    const CFRef<CFMutableArrayRef> deactivated = cf::MutableArray();  ///< as reported
};

}  // namespace

TEST(FontActivationTracker, IdentifiersAreFreshUUIDsOrElseASingleByte) {
    const std::string first = FontActivationTracker::GenerateUniqueIdentifier();
    EXPECT_TRUE(std::regex_match(first, std::regex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"))) << first;
    EXPECT_NE(first, FontActivationTracker::GenerateUniqueIdentifier());
    EXPECT_EQ(FontActivationTracker::IdentifierFromText(cf::String(std::string(99, 'x')).get()).size(), 99u);
    EXPECT_EQ(FontActivationTracker::IdentifierFromText(cf::String(std::string(100, 'x')).get()).size(), 1u);
    EXPECT_EQ(FontActivationTracker::IdentifierFromText(nullptr).size(), 1u);
}

TEST_F(FontActivationTrackerTest, AFontThatWasActiveBeforeIsNeverDeactivated) {
    for (const int state : {1, 2, 3, 4, 5, 6, 9, 10, 11})
        fontManager.Match(static_cast<uint32_t>(100 + state), "Active", state);
    for (const int state : {-1, 0, 7, 8, 12})
        fontManager.Match(static_cast<uint32_t>(200 + state), "Inactive", state);
    fontManager.Match(300, "Stateless", std::nullopt);
    Open("A");
    Close("A");
    EXPECT_THAT(TakeDeactivated(), ElementsAre(199, 200, 207, 208, 212, 300));
    fontManager.Match(1, "Active", 1);
    Open("B");
    tracker.CloseAllFonts(true);
    EXPECT_THAT(TakeDeactivated(), IsEmpty());
}

TEST_F(FontActivationTrackerTest, ClosingWithoutDeactivationLeavesTheFontsForTheEnd) {
    Open("A", {7, 8});
    Open("B", {8});
    Close("A", false);
    Close("B");
    EXPECT_THAT(TakeDeactivated(), ElementsAre(8)) << "the close of A was counted";
    tracker.CloseAllFonts(true);
    EXPECT_THAT(TakeDeactivated(), ElementsAre(7));
    Open("C", {9});
    tracker.CloseAllFonts(false);
    EXPECT_EQ(Close("C"), 0u);
    tracker.CloseAllFonts(true);
    EXPECT_THAT(TakeDeactivated(), IsEmpty()) << "the register was emptied";
}

TEST_F(FontActivationTrackerTest, AFontThatSomeoneElseTookOverIsLeftAloneAtCloseAndAtQuit) {
    fontManager.states = {{7, false}, {8, true}};  // and nothing known of 9
    for (const bool quits : {false, true}) {
        Open("A", {7, 8, 9});
        quits ? tracker.CloseAllFonts(true) : Close("A");
        EXPECT_THAT(TakeDeactivated(), ElementsAre(8, 9));
    }
}

TEST_F(FontActivationTrackerTest, WhatIsClosedWithoutAFontManagerIsCaughtUpWith) {
    Open("A", {7});
    Open("B", {8});
    fontManager.isRunning = false;
    tracker.CloseLater("A", true);
    tracker.CloseLater("B", false);
    tracker.CatchUp();
    EXPECT_TRUE(tracker.HasClosesToCatchUp());
    fontManager.isRunning = true;
    Open("C", {9});
    EXPECT_FALSE(tracker.HasClosesToCatchUp());
    EXPECT_THAT(TakeDeactivated(), ElementsAre(7));
    tracker.CloseLater("C", true);
    fontManager.whileDeactivating = [this] { fontManager.isRunning = false; };
    tracker.CatchUp();
    EXPECT_FALSE(tracker.HasClosesToCatchUp());
}

TEST_F(FontActivationTrackerTest, TheFirstRegistrationDecidesAboutAFont) {
    const CFRef<CFDictionaryRef> first = RetainCF<CFDictionaryRef>(fontManager.Match(7, "Seven", 0));
    Open("A");
    fontManager.Match(7, "Seven again", 1);  // active, for A
    Open("B");
    Close("A");
    Close("B");
    ASSERT_EQ(cf::Count(deactivated.get()), 1);
    EXPECT_EQ(CFArrayGetValueAtIndex(deactivated.get(), 0), first.get());
}

TEST_F(FontActivationTrackerTest, ACloseThatBreaksOffCountsOnce) {
    Open("A", {7, 7});  // as a font that is matched twice
    Open("B", {7});
    fontManager.whileDeactivating = [] { throw std::runtime_error("lost"); };
    EXPECT_THROW(Close("A"), std::runtime_error);
    fontManager.whileDeactivating = nullptr;
    EXPECT_EQ(Close("A"), 0u);
    EXPECT_THAT(fontManager.deactivated, IsEmpty()) << "B still holds it";
    Close("B");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
}

TEST_F(FontActivationTrackerTest, WithoutAnIdentifierFontsBelongToTheirSubDocuments) {
    cf::Set(fontManager.Match(7, "Seven"), kGS_SubDocumentsWithFontKey, List("one", 2, "two"));
    Open("", {8});
    Close("one");
    EXPECT_THAT(fontManager.deactivated, IsEmpty());
    Close("two");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
}

TEST_F(FontActivationTrackerTest, RecordsWithoutNameOrIDAreLoggedAndPassedOver) {
    cf::Append(fontManager.matched, "no dictionary");
    cf::Set(fontManager.Match(5, "x"), kGS_PostScriptNameKey, static_cast<CFStringRef>(nullptr));
    fontManager.activationStatus = CoreErrorCodes::kError;
    EXPECT_EQ(Open("A", {0, 7}), CoreErrorCodes::kError) << "the font manager's status comes through";
    for (const char* index : {"0\n", "1\n", "2\n"})
        EXPECT_THAT(trace.Text(), HasSubstr(std::string("not found in matched font dict for i = ") + index));
    Close("A");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
}

TEST_F(FontActivationTrackerTest, WithoutAFontManagerNothingChanges) {
    Open("A", {7});
    fontManager.isRunning = false;
    uint32_t count = 42;
    EXPECT_EQ(Close("A"), kErrorMarquellNotRunning);
    EXPECT_EQ(tracker.CloseAllFonts(true), 1000u);
    EXPECT_EQ(Open("B"), kErrorMarquellNotRunning);
    EXPECT_EQ(tracker.ActivateFontsByID("B", cf::MutableArray().get(), count), kErrorMarquellNotRunning);
    EXPECT_EQ(count, 42u);
    fontManager.isRunning = true;
    Close("A");
    EXPECT_THAT(fontManager.deactivated, ElementsAre(7));
}

TEST_F(FontActivationTrackerTest, AHostThatComesBackFromBehindADialogIsRefused) {
    Open("A", {7});
    Open("C", {9});
    std::vector<ErrorCode> inner;
    fontManager.whileDeactivating = [&] {
        uint32_t count = 0;
        inner = {Close("B"), tracker.CloseAllFonts(true), Open("B", {8})};
        fontManager.Match(8, "Eight");
        inner.push_back(tracker.ActivateFontsByID("B", nullptr, count));
        EXPECT_EQ(count, 1u);
    };
    EXPECT_EQ(Close("A"), 0u);
    EXPECT_THAT(inner, testing::AllOf(testing::SizeIs(4), testing::Each(CoreErrorCodes::kUnknownError)));
    EXPECT_EQ(Close("A"), 0u) << "the lock was let go";
}

TEST_F(FontActivationTrackerTest, FontByFontOnlyWhatWasDeactivatedIsReportedAndALostFontManagerEndsTheLoop) {
    fontManager.Match(3, "Active before", 1);
    Open("A", {5, 1, 2, 4});
    Open("B", {5, 6});
    fontManager.isBatchMode = false;
    fontManager.states = {{4, false}};  // not looked at
    fontManager.statusOfSingleDeactivation = {{2, -5}, {5, 1000}};
    EXPECT_EQ(Close("A"), static_cast<ErrorCode>(-5));
    EXPECT_THAT(TakeDeactivated(), ElementsAre(1, 2, 4));
    EXPECT_EQ(cf::Count(deactivated.get()), 2);
    EXPECT_THAT(trace.Text(), HasSubstr("XTDeactivateFont returned -5\n"));
    EXPECT_EQ(Close("B"), 1000u);
    EXPECT_THAT(TakeDeactivated(), ElementsAre(5)) << "the other one is still held";
    EXPECT_EQ(tracker.CloseAllFonts(true), 1000u);
    EXPECT_THAT(TakeDeactivated(), ElementsAre(5));
    EXPECT_EQ(Open("C", {9}), 0u) << "nothing is activated font by font";
    EXPECT_EQ(tracker.CloseAllFonts(true), 0u);
    EXPECT_THAT(TakeDeactivated(), IsEmpty()) << "a quit forgets them";
}
