// The agent goes away at bad moments, or other things happen there.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "HostWorld.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

/// Whether an agent runs anywhere on this machine, whoever's it is.
bool IsAnyAgentRunning() {
    std::vector<platform::ProcessInfo> processes;
    platform::Current<platform::Processes>().List(processes);
    return std::any_of(processes.begin(), processes.end(), [](const platform::ProcessInfo& process) {
        return process.executablePath.ends_with("/Pellwick");
    });
}

/// What happens at the font manager reaches the host when it is idle.
class AgentNotificationsTest : public testing::Test {
protected:
    AgentNotificationsTest() { world.AddFonts({"Sample-Bold"}); }

    /// Idles until the trace holds the line.
    bool IdleUntil(const std::string& line) {
        return Eventually([&] {
            host.Call("IdleEvent");
            return world.Trace().find(line) != std::string::npos;
        });
    }
    int Pellwick(const std::vector<std::string>& command) { return world.FontManager().Run(command).status; }
    json Ask(const char* call, const char* output) { return host.Call(call)["out"][output]; }

    HostWorld world;
    ScriptedHost host;
};

}  // namespace

TEST(AgentLoss, AKilledAgentIsStartedAgainOnceAndNothingIsLost) {
    HostWorld world;
    world.AddFonts({"Sample-Bold", "Sample-Italic"});
    const std::string first = world.WriteDocument("first.ai", {"Sample-Bold"});
    const std::string second = world.WriteDocument("second.ai", {"Sample-Italic"});
    ScriptedHost host;
    host.Start();
    host.SetPreference("CloseFontsOnDocClose", 1);
    host.Open(first);
    world.KillAgent();
    for (int time = 0; time < 20; ++time)
        host.Call("IdleEvent");  // heals nothing, and says nothing
    EXPECT_EQ(host.Open(second), 1u);
    EXPECT_EQ(CountOf(world.Trace(), "automatically relaunching agent and retrying command\n"), 1);
    EXPECT_EQ(CountOf(world.Trace(), "Successfully launched Pellwick at: "), 1);
    EXPECT_NE(world.Agent(), 0);
    EXPECT_EQ(world.FontManager().RunForJson({"list"}).at("fonts").size(), 2u);
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Bold", "Sample-Italic"))
        << "the host lives, its leases hold";
    host.Close(first);
    host.Close(second);
    EXPECT_THAT(world.VisibleFonts(), IsEmpty());
}

