// Real hosts while a real agent goes away at bad moments, or other things happen there.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

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

/// A call that needs the agent, and what its answer holds when all is well.
struct HostCall {
    const char* name;
    json arguments;  ///< "path" is a name in the world
    json answer;
};

const json kMenu = {{"items", {{{"id", "w"}, {"label", "All Workgroups"}}}}};

const HostCall kCalls[] = {
    {"HandleOpenExistingDocument",
     {{"path", "other.ai"}},
     {{"code", 1}, {"out", {{"numFontsActivated", 1}}}}},
    {"HandleSaveDocument", {{"path", "open.ai"}, {"hint", "12pt"}}, {{"code", 0}}},
    {"HandleCloseDocument", {{"path", "open.ai"}}, {{"code", 0}}},
    {"ActivateChosenFonts",
     {{"path", "open.ai"}, {"fontsJSON", R"([{"DatabaseID":2,"ActivationStatus":0}])"}},
     {{"code", 0}, {"out", {{"outCount", 1}}}}},
    {"GetMenus", {{"document", ""}}, {{"code", 0}}},
    {"HandleMenuSelection", {{"menusJSON", kMenu}, {"selectedID", "w"}}, {{"code", 0}}}};

/// Ends the agent before the call, or while the host waits for its answer: the agent is frozen, and dies once
/// the trace shows that the host is in the call.
std::thread Strike(const HostWorld& world, bool isDuringTheCall) {
    if (!isDuringTheCall) {
        world.KillAgent();
        return {};
    }
    const platform::ProcessId agent = world.Agent();
    SuspendProcess(agent);
    return std::thread([agent, &world, length = world.Trace().size()] {
        Eventually([&] { return world.Trace().size() > length; });
        KillProcess(agent);
    });
}

/// A world with a host, which deactivates the fonts of closed documents.
class AgentLoss : public testing::Test {
protected:
    AgentLoss() {
        world.AddFonts({"Sample-Bold", "Sample-Italic"});
        host.Start();
        host.SetPreference("CloseFontsOnDocClose", 1);
    }

    json Ask(const char* call, const char* output) { return host.Call(call)["out"][output]; }

    HostWorld world;
    const std::string first = world.WriteDocument("first.ai", {"Sample-Bold"});
    const std::string second = world.WriteDocument("second.ai", {"Sample-Italic"});
    ScriptedHost host;
};

}  // namespace

TEST(AgentFaults, NoCallOfAHostNoticesThatTheAgentDied) {
    for (const HostCall& call : kCalls) {
        for (const bool isDuringTheCall : {false, true}) {
            SCOPED_TRACE(std::string(call.name) + (isDuringTheCall ? ", during it" : ", before it"));
            HostWorld world;
            world.AddFonts({"Sample-Bold", "Sample-Italic"});
            world.WriteDocument("open.ai", {"Sample-Bold"});
            world.WriteDocument("other.ai", {"Sample-Italic"});
            ScriptedHost host;
            host.Start();
            ASSERT_EQ(host.Open(world.Path("open.ai")), 1u);
            const platform::ProcessId agent = world.Agent();
            std::thread striking = Strike(world, isDuringTheCall);
            json arguments = call.arguments;
            if (arguments.contains("path"))
                arguments["path"] = world.Path(arguments["path"]);
            const json answer = host.Call(call.name, arguments);
            if (striking.joinable())
                striking.join();
            json expected = answer;
            expected.merge_patch(call.answer);
            EXPECT_EQ(answer, expected);
            if (std::string(call.name) == "GetMenus") {
                EXPECT_THAT(answer["out"]["buffer"].get<std::string>(), HasSubstr("Font Library"));
            }
            EXPECT_NE(world.Agent(), agent);
            EXPECT_EQ(host.Call("PluginIsEnabled")["out"]["isEnabled"], true);
        }
    }
}

TEST_F(AgentLoss, AKilledAgentIsStartedAgainOnceAndNothingIsLost) {
    host.Open(first);
    world.KillAgent();
    for (int time = 0; time < 20; ++time)
        host.Call("IdleEvent");  // heals nothing, and says nothing
    EXPECT_EQ(host.Open(second), 1u);
    EXPECT_EQ(CountOf(world.Trace(), "automatically relaunching agent and retrying command\n"), 1);
    EXPECT_EQ(CountOf(world.Trace(), "Successfully launched Pellwick at: "), 1);
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Bold", "Sample-Italic"))
        << "the host lives, its leases hold";
    host.Close(first);
    host.Close(second);
    EXPECT_THAT(world.VisibleFonts(), IsEmpty());
}

