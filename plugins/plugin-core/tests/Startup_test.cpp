#include "Startup.h"

#include "CommonFunctionality.h"
#include "FakeWorld.h"
#include "GeneralInterface.h"
#include "platform/Environment.h"

using testing::HasSubstr;

namespace {

using MessageBoxes = std::vector<std::pair<uint32_t, uint32_t>>;
constexpr ErrorCode kFailed = 0xFFFFFFFF;
constexpr ErrorCode kRefused = CoreErrorCodes::kUnknownError;

/// Starts with dialogs allowed, since a version is required of the host.
class StartupTest : public FakeWorld {
public:
    StartupTest() { SetHost("Illustrator2025", "29.1.0.64"); }

    ErrorCode Start(const char* identifier = "com.vantorix.AutoActivationPlugin.AI29") {
        return InitializeFromIdentifier(identifier, versionPrefix.c_str());
    }
    void SetHost(const std::string& name, const std::string& version) {
        processes.currentName = name;
        versions.values[{"/host/" + name, "FileVersion"}] = version;
    }
    void LoseAgent() {
        processes.running.clear();
        std::erase(libraries.loadable, fake_paths::kInterfaceLibrary);
    }
    void SwitchOff() { MarquellGlobals::SetPluginServicesEnabled(false); }
    void ConnectToServer() { library.isStandalone = false; }
    void DisagreeOnVersions() {
        versions.values[{fake_paths::kInterfaceLibrary, "PrivateBuild"}] = "7.0.0.0";
        versions.values[{"/plugins/libPluginCore.so", "PrivateBuild"}] = "8.0.0.0";
    }
    void OfferTwoWorkgroups() {
        library.workgroups = {{7, kWorkgroupType_FontLibrary, "Library"},
                              {8, kWorkgroupType_FontLibrary, "Print"}};
    }

    /// "S" for services that are on, "C" for connected, "L" for logged in.
    static std::string Flags() {
        return std::string(MarquellGlobals::ArePluginServicesEnabled() ? "S" : "") +
               (MarquellGlobals::IsConnectedToCore() ? "C" : "") + (MarquellGlobals::IsLoggedIn() ? "L" : "");
    }

    std::string versionPrefix = "29.";
};

struct Branch {
    const char* name;
    std::function<void(StartupTest&)> arrange;
    ErrorCode result;
    const char* flags;
    MessageBoxes boxes;
};

void PrintTo(const Branch& branch, std::ostream* out) {
    *out << branch.name;
}

class StartupBranch : public StartupTest, public testing::WithParamInterface<Branch> {};

void LoseWorkgroupsOnTheServer(StartupTest& world) {
    world.ConnectToServer();
    world.library.workgroups.clear();
}

// clang-format off
const Branch kBranches[] = {
    {"AllIsWell", [](StartupTest&) {}, 0, "SCL", {}},
    {"ConnectedToAServer", [](auto& world) { world.ConnectToServer(); }, 0, "SCL", {}},
    {"AProcessThatIsNoHost", [](auto& world) { world.SetHost("bash", "29.1"); }, kFailed, "L", {}},
    {"AHostOfAnotherVersion", [](auto& world) { world.SetHost("Illustrator2024", "28.0"); }, kFailed, "L", {{598, 599}}},
    {"AFontManagerOfAnotherVersion", [](auto& world) { world.DisagreeOnVersions(); }, kFailed, "L", {{602, 603}}},
    {"NoFontManager", [](auto& world) { world.LoseAgent(); }, kFailed, "L", {{602, 603}}},
    {"NoFontManagerAndNoDialogs", [](auto& world) { world.LoseAgent(); world.versionPrefix = ""; }, kFailed, "L", {}},
    {"LoggedOut", [](auto& world) { world.library.isLoggedIn = false; }, 0, "SC", {{609, 611}}},
    {"LoggedOutInAfterEffects",
     [](auto& world) {
         world.library.isLoggedIn = false;
         world.versions.values[{"/plugins/libPluginCore.so", "InternalName"}] = "AfterEffects2025";
     }, 0, "SC", {}},
    {"NoWorkgroupOnTheServer", LoseWorkgroupsOnTheServer, 0, "CL", {{620, 621}}},
    {"NoWorkgroupAndNoDialogs", [](auto& world) { LoseWorkgroupsOnTheServer(world); world.versionPrefix = ""; }, 0, "CL", {}},
    {"NoWorkgroupStandalone", [](auto& world) { world.library.workgroups.clear(); }, 0, "CL", {}},
    {"SwitchedOff", [](auto& world) { world.framework.numbers["EnablePlugin"] = 0; }, 0, "SCL", {}},
    {"TheFrameworkIsMissing", [](auto& world) { std::erase(world.libraries.loadable, fake_paths::kFramework); }, 0, "L", {}},
    {"TheFrameworkIsMissingWhereNothingMayWait",
     [](auto& world) {
         std::erase(world.libraries.loadable, fake_paths::kFramework);
         platform::SetEnvironment("PLUGINCORE_PRESENTER", "silent");
     }, 0, "L", {}},
    {"ThePreferencesCannotBeUsed", [](auto& world) { world.framework.isStoreUsable = false; }, 0, "L", {}},
    {"NoInterfaceToTheFramework", [](auto& world) { world.libraries.exhausting = fake_paths::kFramework; }, 2, "L", {}},
};
// clang-format on

TEST_P(StartupBranch, EndsAsDocumented) {
    const Branch& branch = GetParam();
    platform::SetEnvironment("PLUGINCORE_PRESENTER", "");
    branch.arrange(*this);
    EXPECT_EQ(Start(), branch.result);
    EXPECT_EQ(Flags(), branch.flags);
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctionalityEnabled()) << "in the end, whatever was found";
    EXPECT_EQ(framework.shownBoxes, branch.boxes);
    const bool isToldBySystem = branch.result == 0 && branch.flags == std::string("L") &&
                                platform::EnvironmentVariable("PLUGINCORE_PRESENTER").empty();
    EXPECT_EQ(windowing.notices, std::vector<unsigned>(isToldBySystem ? 1 : 0, 105));
}

