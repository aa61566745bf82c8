#include "HostApplication.h"

#include <gtest/gtest.h>

#include "CapturedTrace.h"

TEST(HostApplication, KindsShortCodesAndWindowNamesGoByTheName) {
    const struct {
        const char* hostApp;
        HostKind kind;
        const char* shortCode;
        const char* windowName;
    } rows[] = {{"Illustrator2024", HostKind::kIllustrator, "ai", "illustrator"},
                {"AfterEffects2025", HostKind::kAfterEffects, "ae", "After Effects"},
                {"AECC2015", HostKind::kOther, "ae", "After Effects"},
                {"InDesign2024", HostKind::kInDesign, "id", "indesign"},
                {"InCopy2024", HostKind::kInCopy, "id", "incopy"},
                {"Photoshop2024", HostKind::kPhotoshop, "ps", "Photoshop"},
                {"MySketch", HostKind::kOther, "sk", "???"}};
    for (const auto& row : rows) {
        EXPECT_EQ(HostKindFromName(row.hostApp), row.kind) << row.hostApp;
        EXPECT_EQ(HostShortCode(row.hostApp), row.shortCode) << row.hostApp;
        EXPECT_EQ(HostWindowName(row.hostApp), row.windowName) << row.hostApp;
    }
    EXPECT_EQ(HostKindFromName("illustrator2024"), HostKind::kOther);
    EXPECT_EQ(HostKindFromName(""), HostKind::kOther);
}

TEST(HostApplication, VersionsCompareByTheirNumbers) {
    const std::tuple<const char*, const char*, int> cases[] = {
        {"12.1", "12.0.9", 1},
        {"12", "12.0.0", 0},
        {"9", "10", -1},
        {"", "0.0", 0},
        {"1.0.1", "1.0", 1},
        {"1a", "19", 1},
        {"99999999999999999999", "99999999999999999999", 0}};
    for (const auto& [a, b, result] : cases) {
        EXPECT_EQ(CompareVersions(a, b), result) << a << " " << b;
        EXPECT_EQ(CompareVersions(b, a), -result) << b << " " << a;
    }
}
