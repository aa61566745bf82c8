// Random walks of a host, its user and the font manager, against a model that is told what happened and
// nothing of how the tracker works: who holds which font, which fonts were active before, which are active
// now.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "AllTrackedDocuments.h"
#include "FakeFontManager.h"
#include "FontActivationTracker.h"

namespace {

constexpr int kWalks = 400;
constexpr int kSteps = 200;
constexpr uint32_t kFonts = 12;  ///< few, so that documents share them
constexpr int kPaths = 6;
constexpr int16_t kFailure = -5;
constexpr int16_t kAgentLost = static_cast<int16_t>(kErrorMarquellNotRunning);

using DatabaseIDs = std::vector<uint32_t>;

struct FontModel {
    int holds = 0;                 ///< registrations that no close has taken back
    bool isTracked = false;        ///< the plug-in answers for it
    bool wasActiveBefore = false;  ///< when the plug-in first asked for it
    bool isActive = false;         ///< as the font manager has it
    bool isTakenOver = false;      ///< the user deactivated it: it is no longer the plug-in's
    bool hasFailed = false;        ///< a deactivation that the font manager did not carry out
};

class Walk : public testing::Test {
protected:
    void Run(unsigned seed) {
        mRandom.seed(seed);
        Reset();
        for (int step = 0; step < kSteps && !HasFailure(); ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            TakeStep();
        }
        SCOPED_TRACE("seed " + std::to_string(seed) + ", quit");
        Quit();
    }

private:
    struct DocumentModel {
        AllTrackedDocuments::Document record;
        DatabaseIDs holds;
    };

    int Pick(int count) { return static_cast<int>(mRandom() % static_cast<unsigned>(count)); }
    bool OneIn(int count) { return Pick(count) == 0; }

    void Reset() {
        mTracker = std::make_unique<FontActivationTracker>(&mPreferences);
        mDocuments = {};
        mOpen.clear();
        mFonts.assign(kFonts + 1, {});
        for (FontModel& font : mFonts)
            font.isActive = OneIn(4);  // by the user
        mFontManager.isRunning = mFontManager.isBatchMode = true;
        mFontManager.statusOfSingleDeactivation.clear();
        mPreferences.values["CloseFontsOnDocClose"] = true;
    }

    void TakeStep() {
        switch (Pick(13)) {
            case 0:
            case 1:
            case 2:
                return Open();
            case 3:
            case 4:
                return ActivateChosenFonts();
            case 5:
            case 6:
            case 7:
                return CloseOne();
            case 8:
                mPreferences.values["CloseFontsOnDocClose"] = !OneIn(3);
                return;
            case 9:
                mFontManager.isRunning = !OneIn(4);
                return;
            case 10:
                mFontManager.isBatchMode = !OneIn(3);
                return;
            case 11:
                return Save();
            default:
                return DeactivateAsUser();
        }
    }

    DatabaseIDs SomeFonts() {
        DatabaseIDs fonts(static_cast<size_t>(Pick(6)));  // none at times, and some twice
        std::generate(fonts.begin(), fonts.end(), [&] { return 1 + static_cast<uint32_t>(Pick(kFonts)); });
        return fonts;
    }

    /// The font manager will match the fonts, each with its state from before.
    void Offer(const DatabaseIDs& fonts) {
        mFontManager.matched = cf::MutableArray();
        for (const uint32_t font : fonts)
            mFontManager.Match(font, "Font" + std::to_string(font), mFonts[font].isActive ? 1 : 0);
    }

    /// What was closed while the font manager was not running.
    void CatchUp() {
        PrepareFontManager();
        DatabaseIDs expected;
        if (mFontManager.isRunning) {
            for (const auto& [holds, deactivates] : std::exchange(mPutOff, {})) {
                const DatabaseIDs taken = TakeBack(holds, deactivates);
                expected.insert(expected.end(), taken.begin(), taken.end());
            }
        }
        mTracker->CatchUp();
        EXPECT_EQ(mFontManager.deactivated, expected);
        NoteDeactivations();
    }