INSTANTIATE_TEST_SUITE_P(All, StartupBranch, testing::ValuesIn(kBranches),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(StartupTest, WindowPanelsAndLogAreSetUp) {
    RecordingPanel* panel = AddPanel();
    int window = 0;
    windowing.byClass["illustrator"] = &window;
    framework.numbers["EnableLogging"] = 1;
    EXPECT_EQ(Start(), 0u);
    EXPECT_EQ(framework.parentWindow, &window);
    EXPECT_THAT(panel->sent, testing::ElementsAre(R"({"messageID":30,"isEnabled":true})"));
    EXPECT_THAT(library.given, testing::Contains("BeginLogging('Illustrator2025.log')"));
    EXPECT_THAT(library.log, HasSubstr("login check at startup:  Logged in\n"));
    EXPECT_THAT(trace.Text(),
                HasSubstr("versionPrefixRequired='29.', minimumVersionRequired='', "
                          "hostAppVersion='29.1.0.64', hostAppProcessName='Illustrator2025'\n"));
    EXPECT_EQ(Start(), kFailed) << "a later call only counts";
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional());
}

TEST_F(StartupTest, TheOldNameOfAHostIsTranslatedAndNoOther) {
    versions.values[{"/plugins/libPluginCore.so", "InternalName"}] = "AfterEffectsCC2015";
    Start("AfterEffectsCC2015");
    EXPECT_EQ(MarquellGlobals::GetPluginBundleIdentifier(), "com.vantorix.AutoActivationPlugin.AE13");
    EXPECT_EQ(MarquellGlobals::GetPluginHostApp(), "AfterEffectsCC2015");
    Start("aftereffectscc2015");
    EXPECT_EQ(MarquellGlobals::GetPluginBundleIdentifier(), "aftereffectscc2015");
}

TEST_F(StartupTest, APluginThatNamesNoKnownHostNamesTheLog) {
    Start("/plug-ins/Fonts.plugin");
    EXPECT_THAT(library.given, testing::Contains("BeginLogging('Fonts.plugin.log')"));
}

TEST_F(StartupTest, AmongSeveralWorkgroupsTheUserChoosesOnce) {
    OfferTwoWorkgroups();
    framework.chosenWorkgroup = 8;
    framework.whileDialogShows = [] {
        FontManagerInterface::GetSharedInstance().HandleSelectWorkgroup();
        FontManagerInterface::GetSharedInstance().InitializeDefaultWorkgroup();
    };
    Start();
    EXPECT_EQ(framework.shownDialogs, std::vector<std::string>{"SelectWorkgroup"});
    EXPECT_EQ(FontManagerInterface::GetSharedInstance().GetDefaultWorkgroupID(), 8);
    EXPECT_EQ(framework.numbers["CurrentWorkgroup"], 8);
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional());
    framework.numbers["CurrentWorkgroup"] = 0;
    FontManagerInterface::GetSharedInstance().InitializeDefaultWorkgroup();
    framework.numbers["CurrentWorkgroup"] = 8;
    FontManagerInterface::GetSharedInstance().HandleSelectWorkgroup();
    EXPECT_EQ(framework.shownDialogs.size(), 1u) << "chosen already, now or the last time";
}

