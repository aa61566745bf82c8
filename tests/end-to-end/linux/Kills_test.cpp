// An agent that is killed while it adds, removes and activates fonts. Here some rounds; a long run:
// KILLED_ROUNDS=1000 [KILL_SEED=N] end-to-end-tests --gtest_filter='Kills.*'

#include <gtest/gtest.h>

#include <cstdlib>

#include "KilledRounds.h"
#include "platform/Environment.h"

namespace {

int NumberFromEnvironment(const char* variable, int otherwise) {
    const std::string text = platform::EnvironmentVariable(variable);
    return text.empty() ? otherwise : std::atoi(text.c_str());
}

}  // namespace

TEST(Kills, NothingThatWasAnsweredAsDoneIsLostAndNothingIsLeftBehind) {
    const int rounds = NumberFromEnvironment("KILLED_ROUNDS", 20);
    const auto seed = static_cast<unsigned>(NumberFromEnvironment("KILL_SEED", 1));
    EXPECT_EQ(KilledRounds(rounds, seed).Run(), rounds);
}