TEST_F(AgentLoss, AFrozenAgentIsUsedAgainWhenItIsWell) {
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

TEST_F(AgentLoss, AnAgentThatItsUserRestartedIsNotMissed) {
    ScriptedHost other;
    other.Start();
    for (const bool isIdleInBetween : {false, true}) {
        ASSERT_EQ(world.Pellwick("stop"), 0);
        if (isIdleInBetween) {
            EXPECT_TRUE(
                host.IdleUntilTraced(world, "Informing user that plugin functionality will be disabled"));
        }
        ASSERT_EQ(world.Pellwick("list"), 0);
        const platform::ProcessId agent = world.Agent();
        for (ScriptedHost* each : {&host, &other})
            EXPECT_EQ(each->Open(first), 1u);
        EXPECT_EQ(world.Agent(), agent);
        for (ScriptedHost* each : {&host, &other})
            each->Close(first);
    }
    EXPECT_EQ(CountOf(world.Trace(), "Attempting to launch"), 0);
}

TEST_F(AgentLoss, ALogoutAndALoginReachTheHostWhenItIsIdle) {
    ASSERT_EQ(world.Pellwick("logout"), 0);
    EXPECT_TRUE(host.IdleUntilTraced(world, ">>> notification: Logged-in state changed to 'false'"));
    EXPECT_EQ(host.Call("GetSettings")["codeName"], "CoreErrorCodes::kNotInitialized");
    EXPECT_EQ(Ask("PluginIsEnabled", "isEnabled"), false);
    ASSERT_EQ(world.Pellwick("login ana"), 0);
    EXPECT_TRUE(host.IdleUntilTraced(world, ">>> notification: Logged-in state changed to 'true'"));
    EXPECT_EQ(host.Call("GetSettings")["code"], 0) << "without another question to PluginIsEnabled";
    EXPECT_EQ(host.Open(first), 1u);
    EXPECT_TRUE(host.IdleUntilTraced(world, " activated\n"));
}

TEST_F(AgentLoss, TheWorkgroupThatIsWorkedInIsDeleted) {
    ASSERT_EQ(world.Pellwick("workgroup create Print"), 0);
    host.Call("SetPreference", {{"key", "CurrentWorkgroup"}, {"value", "Print"}});
    const json menu{{"items", {{{"id", "w"}, {"label", "Print"}}}}};
    host.Call("HandleMenuSelection", {{"menusJSON", menu}, {"selectedID", "w"}});
    ASSERT_EQ(world.Pellwick("workgroup delete Print"), 0);
    EXPECT_TRUE(host.IdleUntilTraced(world, ">>> notification: Workgroups changed"));
    const std::string menuNow = Ask("GetMenus", "buffer");
    EXPECT_THAT(menuNow, HasSubstr(R"({"checked":true,"enabled":true,"label":"8","title":"Font Library"})"));
    EXPECT_THAT(menuNow, Not(HasSubstr("Print")));
}

TEST(WithoutAnAgent, TheCoreStartsOne) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    ASSERT_EQ(world.Pellwick("stop"), 0);
    const auto result =
        world.RunHost({"--json", "open", world.WriteDocument("document.ai", {"Sample-Bold"}), "--close"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(json::parse(result.output)["numFontsActivated"], 1);
    EXPECT_NE(world.Agent(), 0);
}

TEST(WithoutAnAgent, AndLaunchInformationTheHostSaysWhatToDo) {
    HostWorld world;
    const auto result =
        world.RunHost({"open", world.WriteDocument("document.ai", {"Sample-Bold"}), "--close"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(CountOf(result.errors, "\n"), 1) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("Pellwick"));
    ScriptedHost host;
    // An agent of somebody else's has its library, but is not this user's.
    const json code = host.Call("InitializePluginCoreInterface")["code"];
    EXPECT_EQ(host.Call("PluginIsEnabled")["out"].value("isEnabled", false), false);
    EXPECT_TRUE(code == 0xFFFFFFFF || IsAnyAgentRunning()) << code;
    EXPECT_EQ(host.Call("InitializePluginCoreInterface")["code"], 0xFFFFFFFF);
    EXPECT_THAT(world.Trace(), HasSubstr("because it has been called 2 times\n"));
}
