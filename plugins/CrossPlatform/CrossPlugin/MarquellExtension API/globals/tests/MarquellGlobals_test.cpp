#include "MarquellGlobals.h"

#include <gmock/gmock.h>

#include "CapturedTrace.h"
#include "FakePlatform.h"

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
};

}  // namespace

TEST_F(MarquellGlobalsTest, ABundleIdentifierReadsTheLibrarysOwnVersions) {
    MarquellGlobals::GetSharedFontActivationTracker()->CloseLater("A", true);  // before it is known who calls
    versions.values = {{{kModule, "PrivateBuild"}, "8.0.0.1"},
                       {{kModule, "InternalName"}, "PluginCore"},
                       {{kModule, "HostAppMinimumVersion"}, "27.0"}};
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI28", "28.");
    EXPECT_FALSE(MarquellGlobals::GetSharedFontActivationTracker()->HasClosesToCatchUp())
        << "it would know no preferences";
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), "8.0.0.1");
    EXPECT_EQ(MarquellGlobals::GetPluginHostApp(), "Illustrator2024") << "the core's own name is no host";
    EXPECT_EQ(MarquellGlobals::GetHostAppMinimumVersion(), "27.0");
    EXPECT_EQ(MarquellGlobals::GetVersionPrefixRequired(), "28.");
    EXPECT_EQ(MarquellGlobals::GetPluginPath(), kModule);
    EXPECT_EQ(MarquellGlobals::GetPluginInterfaceVersion(), "8.0.1.0");
    EXPECT_EQ(MarquellGlobals::GetHostWindowName(), "illustrator");
    EXPECT_FALSE(MarquellGlobals::IsConnectedToCore() || MarquellGlobals::IsBulkReplicationRunning() ||
                 MarquellGlobals::SaveDocumentFonts("/a.ai", false, nullptr));
    libraries.isModuleKnown = false;
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI28");
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), "x.x.x.x");
}

TEST_F(MarquellGlobalsTest, APathReadsThatFilesVersions) {
    versions.values = {{{"/p/ae.plugin", "PrivateBuild"}, "7.0"},
                       {{"/p/ae.plugin", "InternalName"}, "AfterEffects2026"}};
    SetUpIdentity("/p/ae.plugin");
    EXPECT_EQ(MarquellGlobals::GetPluginVersion(), "7.0");
    EXPECT_TRUE(MarquellGlobals::HostAppIsAfterEffects());
    EXPECT_EQ(MarquellGlobals::GetPluginPath(), "/p/ae.plugin");
}

TEST_F(MarquellGlobalsTest, AHostOfTheRightVersionIsCompatible) {
    bool disableDialogs = false;
    SetHostVersion("18.5.0.64");
    versions.values[{kModule, "HostAppMinimumVersion"}] = "19.0";
    SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", "18.");
    EXPECT_TRUE(IsCompatible(disableDialogs)) << "a required prefix overrules the minimum version";
    for (const auto& [version, prefix] : {std::pair{"18.5", ""}, {"18.5", "18.6"}, {"19", ""}}) {
        SetHostVersion(version);
        SetUpIdentity("com.vantorix.AutoActivationPlugin.AI29", prefix);
        EXPECT_EQ(IsCompatible(disableDialogs), version == std::string("19"));
    }
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
    MarquellGlobals::SetHostApp("InDesign2024");
    windowing.topLevel = {{&a, "Adobe Photoshop"}, {&b, "a.indd - Adobe InDesign 2024"}};
    EXPECT_EQ(MarquellGlobals::GetHostAppMainWindow(), &b);
}
