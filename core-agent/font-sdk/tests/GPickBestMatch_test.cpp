#include "GPickBestMatch.h"

#include <gtest/gtest.h>

#include <vector>

#include "GFontManagerConstants.h"

namespace {

using Kinds = GFontManagerConstants;

BestMatchCandidate Candidate(uint32_t id) {
    BestMatchCandidate candidate;
    candidate.ID = id;
    candidate.kind = Kinds::kFontKind_openTypeTT;
    candidate.version = "1.0";
    candidate.mode = 1;
    return candidate;
}

bool LeftIsBetter(const BestMatchCandidate& left, const BestMatchCandidate& right,
                  int32_t requestedKind = Kinds::kFontKind_unknown, const char* preferredText = "",
                  bool ignoreModeZero = false) {
    bool leftIsBetter = false;
    EXPECT_EQ(
        GPickBestMatch::Compare(left, right, leftIsBetter, ignoreModeZero, preferredText, requestedKind),
        CoreErrorCodes::kSuccess);
    return leftIsBetter;
}

void ExpectWins(const BestMatchCandidate& better, const BestMatchCandidate& worse,
                int32_t requestedKind = Kinds::kFontKind_unknown, const char* preferredText = "") {
    EXPECT_TRUE(LeftIsBetter(better, worse, requestedKind, preferredText));
    EXPECT_FALSE(LeftIsBetter(worse, better, requestedKind, preferredText));
}

TEST(GPickBestMatch, RefusesAnInvalidModeOnEitherSide) {
    BestMatchCandidate invalid = Candidate(1);
    invalid.mode = -1;
    const BestMatchCandidate valid = Candidate(2);
    for (const auto& [left, right] : {std::pair{invalid, valid}, {valid, invalid}}) {
        bool leftIsBetter = false;
        EXPECT_EQ(GPickBestMatch::Compare(left, right, leftIsBetter, false, "", 0),
                  CoreErrorCodes::kInvalidParam);
        EXPECT_TRUE(leftIsBetter);
    }
}

TEST(GPickBestMatch, AppliesItsRulesInOrder) {
    // Each candidate is worse than the next one by its own rule and better by all rules that come later.
    std::vector<BestMatchCandidate> ladder(9, Candidate(0));
    for (size_t index = 0; index < ladder.size(); ++index) {
        BestMatchCandidate& candidate = ladder[index];
        candidate.ID = static_cast<uint32_t>(index + 1);
        if (index < 1)
            candidate.mode = 7;
        if (index < 2)
            candidate.status = 4 + static_cast<int32_t>(index);
        if (index == 2)
            candidate.mode = 0;
        if (index == 3)
            candidate.kind = Kinds::kFontKind_trueType;
        candidate.preferredIdentity = index >= 5 ? "wanted" : "other";
        candidate.version = index >= 6 ? "2.0" : index == 5 ? "1.9" : "3.0";
        if (index >= 7)
            candidate.status = 3;
        candidate.orderNumber = index == 8 ? 1 : 2;
    }
    for (size_t worse = 0; worse < ladder.size(); ++worse) {
        for (size_t better = worse + 1; better < ladder.size(); ++better) {
            SCOPED_TRACE(testing::Message() << worse << " against " << better);
            ExpectWins(ladder[better], ladder[worse], Kinds::kFontKind_unknown, "wanted");
        }
    }
}

TEST(GPickBestMatch, ModeZeroLosesUnlessIgnored) {
    BestMatchCandidate zero = Candidate(1);
    zero.mode = 0;
    ExpectWins(Candidate(2), zero);
    BestMatchCandidate seven = Candidate(1);
    seven.mode = 7;
    ExpectWins(Candidate(2), seven);
    EXPECT_TRUE(LeftIsBetter(zero, Candidate(2), Kinds::kFontKind_unknown, "", true));
    EXPECT_FALSE(LeftIsBetter(Candidate(5), Candidate(5))) << "of one font neither side is better";
}

TEST(GPickBestMatch, PrefersTheFlavourThatWasAskedFor) {
    const auto ofKind = [](uint32_t id, int32_t kind) {
        BestMatchCandidate candidate = Candidate(id);
        candidate.kind = kind;
        return candidate;
    };
    const auto trueTypeFlavour = Candidate(1), postScriptFlavour = ofKind(2, Kinds::kFontKind_openTypePS);
    for (const int32_t kind : {2, 3, 5, 6})
        ExpectWins(postScriptFlavour, trueTypeFlavour, kind);
    for (const int32_t kind : {-1, 0, 1, 4, 7, 8, 9})
        ExpectWins(trueTypeFlavour, postScriptFlavour, kind);
    ExpectWins(ofKind(4, Kinds::kFontKind_postScript), ofKind(3, Kinds::kFontKind_trueTypeCollection));
    ExpectWins(ofKind(1, Kinds::kFontKind_cid), ofKind(2, Kinds::kFontKind_unknown));
}

TEST(GPickBestMatch, RanksStatusesAmongEqualVersions) {
    const auto ofStatus = [](uint32_t id, int32_t status) {
        BestMatchCandidate candidate = Candidate(id);
        candidate.status = status;
        return candidate;
    };
    constexpr int32_t kBestFirst[] = {3, 1, 2, 14, 9, 10, 11, 12, 13, 0, 5, 4, 6, 7, 8};
    for (size_t index = 1; index < std::size(kBestFirst); ++index) {
        SCOPED_TRACE(kBestFirst[index]);
        ExpectWins(ofStatus(2, kBestFirst[index - 1]), ofStatus(1, kBestFirst[index]));
    }
    ExpectWins(ofStatus(1, 13), ofStatus(2, 15));
}

TEST(GPickBestMatch, ReadsVersionNumbersOutOfFontVersionTexts) {
    const std::pair<const char*, const char*> cases[] = {{"Version 2.51;hotconv 1.0.109", "2/51/0"},
                                                         {"1.002.003.4", "1/2/3"},
                                                         {"3.", "3/0/0"},
                                                         {"1.5", "1/5/0"},
                                                         {"", "99/99/99"},
                                                         {"beta", "99/99/99"},
                                                         {"1.99999999999", "99/99/99"}};
    for (const auto& [text, expected] : cases) {
        uint32_t major = 99, minor = 99, bug = 99;
        const ErrorCode code = GPickBestMatch::VersionStringToNumber(text, major, minor, bug);
        EXPECT_EQ(std::to_string(major) + "/" + std::to_string(minor) + "/" + std::to_string(bug), expected);
        EXPECT_EQ(code != CoreErrorCodes::kSuccess, major == 99) << text;
    }
    BestMatchCandidate unreadable = Candidate(1);
    unreadable.version = "none";
    BestMatchCandidate newer = Candidate(2);
    newer.version = "9.0";
    ExpectWins(unreadable, newer);  // by the rules that follow
}

TEST(GFontManagerConstants, KindsInRecordsMayHaveOtherNames) {
    EXPECT_EQ(Kinds::FontKindFromRecord("OpenType"), Kinds::kFontKind_openTypeTT);
    EXPECT_EQ(Kinds::FontKindFromRecord("Postscript"), Kinds::kFontKind_postScript);
    EXPECT_EQ(Kinds::FontKindFromRecord("CID"), Kinds::kFontKind_cid);
    EXPECT_EQ(Kinds::FontKindFromRecord(""), Kinds::kFontKind_unknown);
    EXPECT_EQ(Kinds::FontKindFromRecord(Kinds::FontKindToName(Kinds::kFontKind_openTypePS)),
              Kinds::kFontKind_openTypePS);
}

}  // namespace
