// The client library where the system has fork, signals and descriptors that programs inherit.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "TestFiles.h"
#include "tests/support/ClientTest.h"

namespace pellwick::test {
namespace {

using PosixClient = ClientTest;

TEST_F(PosixClient, AForkedProcessHasAConnectionOfItsOwn) {
    ASSERT_EQ(AskWhetherLoggedIn(), 0u);
    const PluginFacadeRef parents = Facade();
    const pid_t child = fork();
    if (child == 0) {
        bool isLoggedIn = false;
        const bool isRight =
            GetIsLoggedIn(parents, &isLoggedIn) == GAgentIF::kAgentIFDestroyed && AskWhetherLoggedIn() == 0;
        _exit(isRight ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(AskWhetherLoggedIn(), 0u);
}

std::atomic<bool> isReachedBySignals{false};

void LookAtSignals(int32_t, const void*) {
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    if (!sigismember(&blocked, SIGTERM) || !sigismember(&blocked, SIGALRM))
        isReachedBySignals = true;
}

TEST_F(PosixClient, TheHostsSignalsDoNotReachTheThreadThatNotifies) {
    ASSERT_EQ(Ask(RegisterForNotifications, LookAtSignals), 0u);
    Listen();
    mWorld.RunForJson({"logout"});
    ASSERT_TRUE(IsNoted(kPluginCallback_LoggedOut));
    EXPECT_FALSE(isReachedBySignals);
}

TEST_F(PosixClient, ProgramsThatTheHostStartsInheritNothing) {
    const auto countInherited = [] {
        std::unique_ptr<FILE, int (*)(FILE*)> output(popen("ls /proc/self/fd", "r"), pclose);
        int count = 0;
        for (int letter = 0; (letter = fgetc(output.get())) != EOF;)
            count += letter == '\n';
        return count;
    };
    ResetPluginFacadeInstance();
    const int before = countInherited();
    PluginThreadInstanceRef thread = nullptr;
    ASSERT_EQ(InitThreadInstance(&thread), 0u);
    ASSERT_EQ(BeginLogging(thread, "Plugin.log"), 0u);
    Listen();
    ASSERT_EQ(AskWhetherLoggedIn(), 0u);
    EXPECT_EQ(countInherited(), before);
    DestroyThreadInstance(thread);
}

}  // namespace
}  // namespace pellwick::test
