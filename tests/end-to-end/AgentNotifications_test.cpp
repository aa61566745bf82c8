// What happens at the font manager reaches the host when it is idle.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostWorld.h"

using testing::HasSubstr;

namespace {

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
