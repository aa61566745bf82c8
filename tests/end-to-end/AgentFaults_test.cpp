// Real calls of a host while a real agent dies: before the call, and while the host waits for the answer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "HostWorld.h"

namespace {

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

/// Whether the answer has all that is expected of it.
bool Holds(const json& answer, const json& expected) {
    json merged = answer;
    merged.merge_patch(expected);
    return merged == answer;
}

/// Ends the agent before the call, or while the host waits for its answer: the agent is frozen, and dies once
/// the trace shows that the host is in the call.
std::thread Strike(const HostWorld& world, bool isDuringTheCall) {
    const platform::ProcessId agent = world.Agent();
    if (!isDuringTheCall) {
        KillProcess(agent);
        Eventually([agent] { return platform::ProcessStartTime(agent) == 0; });
        return {};
    }
    SuspendProcess(agent);
    return std::thread([agent, &world, length = world.Trace().size()] {
        Eventually([&] { return world.Trace().size() > length; });
        KillProcess(agent);
    });
}

}  // namespace

TEST(AgentFaults, NoCallOfAHostNoticesThatTheAgentDied) {
    for (const HostCall& call : kCalls) {
        for (const bool isDuringTheCall : {false, true}) {
            SCOPED_TRACE(std::string(call.name) +
                         (isDuringTheCall ? ", during the call" : ", before the call"));
            HostWorld world;
            world.AddFonts({"Sample-Bold", "Sample-Italic"});
            world.WriteDocument("open.ai", {"Sample-Bold"});
            world.WriteDocument("other.ai", {"Sample-Italic"});
            ScriptedHost host;
            host.Start();
            host.SetPreference("CloseFontsOnDocClose", 1);
            ASSERT_EQ(host.Open(world.Path("open.ai")), 1u);
            const platform::ProcessId agent = world.Agent();
            std::thread striking = Strike(world, isDuringTheCall);
            json arguments = call.arguments;
            if (arguments.contains("path"))
                arguments["path"] = world.Path(arguments["path"]);
            const json answer = host.Call(call.name, arguments);
            if (striking.joinable())
                striking.join();
            EXPECT_TRUE(Holds(answer, call.answer)) << answer;
            if (std::string(call.name) == "GetMenus") {
                EXPECT_THAT(answer["out"]["buffer"].get<std::string>(), testing::HasSubstr("Font Library"));
            }
            EXPECT_NE(world.Agent(), agent);
            EXPECT_EQ(host.Call("PluginIsEnabled")["out"]["isEnabled"], true);
        }
    }
}
