#include "HostApplication.h"

#include <gtest/gtest.h>

#include "platform/System.h"

TEST(HostApplication, KindsShortCodesAndWindowNamesGoByTheName) {
    const std::tuple<const char*, HostKind, const char*, const char*> rows[] = {
        {"AfterEffects2025", HostKind::kAfterEffects, "ae", "After Effects"},
        {"AECC2015", HostKind::kOther, "ae", "After Effects"},
        {"InCopy2024", HostKind::kInCopy, "id", "incopy"},
        {"MySketch", HostKind::kOther, "sk", "???"}};
    for (const auto& [hostApp, kind, shortCode, windowName] : rows) {
        EXPECT_EQ(HostKindFromName(hostApp), kind) << hostApp;
        EXPECT_EQ(HostShortCode(hostApp), shortCode) << hostApp;
        EXPECT_EQ(HostWindowName(hostApp), windowName) << hostApp;
    }
    EXPECT_EQ(HostKindFromName("illustrator2024"), HostKind::kOther);
}

TEST(HostApplication, FreeProgramsAreHostsOnLinuxAlone) {
    const std::tuple<const char*, const char*, bool> rows[] = {
        {"LibreOffice", "soffice.bin", platform::kIsLinux},
        {"GIMP", "gimp-2.10", platform::kIsLinux},
        {"Photoshop2024", "Photoshop2024", true},
        {"Photoshop", "libreoffice", false}};
    for (const auto& [name, process, isServed] : rows) {
        EXPECT_EQ(MapBundleIDtoHostApp("com.vantorix.AutoActivationPlugin." + std::string(name)),
                  isServed ? name : "");
        EXPECT_EQ(NamesAHostProcess(process), isServed) << process;
    }
    EXPECT_EQ(HostWindowName("GIMP"), platform::kIsLinux ? "GIMP" : "???");
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