TEST_F(StartupTest, WithoutAChoiceServicesStayOffUntilTheHostAsks) {
    OfferTwoWorkgroups();
    framework.numbers["CurrentWorkgroup"] = 9;
    EXPECT_EQ(Start(), 0u);
    EXPECT_EQ(framework.shownDialogs.size(), 1u) << "the one of last time is gone";
    EXPECT_FALSE(MarquellGlobals::IsPluginFunctional());
    bool isEnabled = false;
    EXPECT_EQ(CheckPluginIsEnabled(false, isEnabled), 0u);
    EXPECT_TRUE(isEnabled);
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional());
}

TEST_F(StartupTest, NothingOfALibraryOfAnotherVersionIsCalled) {
    DisagreeOnVersions();
    framework.numbers["EnableLogging"] = 1;
    EXPECT_EQ(Start(), kFailed);
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
    bool isEnabled = true;
    EXPECT_EQ(CheckPluginIsEnabled(true, isEnabled), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(fontManager.OnIdle(), 0u);
    fontManager.OnUserAction();
    EXPECT_FALSE(isEnabled || fontManager.IsUsable() || fontManager.IsLoggedIn() ||
                 fontManager.CompatibleFontManagerIsRunning());
    EXPECT_TRUE(library.calls.empty()) << library.calls.front();
}

// clang-format off
const Branch kChecks[] = {
    {"NobodyIsAskedWhileAllIsWell", [](auto& world) { world.library.isLoggedIn = false; }, 0, "SCL", {}},
    {"SwitchedOff", [](auto& world) { world.framework.numbers["EnablePlugin"] = 0; }, kRefused, "SCL", {}},
    {"TheAgentIsGone", [](auto& world) { MarquellGlobals::SetLoggedIn(false); world.LoseAgent(); }, kRefused, "", {}},
    {"TheAgentIsBack", [](auto& world) { world.SwitchOff(); MarquellGlobals::SetLoggedIn(false); }, 0, "SCL", {}},
    {"NoWorkgroupOnTheServer", [](auto& world) { world.SwitchOff(); LoseWorkgroupsOnTheServer(world); }, kRefused, "SCL", {{620, 621}}},
    {"LoggedOut", [](auto& world) { world.SwitchOff(); world.library.isLoggedIn = false; }, kRefused, "C", {{609, 611}}},
};
// clang-format on

class PluginIsEnabled : public StartupTest, public testing::WithParamInterface<Branch> {};

TEST_P(PluginIsEnabled, GoesByWhatIsThereNow) {
    static int rebuilds;
    rebuilds = 0;
    Start();
    framework.shownBoxes.clear();
    CommonFunctionality::SharedHostAppInterface()->SetRebuildWorkgroupsMenuCallback([] { ++rebuilds; });
    const RecordingPanel* panel = AddPanel();
    const Branch& branch = GetParam();
    branch.arrange(*this);
    const bool wasOn = MarquellGlobals::ArePluginServicesEnabled();
    bool isEnabled = false;
    EXPECT_EQ(CheckPluginIsEnabled(true, isEnabled), branch.result);
    EXPECT_EQ(isEnabled, branch.result == 0);
    EXPECT_EQ(Flags(), branch.flags);
    const bool isOn = MarquellGlobals::ArePluginServicesEnabled();
    EXPECT_EQ(panel->sent.empty(), isOn == wasOn);
    EXPECT_EQ(rebuilds, isOn && !wasOn ? 1 : 0);
    EXPECT_EQ(library.CallsOf("RegisterForNotifications"), 1 + rebuilds) << "services that are on listen";
    CheckPluginIsEnabled(true, isEnabled);
    EXPECT_EQ(framework.shownBoxes, branch.boxes) << "the user is told once";
}
INSTANTIATE_TEST_SUITE_P(All, PluginIsEnabled, testing::ValuesIn(kChecks),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
