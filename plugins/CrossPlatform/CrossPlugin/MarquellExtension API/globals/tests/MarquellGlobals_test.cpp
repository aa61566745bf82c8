#include "MarquellGlobals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CapturedTrace.h"
#include "FakeFontManager.h"
#include "FakeFramework.h"
#include "FakePlatform.h"

using testing::HasSubstr;

namespace {

constexpr char kModule[] = "/plugins/libPluginCore.so";

class MarquellGlobalsTest : public testing::Test {
protected:
    ~MarquellGlobalsTest() override { MarquellGlobals::ResetForTesting(); }

    void SetUpIdentity(const std::string& identifier, const std::string& prefix = "") {
        MarquellGlobals::SetUpPluginIdentity(identifier, prefix, [] { return "8.0.1.0"; });
    }
    bool IsCompatible(bool& disableDialogs) {
        return MarquellGlobals::RunningInCompatibleHostApp(disableDialogs);
    }
    void SetHostVersion(const std::string& version) {
        versions.values[{"/host/" + processes.currentName, "FileVersion"}] = version;
    }

    CapturedTrace trace;
    FakeLibraries libraries;
    FakeVersionResources versions;
    FakeProcesses processes;
    FakeWindowing windowing;
    FakeFramework framework;
};

}  // namespace

TEST_F(MarquellGlobalsTest, ABundleIdentifierReadsTheLibrarysOwnVersions) {
    versions.values = {{{kModule, "PrivateBuild"}, "8.0.0.1"},
                       {{kModule, "InternalName"}, "PluginCore"},
                       {{kModule, "HostAppMinimumVersion"}, "27.0"}};
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI28", "28.");
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), "8.0.0.1");
    EXPECT_EQ(MarquellGlobals::GetPluginHostApp(), "Illustrator2024") << "the core's own name is no host";
    EXPECT_EQ(MarquellGlobals::GetHostAppMinimumVersion(), "27.0");
    EXPECT_EQ(MarquellGlobals::GetVersionPrefixRequired(), "28.");
    EXPECT_EQ(MarquellGlobals::GetPluginPath(), kModule);
    EXPECT_EQ(MarquellGlobals::GetPluginInterfaceVersion(), "8.0.1.0");
    EXPECT_EQ(MarquellGlobals::GetHostWindowName(), "illustrator");
}

TEST_F(MarquellGlobalsTest, APathReadsThatFilesVersions) {
    versions.values = {{{"/p/ae.plugin", "PrivateBuild"}, "7.0"},
                       {{"/p/ae.plugin", "InternalName"}, "AfterEffects2026"}};
    SetUpIdentity("/p/ae.plugin");
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), "7.0");
    EXPECT_EQ(MarquellGlobals::GetPluginHostApp(), "AfterEffects2026");
    EXPECT_TRUE(MarquellGlobals::HostAppIsAfterEffects());
    EXPECT_EQ(MarquellGlobals::GetHostShortCode(), "ae");
    EXPECT_EQ(MarquellGlobals::GetPluginPath(), "/p/ae.plugin");
}

TEST_F(MarquellGlobalsTest, WithoutAModuleOrAShortPathThereIsNoPath) {
    libraries.isModuleKnown = false;
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29");
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), "x.x.x.x");
    EXPECT_EQ(MarquellGlobals::GetPluginPath(), "");
    EXPECT_EQ(MarquellGlobals::GetPluginHostApp(), "Illustrator2025");
    libraries.isModuleKnown = true;
    libraries.pathOfThisModule = std::string(4096, 'x');
    versions.values[{libraries.pathOfThisModule, "PrivateBuild"}] = std::string(2000, '8');
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29");
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), std::string(1023, '8'));
    EXPECT_EQ(MarquellGlobals::GetPluginPath(), "");
}

TEST_F(MarquellGlobalsTest, TheFlagsGateThePluginAndLogTheirChanges) {
    EXPECT_FALSE(MarquellGlobals::IsPluginFunctional());
    MarquellGlobals::SetPluginServicesEnabled(true);
    MarquellGlobals::SetLoggedIn(true);
    EXPECT_FALSE(MarquellGlobals::IsPluginFunctional());
    MarquellGlobals::SetPluginFunctionalityEnabled(true);
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional()) << "being connected is no part of it";
    MarquellGlobals::SetConnectedToCore(true);
    MarquellGlobals::SetBulkReplicationRunning(true);
    MarquellGlobals::SetIncrementalReplicationRunning(false);
    EXPECT_THAT(trace.Text(), HasSubstr("SetBulkReplicationRunning(isReplicating=1)\n"
                                        "Calling MarquellGlobals::SetIncrementalReplicationRunning("
                                        "isReplicating=0)\n"));
}

