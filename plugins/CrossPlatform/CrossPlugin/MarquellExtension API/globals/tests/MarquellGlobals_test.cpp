#include "MarquellGlobals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CapturedTrace.h"
#include "FakeFontManager.h"
#include "FakeFramework.h"
#include "FakePlatform.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

FakeFramework* frameworkToMake = nullptr;

/// The factory of a framework library that gives out this one.
void* MakerOf(FakeFramework& framework) {
    frameworkToMake = &framework;
    return reinterpret_cast<void*>(
        +[](uint32_t, const char*, CFDictionaryRef) -> VantorixPluginFramework* { return frameworkToMake; });
}

std::string lastHint;

class HintedHost : public HostAppInterface {
public:
    void ShowProgressHint(const char* hint) override { lastHint = hint; }
    void Refresh(bool, bool) override {}
    void OnWorkgroupsChanged() override {}
    void SendKeyPress(const KeyPress&) override {}
};

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
    EXPECT_THAT(trace.Text(), HasSubstr("Plugin path is '/plugins/libPluginCore.so'.\n"
                                        "IdentifyPluginInterfaceVersion(8.0.1.0)\n"
                                        "Entering IdentifyPluginVersion('8.0.0.1')\n"
                                        "Exiting IdentifyPluginVersion()\n"));
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

TEST_F(MarquellGlobalsTest, WithoutAModuleTheVersionIsUnknown) {
    libraries.isModuleKnown = false;
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29");
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), "x.x.x.x");
    EXPECT_EQ(MarquellGlobals::GetPluginPath(), "");
    EXPECT_EQ(MarquellGlobals::GetPluginHostApp(), "Illustrator2025");
    EXPECT_THAT(trace.Text(), HasSubstr(" in call to GetModuleHandleEx(0x00000006, 0x"));
}

TEST_F(MarquellGlobalsTest, AModuleWithTooLongAPathHasItsVersionsAllTheSame) {
    libraries.pathOfThisModule = std::string(4096, 'x');
    versions.values[{libraries.pathOfThisModule, "PrivateBuild"}] = std::string(2000, '8');
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29");
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), std::string(1023, '8'));
    EXPECT_EQ(MarquellGlobals::GetPluginPath(), "");
    EXPECT_THAT(trace.Text(), HasSubstr("after GetModuleFileNameW()\n"));
    EXPECT_THAT(trace.Text(), testing::Not(HasSubstr("Plugin path is")));
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
    EXPECT_EQ(trace.Text(),
              "Calling MarquellGlobals::SetPluginServicesEnabled( enable=1 )\n"
              "Calling MarquellGlobals::SetLoggedIn(loggedIn=1)\n"
              "Calling MarquellGlobals::SetConnectedToCore(connected=1)\n"
              "Calling MarquellGlobals::SetBulkReplicationRunning(isReplicating=1)\n"
              "Calling MarquellGlobals::SetIncrementalReplicationRunning(isReplicating=0)\n");
}

TEST_F(MarquellGlobalsTest, AHostOfTheRightVersionIsCompatible) {
    bool disableDialogs = false;
    SetHostVersion("18.5.0.64");
    versions.values[{kModule, "HostAppMinimumVersion"}] = "19.0";
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", "18.");
    EXPECT_TRUE(IsCompatible(disableDialogs)) << "a required prefix overrules the minimum version";
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", "");
    EXPECT_FALSE(IsCompatible(disableDialogs));
    EXPECT_THAT(trace.Text(),
                HasSubstr("RunningInCompatibleHostApp: app version (18.5.0.64) incompatible with "
                          "minimumVersionRequired (19.0)\n"));
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", "18.6");
    EXPECT_FALSE(IsCompatible(disableDialogs));
    EXPECT_THAT(trace.Text(), HasSubstr("incompatible with versionPrefixRequired (18.6)\n"));
    SetHostVersion("19");
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", "");
    EXPECT_TRUE(IsCompatible(disableDialogs));
    EXPECT_FALSE(disableDialogs);
}

TEST_F(MarquellGlobalsTest, AProcessThatIsNoHostGetsNoDialogs) {
    bool disableDialogs = false;
    processes.currentName = "bash";
    EXPECT_FALSE(IsCompatible(disableDialogs));
    EXPECT_TRUE(disableDialogs);
    EXPECT_THAT(trace.Text(),
                HasSubstr("RunningInCompatibleHostApp: returning 0, and disable dialogs is 1\n"));
}

