// Life with an agent that is killed, restarted and stalled at random. A few rounds each;
// DISTURBED_ROUNDS=1000 and DISTURBANCE_SEED=N make a long run of it.

#include <gtest/gtest.h>

#include <cstdlib>

#include "DisturbedRounds.h"
#include "platform/Environment.h"

namespace {

int NumberFromEnvironment(const char* variable, int otherwise) {
    const std::string text = platform::EnvironmentVariable(variable);
    return text.empty() ? otherwise : std::atoi(text.c_str());
}

void ExpectCleanRounds(Plan plan, int usualRounds) {
    plan.rounds = NumberFromEnvironment("DISTURBED_ROUNDS", usualRounds);
    plan.seed = static_cast<unsigned>(NumberFromEnvironment("DISTURBANCE_SEED", 1));
    EXPECT_EQ(DisturbedRounds(plan).Run(), plan.rounds);
}

const std::vector<Disturbance> kAll = {Disturbance::kKill, Disturbance::kRestart, Disturbance::kStall};

}  // namespace

TEST(Disturbances, ADocumentIsOpenedSavedAndClosedWhileTheAgentIsKilled) {
    ExpectCleanRounds({.hosts = 1, .documents = 1, .disturbances = {Disturbance::kKill}}, 25);
}

TEST(Disturbances, TwoHostsShareFonts) {
    ExpectCleanRounds({.hosts = 2, .documents = 4, .disturbances = {}}, 10);
}

TEST(Disturbances, TwoHostsLiveThroughKillsRestartsAndStalls) {
    ExpectCleanRounds({.hosts = 2, .documents = 4, .disturbances = kAll, .hasIdleEvents = true}, 12);
}

TEST(Disturbances, ThreeHostsLiveThroughKillsRestartsAndStalls) {
    ExpectCleanRounds({.hosts = 3, .documents = 4, .disturbances = kAll, .hasIdleEvents = true}, 12);
}
