// The agent where the system has signals and fork.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "ipc/Message.h"
#include "tests/support/RawClient.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

TEST(PosixAgent, EndsInOrderOnASignal) {
    for (const int signal : {SIGTERM, SIGINT}) {
        TestWorld world;
        world.StartAgent();
        kill(static_cast<pid_t>(world.AgentProcess()), signal);
        world.WaitForAgentToEnd();
        EXPECT_TRUE(Locations::OfThisUser().AgentAddress().empty());
    }
}

TEST(PosixAgent, AFullDiskForItsOutputIsNoSuccessOfACommand) {
    TestWorld world;
    world.StartAgent();
    const ProgramResult result =
        TestProcess({"/bin/sh", "-c", "exec '" PELLWICK_PROGRAM "' status >/dev/full"}).Finish();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors,
              "Pellwick: done, but the results cannot be written to standard output; see whether its disk is"
              " full\n");
}

TEST(PosixAgent, LetsNoOtherUserIn) {
    if (getuid() != 0)
        GTEST_SKIP() << "only root can become somebody else";
    TestWorld world;
    world.StartAgent();
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (setgid(kNobody) != 0 || setuid(kNobody) != 0)
            _exit(2);
        try {
            RawClient client;
            client.Send(*EncodeMessage({{"id", 1}, {"method", "GetStatus"}}));
            _exit(client.IsClosedByAgent() ? 0 : 1);
        } catch (const std::exception&) {
            _exit(0);  // not even the socket could be reached
        }
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace pellwick::test