TEST_F(MarquellGlobalsTest, TheMainWindowIsFoundByClassThenByTitle) {
    int a = 0;
    int b = 0;
    EXPECT_EQ(MarquellGlobals::GetHostAppMainWindow(), nullptr) << "no host, no window";
    MarquellGlobals::SetHostApp("Photoshop2024");
    windowing.topLevel = {{&a, ""}, {&b, "doc.psd - Adobe Photoshop 2024"}};
    EXPECT_EQ(MarquellGlobals::GetHostAppMainWindow(), &b);
    EXPECT_THAT(trace.Text(),
                HasSubstr("FindWindowA('Photoshop', NULL) returned NULL\n"
                          "Entering MarquellGlobals::FindWindowWithMatchingTitle(Adobe Photoshop, NULL)\n"));
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
    EXPECT_THAT(trace.Text(),
                HasSubstr("GetFileVersionInfoA('/p/no.plugin', ...) returned error code 0x0000003d "
                          "(61)\n"));
    EXPECT_EQ(MarquellGlobals::GetPluginHostApp(), "") << "nor is the path a known identifier";
    EXPECT_THAT(trace.Text(), HasSubstr("Unknown bundleID in MapBundleIDtoHostApp(/p/no.plugin)\n"));
}

TEST_F(MarquellGlobalsTest, WithoutAHostTheInterfaceIsMadeAllTheSame) {
    EXPECT_NE(MarquellGlobals::GetSharedVPFInterface(), nullptr);
    EXPECT_THAT(trace.Text(),
                StartsWith("ERROR: sHostApp is NULL in MarquellGlobals::GetSharedVPFInterface()\n"
                           "VPFInterface::VPFInterface(hostApp='NULL'"));
    EXPECT_EQ(MarquellGlobals::GetSharedVPFInterface(), MarquellGlobals::GetSharedVPFInterface());
    EXPECT_EQ(MarquellGlobals::GetHostKind(), HostKind::kOther);
    EXPECT_EQ(MarquellGlobals::GetHostWindowName(), "");
}

TEST_F(MarquellGlobalsTest, SketchIsRecognisedAnywhereInTheName) {
    MarquellGlobals::SetHostApp("MySketch");
    EXPECT_TRUE(MarquellGlobals::HostAppIsSketch());
    EXPECT_THAT(trace.Text(), HasSubstr("MarquellGlobals::HostAppIsSketch() returning 1 because "
                                        "GetPluginHostApp() returned 'MySketch'\n"));
    EXPECT_EQ(MarquellGlobals::GetHostShortCode(), "sk");
    MarquellGlobals::SetHostApp("mysketch");
    EXPECT_FALSE(MarquellGlobals::HostAppIsSketch());
}

TEST_F(MarquellGlobalsTest, FontsAreHandedOverOnlyWhenThePluginWorks) {
    constexpr char kRefusal[] =
        "Exiting MarquellGlobals::SaveDocumentFonts not valid, not enabled, or not logged in\n";
    FakeFontManager fontManager;
    libraries.loadable = {fake_paths::kFramework};
    libraries.symbols["CreateVantorixPluginFramework"] = MakerOf(framework);
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29");
    MarquellGlobals::SetPluginServicesEnabled(true);
    MarquellGlobals::SetLoggedIn(true);
    MarquellGlobals::SetPluginFunctionalityEnabled(true);
    MarquellGlobals::GetSharedVPFInterface();
    MarquellGlobals::SetSharedHostAppInterface(std::make_unique<HintedHost>());
    trace.Clear();
    EXPECT_FALSE(MarquellGlobals::SaveDocumentFonts("/a.ai", true, nullptr)) << "switched off";
    EXPECT_EQ(lastHint, "...SaveDocumentFonts() hint");
    EXPECT_EQ(trace.Text(),
              std::string("Entering MarquellGlobals::SaveDocumentFonts (path=/a.ai, hint=0x00000000)\n") +
                  kRefusal);
    framework.numbers["EnablePlugin"] = 1;
    fontManager.isLoggedIn = false;
    EXPECT_FALSE(MarquellGlobals::SaveDocumentFonts("/a.ai", true, nullptr));
    fontManager.isLoggedIn = true;
    for (const bool isTaken : {true, false}) {
        trace.Clear();
        fontManager.takesFonts = isTaken;
        EXPECT_EQ(MarquellGlobals::SaveDocumentFonts("/a.ai", true, nullptr), isTaken);
        EXPECT_THAT(trace.Text(), HasSubstr(" Calling VPI SaveDocumentFonts\n"));
        EXPECT_THAT(trace.Text(),
                    testing::EndsWith(isTaken ? "Exiting MarquellGlobals::SaveDocumentFonts success=1\n"
                                              : "Exiting MarquellGlobals::SaveDocumentFonts success=0\n"));
    }
    MarquellGlobals::SetLoggedIn(false);
    EXPECT_FALSE(MarquellGlobals::SaveDocumentFonts("/a.ai", true, nullptr));
    EXPECT_THAT(trace.Text(), testing::EndsWith(kRefusal));
}

TEST_F(MarquellGlobalsTest, TheHostsFontListIsRefreshedTwice) {
    int count = 0;
    MarquellGlobals::RefreshActiveFontList([](void* context) { ++*static_cast<int*>(context); }, &count);
    EXPECT_EQ(count, 2);
    MarquellGlobals::RefreshActiveFontList(nullptr, nullptr);
    EXPECT_THAT(trace.Text(), StartsWith("Entering MarquellGlobals::RefreshActiveFontList\n"));
}
