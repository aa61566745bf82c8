// Real hosts while a real agent goes away at bad moments, or other things happen there.

#include "HostWorld.h"

using testing::ElementsAre, testing::IsEmpty;

namespace {

class AgentLoss : public HostWorldTest {
protected:
    AgentLoss() {
        world.AddFonts({"Sample-Italic"});
        host.Start();
        host.SetPreference("CloseFontsOnDocClose", 1);
    }

    const std::string first = world.WriteDocument("first.ai", {"Sample-Bold"});
    const std::string second = world.WriteDocument("second.ai", {"Sample-Italic"});
    ScriptedHost host;
};

}  // namespace

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
