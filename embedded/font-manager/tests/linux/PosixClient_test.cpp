// The client library where the system has fork, signals, and limits to threads.
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>

#include "tests/support/ClientTest.h"

namespace pellwick::test {
namespace {

using PosixClient = ClientTest;

TEST(ClientLibrary, ExportsTheContractAndNothingElse) {
    std::set<std::string> expected;
#define COLLECT(symbol, parameters) expected.insert(#symbol);
    TARNWICK_PLUGIN_FUNCTIONS(COLLECT)
#undef COLLECT
    ASSERT_EQ(expected.size(), 86u);
    std::istringstream symbols(
        TestProcess({NM_PROGRAM, "-D", "--defined-only", TARNWICK_LIBRARY}).Finish().output);
    std::set<std::string> exported;
    for (std::string address, type, name; symbols >> address >> type >> name;)
        exported.insert(name.substr(0, name.find('@')));
    EXPECT_EQ(exported, expected);
}

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

/// While it lives, this process gets no further threads: none could have a stack of that size.
AtEnd AllowNoFurtherThreads() {
    pthread_attr_t before;
    pthread_getattr_default_np(&before);
    pthread_attr_t attributes = before;
    pthread_attr_setstacksize(&attributes, size_t{1} << 50);
    pthread_setattr_default_np(&attributes);
    return AtEnd([before] { pthread_setattr_default_np(&before); });
}

std::atomic<int> callsOfAnother{0};

void CountCall(int32_t, const void*) {
    ++callsOfAnother;
}

TEST_F(PosixClient, NotificationsWithoutAThreadAreRefusedAndCanBeAskedForAgain) {
    {
        const AtEnd limit = AllowNoFurtherThreads();
        EXPECT_NE(Ask(RegisterForNotifications, Note), 0u);
        EXPECT_NE(Ask(RegisterForNotifications, CountCall), 0u);
    }
    Listen();
    mWorld.RunForJson({"logout"});
    EXPECT_TRUE(IsNoted(kPluginCallback_LoggedOut));
    EXPECT_EQ(callsOfAnother, 0);

    ResetPluginFacadeInstance();
    {
        const AtEnd limit = AllowNoFurtherThreads();
        EXPECT_NE(Facade(), nullptr);
        EXPECT_EQ(AskWhetherLoggedIn(), 0u);
    }
    Listen();
    mWorld.RunForJson({"standalone", "off"});
    EXPECT_TRUE(IsNoted(kPluginCallback_WentOnline));
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

/// While it lives this process can write nothing to files.
AtEnd LeaveNoRoom() {
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit none{0, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
    const auto action = signal(SIGXFSZ, SIG_IGN);
    return AtEnd([before, action] {
        setrlimit(RLIMIT_FSIZE, &before);
        signal(SIGXFSZ, action);
    });
}

TEST(ClientLog, SaysWhatItCouldNotWriteAndGoesOnAfterwards) {
    const TestWorld world;
    const TestLibrary library;
    const std::string path = world.Path("data/Vantorix/Logs/Plugin.log");
    PluginThreadInstanceRef thread = nullptr;
    ASSERT_EQ(library.InitThreadInstance(&thread), 0u);
    ASSERT_EQ(library.BeginLogging(thread, "Plugin.log"), 0u);
    {
        const AtEnd limit = LeaveNoRoom();
        EXPECT_EQ(library.Log(thread, "lost"), error_codes::GFile::kFileNotOpen);
    }
    EXPECT_EQ(library.Log(thread, "kept"), 0u);
    EXPECT_EQ(ContentOf(path), "kept");
    std::filesystem::remove_all(world.Path("data/Vantorix/Logs"));  // somebody clears it away
    EXPECT_EQ(library.Log(thread, "anew"), 0u);
    EXPECT_EQ(ContentOf(path), "anew");
    library.DestroyThreadInstance(thread);
}

}  // namespace
}  // namespace pellwick::test
