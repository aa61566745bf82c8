#include "HostApplication.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CapturedTrace.h"

TEST(HostApplication, KindsShortCodesAndWindowNamesGoByTheName) {
    struct Row {
        const char* hostApp;
        HostKind kind;
        const char* shortCode;
        const char* windowName;
    };
    for (const Row& row : {Row{"Illustrator2024", HostKind::kIllustrator, "ai", "illustrator"},
                           Row{"AfterEffects2025", HostKind::kAfterEffects, "ae", "After Effects"},
                           Row{"AECC2015", HostKind::kOther, "ae", "After Effects"},
                           Row{"InDesign2024", HostKind::kInDesign, "id", "indesign"},
                           Row{"InCopy2024", HostKind::kInCopy, "id", "incopy"},
                           Row{"Photoshop2024", HostKind::kPhotoshop, "ps", "Photoshop"},
                           Row{"sketch", HostKind::kOther, "sk", "???"}}) {
        EXPECT_EQ(HostKindFromName(row.hostApp), row.kind) << row.hostApp;
        EXPECT_EQ(HostShortCode(row.hostApp), row.shortCode) << row.hostApp;
        EXPECT_EQ(HostWindowName(row.hostApp), row.windowName) << row.hostApp;
    }
    EXPECT_EQ(HostKindFromName("illustrator2024"), HostKind::kOther);
    EXPECT_EQ(HostKindFromName(""), HostKind::kOther);
}

TEST(HostApplication, AnUnknownHostIsLoggedWithItsWindowName) {
    CapturedTrace trace;
    EXPECT_EQ(HostWindowName("Quill"), "???");
    EXPECT_EQ(trace.Text(),
              "Host app ('Quill') is not After Effects, InDesign, InCopy, Illustrator, Photoshop, or Quark! "
              "Setting "
              "window name to '?\?\?'\n");
}

TEST(HostApplication, BundleIdentifiersMapExactly) {
    CapturedTrace trace;
    EXPECT_EQ(MapBundleIDtoHostApp("com.vantorix.AutoActivationPlugin.AI29"), "Illustrator2025");
    EXPECT_EQ(MapBundleIDtoHostApp("com.vantorix.AutoActivationPlugin.AE230"), "AfterEffects2023");
    EXPECT_EQ(trace.Text(), "");
    EXPECT_EQ(MapBundleIDtoHostApp("com.vantorix.autoactivationplugin.AI29"), "");
    EXPECT_EQ(MapBundleIDtoHostApp("com.vantorix.AutoActivationPlugin.AE13"), "");
    EXPECT_THAT(trace.Text(), testing::StartsWith("Unknown bundleID in MapBundleIDtoHostApp("
                                                  "com.vantorix.autoactivationplugin.AI29)\n"));
}

TEST(HostApplication, VersionsCompareByTheirNumbers) {
    const std::tuple<const char*, const char*, int> cases[] = {
        {"12.1", "12.0.9", 1},
        {"12", "12.0.0", 0},
        {"9", "10", -1},
        {"", "0.0", 0},
        {"1.0.1", "1.0", 1},
        {"1a", "19", 1},  // characters are not checked: 'a' counts 49
        {"99999999999999999999", "99999999999999999999", 0}};
    for (const auto& [a, b, result] : cases) {
        EXPECT_EQ(CompareVersions(a, b), result) << a << " " << b;
        EXPECT_EQ(CompareVersions(b, a), -result) << b << " " << a;
    }
}