TEST(AgentLoss, TheCoreStartsTheAgentWhenNoneRuns) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    ASSERT_EQ(world.FontManager().Run({"stop"}).status, 0);
    const std::string document = world.WriteDocument("document.ai", {"Sample-Bold"});
    const auto result = world.RunHost({"--json", "open", document, "--close"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(json::parse(result.output)["numFontsActivated"], 1);
    EXPECT_NE(world.Agent(), 0);
}

TEST(AgentLoss, WithoutAgentAndLaunchInformationTheHostSaysWhatToDo) {
    HostWorld world;
    const std::string document = world.WriteDocument("document.ai", {"Sample-Bold"});
    const auto result = world.RunHost({"open", document, "--close"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(CountOf(result.errors, "\n"), 1) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("Pellwick"));
    ScriptedHost host;
    // An agent of somebody else's has its library, but is not this user's.
    if (IsAnyAgentRunning()) {
        host.Call("InitializePluginCoreInterface");
        EXPECT_EQ(host.Call("PluginIsEnabled")["out"]["isEnabled"], false);
    } else {
        EXPECT_EQ(host.Call("InitializePluginCoreInterface")["code"], 0xFFFFFFFF);
    }
    EXPECT_EQ(host.Call("InitializePluginCoreInterface")["code"], 0xFFFFFFFF);
    EXPECT_THAT(world.Trace(), HasSubstr("because it has been called 2 times\n"));
}

TEST(AgentLoss, AFrozenAgentIsUsedAgainWhenItIsWell) {
    HostWorld world;
    world.AddFonts({"Sample-Bold", "Sample-Italic"});
    const std::string first = world.WriteDocument("first.ai", {"Sample-Bold"});
    const std::string second = world.WriteDocument("second.ai", {"Sample-Italic"});
    ScriptedHost host;
    host.Start();
    host.SetPreference("CloseFontsOnDocClose", 1);
    ASSERT_EQ(host.Open(first), 1u);
    const platform::ProcessId agent = world.Agent();
    SuspendProcess(agent);
    EXPECT_EQ(host.Open(second), 0u) << "without its font";
    EXPECT_EQ(host.Close(first), 0u) << "though its font cannot be let go of yet";
    EXPECT_EQ(host.Close(second), 0u);
    EXPECT_LE(CountOf(world.Trace(), "message 604/605"), 1) << "one question whether to start the agent";
    ResumeProcess(agent);
    EXPECT_TRUE(Eventually([&] {
        host.Call("IdleEvent");
        return world.VisibleFonts().empty();
    }));
    EXPECT_EQ(host.Open(second), 1u);
    EXPECT_EQ(world.Agent(), agent);
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Italic"));
}

TEST(AgentLoss, AnAgentThatItsUserRestartedIsNotMissed) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    const std::string document = world.WriteDocument("document.ai", {"Sample-Bold"});
    ScriptedHost host;
    ScriptedHost other;
    for (ScriptedHost* each : {&host, &other}) {
        each->Start();
        each->SetPreference("CloseFontsOnDocClose", 1);
    }
    for (const bool isIdleInBetween : {false, true}) {
        ASSERT_EQ(world.FontManager().Run({"stop"}).status, 0);
        if (isIdleInBetween) {
            EXPECT_TRUE(Eventually([&] {
                host.Call("IdleEvent");
                return CountOf(world.Trace(), "Informing user that plugin functionality will be disabled") ==
                       1;
            }));
        }
        ASSERT_EQ(world.FontManager().Run({"list"}).status, 0);
        const platform::ProcessId agent = world.Agent();
        EXPECT_EQ(host.Open(document), 1u);
        EXPECT_EQ(other.Open(document), 1u);
        EXPECT_EQ(world.Agent(), agent);
        host.Close(document);
        other.Close(document);
    }
    EXPECT_EQ(CountOf(world.Trace(), "Attempting to launch"), 0);
}

TEST_F(AgentNotificationsTest, ALogoutAndALogin) {
    host.Start();
    ASSERT_EQ(Pellwick({"logout"}), 0);
    EXPECT_TRUE(IdleUntil(">>> notification: Logged-in state changed to 'false'"));
    EXPECT_EQ(host.Call("GetSettings")["codeName"], "CoreErrorCodes::kNotInitialized");
    EXPECT_EQ(Ask("PluginIsEnabled", "isEnabled"), false);
    ASSERT_EQ(Pellwick({"login", "ana"}), 0);
    EXPECT_TRUE(IdleUntil(">>> notification: Logged-in state changed to 'true'"));
    EXPECT_EQ(host.Call("GetSettings")["code"], 0) << "without another question to PluginIsEnabled";
    EXPECT_EQ(host.Open(world.WriteDocument("a.ai", {"Sample-Bold"})), 1u);
    EXPECT_TRUE(IdleUntil(" activated\n"));
}

TEST_F(AgentNotificationsTest, TheWorkgroupThatIsWorkedInIsDeleted) {
    ASSERT_EQ(Pellwick({"workgroup", "create", "Print"}), 0);
    host.Start();
    host.Call("SetPreference", {{"key", "CurrentWorkgroup"}, {"value", "Print"}});
    const json menu{{"items", {{{"id", "w"}, {"label", "Print"}}}}};
    host.Call("HandleMenuSelection", {{"menusJSON", menu}, {"selectedID", "w"}});
    ASSERT_EQ(Pellwick({"workgroup", "delete", "Print"}), 0);
    EXPECT_TRUE(IdleUntil(">>> notification: Workgroups changed"));
    const std::string menuNow = Ask("GetMenus", "buffer");
    EXPECT_THAT(menuNow, HasSubstr(R"({"checked":true,"enabled":true,"label":"8","title":"Font Library"})"));
    EXPECT_THAT(menuNow, testing::Not(HasSubstr("Print")));
}

TEST_F(AgentNotificationsTest, AnAgentThatWasReplacedBeforeTheHostWasIdleIsNotMissed) {
    host.Start();
    world.KillAgent();
    EXPECT_EQ(host.Open(world.WriteDocument("a.ai", {"Sample-Bold"})), 1u);
    host.Call("IdleEvent");
    EXPECT_THAT(world.Trace(), testing::Not(HasSubstr(">>> notification: Agent shut down")));
    EXPECT_EQ(Ask("PluginIsEnabled", "isEnabled"), true);
}