    void Open() {
        CatchUp();
        const std::string path = "/doc/" + std::to_string(Pick(kPaths));
        AllTrackedDocuments::Document record = mDocuments.FindTrackedDocumentByPath(path);
        EXPECT_EQ(record != nullptr, mOpen.contains(path));
        if (!record) {
            record = std::make_shared<OneTrackedDocument>();
            record->SetIdentifier(FontActivationTracker::GenerateUniqueIdentifier());
            mDocuments.AddDocument(record, path);
            mOpen[path].record = record;
        }
        const DatabaseIDs fonts = SomeFonts();
        Offer(fonts);
        const ErrorCode status = mTracker->ActivateDocumentFonts(record->Identifier(), path,
                                                                 {.matchedFonts = cf::MutableArray().get()});
        NoteActivation(status, mOpen[path], fonts);
    }

    void ActivateChosenFonts() {
        if (mOpen.empty())
            return;
        CatchUp();
        DocumentModel& document = SomeDocument()->second;
        const DatabaseIDs fonts = SomeFonts();
        Offer(fonts);
        uint32_t matchedCount = 0;
        const ErrorCode status = mTracker->ActivateFontsByID(document.record->Identifier(),
                                                             cf::MutableArray().get(), matchedCount);
        EXPECT_EQ(matchedCount, CanActivate() ? fonts.size() : 0);
        NoteActivation(status, document, fonts);
    }

    bool CanActivate() const { return mFontManager.isRunning && mFontManager.isBatchMode; }

    void NoteActivation(ErrorCode status, DocumentModel& document, const DatabaseIDs& fonts) {
        EXPECT_EQ(status, mFontManager.isRunning ? 0 : kErrorMarquellNotRunning);
        for (const uint32_t databaseID : CanActivate() ? fonts : DatabaseIDs()) {
            FontModel& font = mFonts[databaseID];
            if (!font.isTracked)
                font = {0, true, font.isActive};
            ++font.holds;
            font.isActive = true;
            font.isTakenOver = false;
            document.holds.push_back(databaseID);
        }
    }

    void Save() {
        if (mOpen.empty())
            return;
        const auto& [path, document] = *SomeDocument();
        AllTrackedDocuments::Document none;
        mDocuments.AddDocument(none, path);
        EXPECT_EQ(none, nullptr);
        EXPECT_EQ(mDocuments.FindTrackedDocumentByPath(path), document.record);
        EXPECT_EQ(mDocuments.Documents().size(), mOpen.size());
    }

    void DeactivateAsUser() {
        FontModel& font = mFonts[1 + static_cast<uint32_t>(Pick(kFonts))];
        font.isTakenOver = font.isTracked && !font.wasActiveBefore;
        font.isActive = false;
    }

    std::map<std::string, DocumentModel>::iterator SomeDocument() {
        return std::next(mOpen.begin(), Pick(static_cast<int>(mOpen.size())));
    }

    void CloseOne() {
        if (mOpen.empty())
            return;
        const auto document = SomeDocument();
        const DocumentModel closed = document->second;
        mOpen.erase(document);
        const bool deactivates = mPreferences.values["CloseFontsOnDocClose"];
        CatchUp();
        PrepareFontManager();
        mDocuments.RemoveClosedDocument(*closed.record, mTracker.get());
        EXPECT_EQ(mDocuments.FindTrackedDocumentByIdentifier(closed.record->Identifier()), nullptr);
        DatabaseIDs expected;
        if (mFontManager.isRunning)
            expected = TakeBack(closed.holds, deactivates);
        else
            mPutOff.emplace_back(closed.holds, deactivates);
        EXPECT_EQ(mFontManager.deactivated, expected);
        NoteDeactivations();
    }

    /// What the font manager will say of the fonts' states and to single deactivations.
    void PrepareFontManager() {
        mFontManager.deactivated.clear();
        mFontManager.states.clear();
        mFontManager.statusOfSingleDeactivation.clear();
        for (uint32_t databaseID = 1; databaseID <= kFonts; ++databaseID) {
            if (mFonts[databaseID].isTakenOver)
                mFontManager.states[databaseID] = false;
            else if (OneIn(2))
                mFontManager.states[databaseID] = true;  // else it cannot tell
            if (OneIn(8))
                mFontManager.statusOfSingleDeactivation[databaseID] = OneIn(2) ? kFailure : kAgentLost;
        }
    }

