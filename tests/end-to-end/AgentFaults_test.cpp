// Real calls of a host while a real agent dies: before the call, and while the host waits for the answer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <thread>

#include "HostWorld.h"

namespace {

/// A call that needs the agent, and what it answers when all is well.
struct HostCall {
    const char* name;
    std::function<json(const HostWorld& world)> arguments;
    std::function<bool(const json& answer)> isRight;
};

std::string DocumentOf(const HostWorld& world) {
    return world.Path("open.ai");
}

bool IsSuccess(const json& answer) {
    return answer["code"] == 0;
}

const HostCall kCalls[] = {
    {"HandleOpenExistingDocument",
     [](const HostWorld& world) {
         return json{{"path", world.Path("other.ai")}};
     },
     [](const json& answer) { return answer["code"] == 1 && answer["out"]["numFontsActivated"] == 1; }},
    {"HandleSaveDocument",
     [](const HostWorld& world) {
         return json{{"path", DocumentOf(world)}, {"hint", "12pt"}};
     },
     IsSuccess},
    {"HandleCloseDocument",
     [](const HostWorld& world) {
         return json{{"path", DocumentOf(world)}};
     },
     IsSuccess},
    {"ActivateChosenFonts",
     [](const HostWorld& world) {
         return json{{"path", DocumentOf(world)},
                     {"fontsJSON", R"([{"DatabaseID":2,"ActivationStatus":0}])"}};
     },
     [](const json& answer) { return answer["code"] == 0 && answer["out"]["outCount"] == 1; }},
    {"GetMenus",
     [](const HostWorld&) {
         return json{{"document", ""}};
     },
     [](const json& answer) {
         return answer["out"]["buffer"].get<std::string>().find("Font Library") != std::string::npos;
     }},
    {"HandleMenuSelection",
     [](const HostWorld&) {
         return json{{"menusJSON", {{"items", {{{"id", "w"}, {"label", "All Workgroups"}}}}}},
                     {"selectedID", "w"}};
     },
     IsSuccess},
};

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
    int count = 0;
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
            ASSERT_EQ(host.Open(DocumentOf(world)), 1u);
            const platform::ProcessId agent = world.Agent();
            std::thread striking = Strike(world, isDuringTheCall);
            const json answer = host.Call(call.name, call.arguments(world));
            if (striking.joinable())
                striking.join();
            EXPECT_TRUE(call.isRight(answer)) << answer;
            EXPECT_NE(world.Agent(), agent);
            EXPECT_EQ(host.Call("PluginIsEnabled")["out"]["isEnabled"], true);
            ++count;
        }
    }
    std::printf("%zu calls, before and during: %d cases\n", std::size(kCalls), count);
}
