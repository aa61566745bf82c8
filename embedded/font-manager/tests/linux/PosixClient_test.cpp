// The client library where the system has fork, signals, and limits to threads.
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <memory>

#include "platform/Files.h"
#include "tests/support/RecoveryTest.h"

namespace pellwick::test {
namespace {

TEST_F(RecoveryTest, AForkedProcessHasAConnectionOfItsOwn) {
    ASSERT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    const PluginFacadeRef parents = mLibrary.Facade();
    const pid_t child = fork();
    if (child == 0) {
        bool isLoggedIn = false;
        const bool isRight = mLibrary.GetIsLoggedIn(parents, &isLoggedIn) == GAgentIF::kAgentIFDestroyed &&
                             AskWhetherLoggedIn() == CoreErrorCodes::kSuccess;
        _exit(isRight ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
}

/// While it lives, this process gets no further threads: none could have a stack of that size.
class NoFurtherThreads {
public:
    NoFurtherThreads() {
        pthread_getattr_default_np(&mSaved);
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, size_t{1} << 50);
        pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }
    ~NoFurtherThreads() {
        pthread_setattr_default_np(&mSaved);
        pthread_attr_destroy(&mSaved);
    }
    NoFurtherThreads(const NoFurtherThreads&) = delete;
    NoFurtherThreads& operator=(const NoFurtherThreads&) = delete;

private:
    pthread_attr_t mSaved;
};

std::atomic<int> callsOfAnother{0};

void CountCall(int32_t, const void*) {
    ++callsOfAnother;
}

TEST_F(RecoveryTest, NotificationsWithoutAThreadAreRefusedAndCanBeAskedForAgain) {
    {
        const NoFurtherThreads noFurtherThreads;
        EXPECT_NE(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
        EXPECT_NE(mLibrary.RegisterForNotifications(mLibrary.Facade(), CountCall), 0u);
    }
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.RunForJson({"logout"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedOut); }));
    mWorld.RunForJson({"login", "somebody"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedIn); }));
    EXPECT_EQ(callsOfAnother, 0);

    mLibrary.ResetPluginFacadeInstance();
    {
        const NoFurtherThreads noFurtherThreads;
        EXPECT_NE(mLibrary.Facade(), nullptr);
        EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    }
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.RunForJson({"standalone", "off"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_WentOnline); }));
}

std::atomic<bool> isReachedBySignals{false};

void LookAtSignals(int32_t, const void*) {
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    if (!sigismember(&blocked, SIGTERM) || !sigismember(&blocked, SIGALRM))
        isReachedBySignals = true;
}

TEST_F(RecoveryTest, TheHostsSignalsDoNotReachTheThreadThatNotifies) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), LookAtSignals), 0u);
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.RunForJson({"logout"});
    ASSERT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedOut); }));
    EXPECT_FALSE(isReachedBySignals);
}

/// How many descriptors a program has that this process starts.
int CountInherited() {
    std::unique_ptr<FILE, int (*)(FILE*)> output(popen("ls /proc/self/fd", "r"), pclose);
    int count = 0;
    for (int letter = 0; (letter = fgetc(output.get())) != EOF;)
        count += letter == '\n';
    return count;
}

TEST_F(RecoveryTest, ProgramsThatTheHostStartsInheritNothing) {
    mLibrary.ResetPluginFacadeInstance();
    const int before = CountInherited();
    PluginThreadInstanceRef thread = nullptr;
    ASSERT_EQ(mLibrary.InitThreadInstance(&thread), 0u);
    ASSERT_EQ(mLibrary.BeginLogging(thread, "Plugin.log"), 0u);
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    ASSERT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    EXPECT_EQ(CountInherited(), before);
    mLibrary.DestroyThreadInstance(thread);
}

/// While it lives this process can write nothing to files.
class NoRoom {
public:
    NoRoom() {
        getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit none{0, mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
        mAction = signal(SIGXFSZ, SIG_IGN);
    }
    ~NoRoom() {
        setrlimit(RLIMIT_FSIZE, &mBefore);
        signal(SIGXFSZ, mAction);
    }
    NoRoom(const NoRoom&) = delete;
    NoRoom& operator=(const NoRoom&) = delete;

private:
    rlimit mBefore{};
    void (*mAction)(int) = SIG_DFL;
};

TEST(ClientLog, SaysWhatItCouldNotWriteAndGoesOnAfterwards) {
    const TestWorld world;
    const TestLibrary library;
    PluginThreadInstanceRef thread = nullptr;
    ASSERT_EQ(library.InitThreadInstance(&thread), 0u);
    ASSERT_EQ(library.BeginLogging(thread, "Plugin.log"), 0u);
    {
        const NoRoom noRoom;
        EXPECT_EQ(library.Log(thread, "lost"), error_codes::GFile::kFileNotOpen);
    }
    EXPECT_EQ(library.Log(thread, "kept"), 0u);
    const std::string path = world.Path("data/Vantorix/Logs/Plugin.log");
    std::string text;
    EXPECT_FALSE(platform::ReadWholeFile(path, text, 100));
    EXPECT_EQ(text, "kept");
    // Somebody clears the folder away.
    std::filesystem::remove_all(world.Path("data/Vantorix/Logs"));
    EXPECT_EQ(library.Log(thread, "anew"), 0u);
    EXPECT_FALSE(platform::ReadWholeFile(path, text, 100));
    EXPECT_EQ(text, "anew");
    library.DestroyThreadInstance(thread);
}

}  // namespace
}  // namespace pellwick::test