    /// The document's holds go; the fonts that the font manager is to be asked to deactivate.
    DatabaseIDs TakeBack(const DatabaseIDs& holds, bool deactivates) {
        DatabaseIDs asked;
        for (const uint32_t databaseID : holds) {
            FontModel& font = mFonts[databaseID];
            if (!font.isTracked)
                continue;
            --font.holds;
            EXPECT_GE(font.holds, 0);
            if (font.holds > 0 || !deactivates)
                continue;
            if (MayDeactivate(font)) {
                asked.push_back(databaseID);
                if (StatusOf(databaseID) == kAgentLost)
                    break;
            }
            font.isTracked = false;
        }
        return asked;
    }

    /// Font by font the state that the font manager tells is not looked at.
    bool MayDeactivate(const FontModel& font) const {
        return !font.wasActiveBefore && !(font.isTakenOver && mFontManager.isBatchMode);
    }

    int16_t StatusOf(uint32_t databaseID) const {
        const auto& statuses = mFontManager.statusOfSingleDeactivation;
        const auto status = statuses.find(databaseID);
        return mFontManager.isBatchMode || status == statuses.end() ? int16_t{0} : status->second;
    }

    /// Holds for whatever the tracker asks, and whenever.
    void NoteDeactivations() {
        for (const uint32_t databaseID : mFontManager.deactivated) {
            FontModel& font = mFonts[databaseID];
            EXPECT_FALSE(IsHeldByAnOpenDocument(databaseID)) << "font " << databaseID;
            EXPECT_FALSE(font.wasActiveBefore) << "font " << databaseID;
            EXPECT_FALSE(font.isTakenOver && mFontManager.isBatchMode) << "font " << databaseID;
            if (StatusOf(databaseID) == 0)
                font.isActive = false;
            else
                font.hasFailed = true;
        }
    }

    bool IsHeldByAnOpenDocument(uint32_t databaseID) const {
        return std::any_of(mOpen.begin(), mOpen.end(), [&](const auto& each) {
            const DatabaseIDs& holds = each.second.holds;
            return std::find(holds.begin(), holds.end(), databaseID) != holds.end();
        });
    }

    void Quit() {
        mOpen.clear();  // from here on no document holds anything
        mFontManager.isRunning = true;
        CatchUp();
        PrepareFontManager();
        DatabaseIDs expected;
        ErrorCode lastFailure = 0;
        for (uint32_t databaseID = 1; databaseID <= kFonts; ++databaseID) {
            const FontModel& font = mFonts[databaseID];
            if (!font.isTracked || !MayDeactivate(font))
                continue;
            expected.push_back(databaseID);
            if (StatusOf(databaseID) != 0)
                lastFailure = static_cast<ErrorCode>(StatusOf(databaseID));
            if (lastFailure == kErrorMarquellNotRunning)
                break;
        }
        EXPECT_EQ(mTracker->CloseAllFonts(true), lastFailure);
        EXPECT_EQ(mFontManager.deactivated, expected);
        NoteDeactivations();
        if (lastFailure != kErrorMarquellNotRunning)
            ExpectNothingLeftActive();
        mFontManager.deactivated.clear();
        EXPECT_EQ(mTracker->CloseAllFonts(true), 0u);
        EXPECT_TRUE(mFontManager.deactivated.empty()) << "the register was not emptied";
    }

    void ExpectNothingLeftActive() {
        for (uint32_t databaseID = 1; databaseID <= kFonts; ++databaseID) {
            const FontModel& font = mFonts[databaseID];
            const bool isOurs = font.isTracked && !font.wasActiveBefore && !font.hasFailed;
            EXPECT_FALSE(isOurs && font.isActive) << "font " << databaseID;
        }
    }

    std::mt19937 mRandom;
    FakeFontManager mFontManager;
    FakePreferences mPreferences;
    std::unique_ptr<FontActivationTracker> mTracker;
    AllTrackedDocuments mDocuments;
    std::map<std::string, DocumentModel> mOpen;  ///< by path
    std::vector<FontModel> mFonts;               ///< by database ID
    std::vector<std::pair<DatabaseIDs, bool>> mPutOff;
};

using FontActivationTrackerWalk = Walk;

}  // namespace

TEST_F(FontActivationTrackerWalk, NoFontIsTakenFromSomebodyAndNoneIsLeftBehind) {
    for (unsigned seed = 1; seed <= kWalks && !HasFailure(); ++seed)
        Run(seed);
}
