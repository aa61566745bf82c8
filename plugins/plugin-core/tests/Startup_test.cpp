#include "Startup.h"

#include <gmock/gmock.h>

#include <functional>

#include "CommonFunctionality.h"
#include "FakeWorld.h"
#include "GeneralInterface.h"

using testing::HasSubstr;

namespace {

using MessageBoxes = std::vector<std::pair<uint32_t, uint32_t>>;
constexpr ErrorCode kFailed = 0xFFFFFFFF;

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
    {"ThePreferencesCannotBeUsed", [](auto& world) { world.framework.isStoreUsable = false; }, 0, "L", {}},
    {"NoInterfaceToTheFramework", [](auto& world) { world.libraries.exhausting = fake_paths::kFramework; }, 2, "L", {}},
};
// clang-format on

TEST_P(StartupBranch, EndsAsDocumented) {
    const Branch& branch = GetParam();
    branch.arrange(*this);
    EXPECT_EQ(Start(), branch.result);
    EXPECT_EQ(Flags(), branch.flags);
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctionalityEnabled()) << "in the end, whatever was found";
    EXPECT_EQ(framework.shownBoxes, branch.boxes);
    const bool isToldBySystem = branch.result == 0 && branch.flags == std::string("L");
    EXPECT_EQ(windowing.notices, std::vector<unsigned>(isToldBySystem ? 1 : 0, 105));
}

INSTANTIATE_TEST_SUITE_P(All, StartupBranch, testing::ValuesIn(kBranches),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(StartupTest, WindowPanelsAndLogAreSetUp) {
    FakePanel* panel = AddPanel();
    int window = 0;
    windowing.byClass["illustrator"] = &window;
    framework.numbers["EnableLogging"] = 1;
    Start();
    EXPECT_EQ(framework.parentWindow, &window);
    EXPECT_THAT(panel->sent, testing::ElementsAre(R"({"messageID":30,"isEnabled":true})"));
    EXPECT_EQ(library.logFile, "Illustrator2025.log");
    EXPECT_THAT(library.log, HasSubstr("login check at startup:  Logged in\n"));
    EXPECT_THAT(trace.Text(),
                HasSubstr("versionPrefixRequired='29.', minimumVersionRequired='', "
                          "hostAppVersion='29.1.0.64', hostAppProcessName='Illustrator2025'\n"));
}

TEST_F(StartupTest, ALaterCallOnlyCounts) {
    EXPECT_EQ(Start(), 0u);
    EXPECT_EQ(Start(), kFailed);
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctional());
}

TEST_F(StartupTest, TheOldNameOfAHostIsTranslatedAndNoOther) {
    versions.values[{"/plugins/libPluginCore.so", "InternalName"}] = "AfterEffectsCC2015";
    Start("AfterEffectsCC2015");
    EXPECT_EQ(MarquellGlobals::GetPluginBundleIdentifier(), "com.vantorix.AutoActivationPlugin.AE13");
    EXPECT_EQ(MarquellGlobals::GetPluginHostApp(), "AfterEffectsCC2015");
    for (const char* name : {"AfterEffectsCC2015 ", "aftereffectscc2015"}) {
        Start(name);
        EXPECT_EQ(MarquellGlobals::GetPluginBundleIdentifier(), name);
    }
}

TEST_F(StartupTest, DialogsAreAllowedByAMinimumVersionInThePluginsFile) {
    LoseAgent();
    versionPrefix = "";
    versions.values[{"/p/ai.plugin", "HostAppMinimumVersion"}] = "27.0";
    versions.values[{"/p/ai.plugin", "InternalName"}] = "Illustrator2025";
    EXPECT_EQ(Start("/p/ai.plugin"), kFailed);
    EXPECT_EQ(framework.shownBoxes, (MessageBoxes{{602, 603}}));
}

// ---- The workgroup

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

// ---- A font manager that does not go with the core

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

// ---- Whether the plug-in is enabled

class PluginIsEnabledTest : public StartupTest {
protected:
    PluginIsEnabledTest() {
        Start();
        framework.shownBoxes.clear();
        CommonFunctionality::SharedHostAppInterface()->SetRebuildWorkgroupsMenuCallback([] { ++sRebuilds; });
        sRebuilds = 0;
    }
    ErrorCode Check(bool allowDialogs = true) { return CheckPluginIsEnabled(allowDialogs, isEnabled); }
    static inline int sRebuilds = 0;
    bool isEnabled = true;
};

TEST_F(PluginIsEnabledTest, WhileAllIsWellNobodyIsAsked) {
    library.calls.clear();
    EXPECT_EQ(Check(), 0u);
    EXPECT_TRUE(isEnabled);
    EXPECT_TRUE(library.calls.empty());
    framework.numbers["EnablePlugin"] = 0;
    EXPECT_EQ(Check(), CoreErrorCodes::kUnknownError);
    EXPECT_FALSE(isEnabled);
    EXPECT_TRUE(framework.shownBoxes.empty());
}

TEST_F(PluginIsEnabledTest, AnAgentThatIsGoneSwitchesThePanelsOff) {
    FakePanel* panel = AddPanel();
    MarquellGlobals::SetLoggedIn(false);  // not functional: look for the agent
    processes.running.clear();
    EXPECT_EQ(Check(), CoreErrorCodes::kUnknownError);
    EXPECT_TRUE(framework.shownBoxes.empty()) << "nothing was on offer before";
    EXPECT_THAT(panel->sent, testing::ElementsAre(R"({"messageID":30,"isEnabled":false})"));
    EXPECT_EQ(Flags(), "");
}

TEST_F(PluginIsEnabledTest, AnAgentThatIsBackMakesEverythingAvailable) {
    MarquellGlobals::SetPluginServicesEnabled(false);
    MarquellGlobals::SetLoggedIn(false);
    EXPECT_EQ(Check(), 0u);
    EXPECT_TRUE(isEnabled);
    EXPECT_EQ(Flags(), "SCL");
    EXPECT_EQ(sRebuilds, 1);
}

TEST_F(PluginIsEnabledTest, WithoutAWorkgroupOnTheServerItIsNotEnabled) {
    MarquellGlobals::SetPluginServicesEnabled(false);
    ConnectToServer();
    library.workgroups = {{4, kWorkgroupType_System, "System Fonts"}};
    EXPECT_EQ(Check(false), CoreErrorCodes::kUnknownError);
    EXPECT_TRUE(framework.shownBoxes.empty());
    MarquellGlobals::SetPluginServicesEnabled(false);
    EXPECT_EQ(Check(true), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(framework.shownBoxes, (MessageBoxes{{620, 621}}));
    EXPECT_FALSE(isEnabled);
}

TEST_F(PluginIsEnabledTest, ALogoutIsToldToWhoWasLoggedIn) {
    MarquellGlobals::SetPluginServicesEnabled(false);
    library.isLoggedIn = false;
    EXPECT_EQ(Check(), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(framework.shownBoxes, (MessageBoxes{{609, 611}}));
    EXPECT_FALSE(MarquellGlobals::IsLoggedIn());
    EXPECT_EQ(Check(), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(framework.shownBoxes.size(), 1u);
}

}  // namespace