TEST_F(MarquellGlobalsTest, AHostOfTheRightVersionIsCompatible) {
    bool disableDialogs = false;
    SetHostVersion("18.5.0.64");
    versions.values[{kModule, "HostAppMinimumVersion"}] = "19.0";
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", "18.");
    EXPECT_TRUE(IsCompatible(disableDialogs)) << "a required prefix overrules the minimum version";
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", "");
    EXPECT_FALSE(IsCompatible(disableDialogs));
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", "18.6");
    EXPECT_FALSE(IsCompatible(disableDialogs));
    SetHostVersion("19");
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", "");
    EXPECT_TRUE(IsCompatible(disableDialogs));
    EXPECT_FALSE(disableDialogs);
    processes.currentName = "bash";
    EXPECT_FALSE(IsCompatible(disableDialogs));
    EXPECT_TRUE(disableDialogs) << "no host at all";
}

TEST_F(MarquellGlobalsTest, TheMainWindowIsFoundByClassThenByTitle) {
    int a = 0;
    int b = 0;
    EXPECT_EQ(MarquellGlobals::GetHostAppMainWindow(), nullptr) << "no host, no window";
    MarquellGlobals::SetHostApp("Photoshop2024");
    windowing.topLevel = {{&a, ""}, {&b, "doc.psd - Adobe Photoshop 2024"}};
    EXPECT_EQ(MarquellGlobals::GetHostAppMainWindow(), &b);
    windowing.byClass["Photoshop"] = &a;
    EXPECT_EQ(MarquellGlobals::GetHostAppMainWindow(), &a);
    EXPECT_EQ(MarquellGlobals::FindWindowWithMatchingTitle("Adobe", "Panel"), nullptr);
    windowing.below[&b] = {{&a, ""}, {&a, "The Panel"}};
    EXPECT_EQ(MarquellGlobals::FindWindowWithMatchingTitle("Adobe", "Panel"), &b);
    EXPECT_EQ(MarquellGlobals::FindWindowWithMatchingTitle("Missing", nullptr), nullptr);
}

TEST_F(MarquellGlobalsTest, AFileWithoutVersionsIsLoggedAndReadsAsEmpty) {
    versions.errorOfOthers = 61;
    SetUpIdentity("/p/no.plugin");
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), "");
    EXPECT_EQ(MarquellGlobals::GetPluginHostApp(), "") << "nor is the path a known identifier";
    EXPECT_THAT(trace.Text(), HasSubstr("('/p/no.plugin', ...) returned error code 0x0000003d (61)\n"));
}

TEST_F(MarquellGlobalsTest, WithoutAHostTheInterfaceIsMadeAllTheSame) {
    EXPECT_NE(MarquellGlobals::GetSharedVPFInterface(), nullptr);
    EXPECT_EQ(MarquellGlobals::GetSharedVPFInterface(), MarquellGlobals::GetSharedVPFInterface());
    EXPECT_EQ(MarquellGlobals::GetHostKind(), HostKind::kOther);
    EXPECT_EQ(MarquellGlobals::GetHostWindowName(), "");
}

TEST_F(MarquellGlobalsTest, SketchIsRecognisedAnywhereInTheName) {
    for (const auto& [name, isSketch] : {std::pair{"MySketch", true}, {"mysketch", false}}) {
        MarquellGlobals::SetHostApp(name);
        EXPECT_EQ(MarquellGlobals::HostAppIsSketch(), isSketch);
    }
}

TEST_F(MarquellGlobalsTest, FontsAreHandedOverOnlyWhenThePluginWorks) {
    static VantorixPluginFramework* made = nullptr;
    made = &framework;
    libraries.loadable = {fake_paths::kFramework};
    libraries.symbols["CreateVantorixPluginFramework"] = reinterpret_cast<void*>(
        +[](uint32_t, const char*, CFDictionaryRef) -> VantorixPluginFramework* { return made; });
    FakeFontManager fontManager;
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29");
    MarquellGlobals::SetPluginServicesEnabled(true);
    MarquellGlobals::SetLoggedIn(true);
    MarquellGlobals::SetPluginFunctionalityEnabled(true);
    const auto save = [] { return MarquellGlobals::SaveDocumentFonts("/a.ai", true, nullptr); };
    EXPECT_FALSE(save()) << "switched off";
    framework.numbers["EnablePlugin"] = 1;
    fontManager.isLoggedIn = false;
    EXPECT_FALSE(save());
    EXPECT_THAT(trace.Text(),
                testing::EndsWith("SaveDocumentFonts not valid, not enabled, or not logged in\n"));
    fontManager.isLoggedIn = true;
    EXPECT_TRUE(save());
    EXPECT_THAT(trace.Text(), testing::EndsWith("Exiting MarquellGlobals::SaveDocumentFonts success=1\n"));
    fontManager.takesFonts = false;
    EXPECT_FALSE(save());
    fontManager.takesFonts = true;
    MarquellGlobals::SetLoggedIn(false);
    EXPECT_FALSE(save());
}

TEST_F(MarquellGlobalsTest, TheHostsFontListIsRefreshedTwice) {
    int count = 0;
    MarquellGlobals::RefreshActiveFontList([](void* context) { ++*static_cast<int*>(context); }, &count);
    EXPECT_EQ(count, 2);
    MarquellGlobals::RefreshActiveFontList(nullptr, nullptr);
}
