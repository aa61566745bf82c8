// The agent and signals, other users, and the end of descriptors and memory.
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <thread>

#include "ScopeExit.h"
#include "TestFiles.h"
#include "common/FontManagerLimits.h"
#include "ipc/FrameBuffer.h"
#include "tests/support/AgentTest.h"
#include "tests/support/TestLibrary.h"

#ifdef PLUGINCORE_SANITIZED
#define SKIP_WITH_SANITIZERS() GTEST_SKIP() << "sanitizers need memory and descriptors of their own"
#else
#define SKIP_WITH_SANITIZERS()
#endif

namespace pellwick::test {
namespace {

constexpr size_t kMegabyte = size_t{1} << 20;

class PosixAgent : public AgentTest {
protected:
    pid_t Process() const { return static_cast<pid_t>(mWorld.AgentProcess()); }
    /// While it lives, the agent gets no descriptors beyond so many; those that it has it keeps.
    auto LimitDescriptors(rlim_t count) const {
        rlimit before{};
        prlimit(Process(), RLIMIT_NOFILE, nullptr, &before);
        const rlimit few{count, before.rlim_max};
        prlimit(Process(), RLIMIT_NOFILE, &few, nullptr);
        return ScopeExit(
            [process = Process(), before] { prlimit(process, RLIMIT_NOFILE, &before, nullptr); });
    }
    size_t Memory(const std::string& name) const {
        std::ifstream file("/proc/" + std::to_string(Process()) + "/status");
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with(name + ":"))
                return std::stoul(line.substr(name.size() + 1)) << 10;
        }
        return 0;
    }
    /// As many bytes in a message of as many values as there may be.
    static std::string LargeMessage() {
        const size_t count = kMaxMessageValues - 100;
        const Json texts = Json::array_t(count, std::string(kMaxMessageSize / count - 4, 'x'));
        return *EncodeMessage({{"id", 1}, {"method", "GetFonts"}, {"args", {{"fonts", texts}}}});
    }
};

TEST_F(PosixAgent, EndsInOrderOnASignal) {
    for (const int signal : {SIGTERM, SIGINT}) {
        kill(Process(), signal);
        mWorld.WaitForAgentToEnd();
        EXPECT_TRUE(mPlaces.AgentAddress().empty());
        mWorld.StartAgent();
    }
}

TEST_F(PosixAgent, RefusesNamesThatAreNoTextAndSaysWhenItsOutputCannotBeWritten) {
    EXPECT_THAT(mWorld.Run({"set", "create", "a\xFF"}).errors, HasSubstr("is not valid UTF-8"));
    const ProgramResult result =
        TestProcess({"/bin/sh", "-c", "exec '" + BuiltFile(PELLWICK_PROGRAM) + "' status >/dev/full"})
            .Finish();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("Pellwick: done, but the results cannot be written"));
}

TEST_F(PosixAgent, WithoutFreeDescriptorsNoHostLosesItsFonts) {
    SKIP_WITH_SANITIZERS();
    Add("Sample-Bold");
    const TestLibrary library;
    ASSERT_EQ(library.Activate("/document", {"Sample-Bold"}).size(), 1u);
    GoodClient kept;
    auto leaving = std::make_unique<GoodClient>();
    {
        const auto limit = LimitDescriptors(3);
        leaving.reset();  // now the agent looks at its hosts
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        kept.ExpectToBeServed();
        EXPECT_EQ(kept.result["hosts"], 1);
    }
    EXPECT_EQ(mWorld.ActiveFiles().size(), 1u);
    library.CleanUpOnShutdown();
}

TEST_F(PosixAgent, AdmitsALittleLaterWhomItCannotLookAtJustNow) {
    SKIP_WITH_SANITIZERS();
    rlim_t number = 0;  // the first that is free: enough to accept, not to look who that is
    while (fs::is_symlink("/proc/" + std::to_string(Process()) + "/fd/" + std::to_string(number)))
        ++number;
    std::jthread newcomer;
    {
        const auto limit = LimitDescriptors(number + 1);
        newcomer = std::jthread([] { GoodClient().ExpectToBeServed(); });
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
    }
}

TEST_F(PosixAgent, WithoutMemoryLetsGoOfOneClientAndServesTheOthers) {
    SKIP_WITH_SANITIZERS();
    GoodClient other;
    const std::string message = LargeMessage();
    // Enough for part of it: for the bytes, say, but not for the values.
    for (const size_t megabytes : {30, 20, 10, 5}) {
        const rlimit limits{Memory("VmSize") + megabytes * kMegabyte, RLIM_INFINITY};
        ASSERT_EQ(prlimit(Process(), RLIMIT_AS, &limits, nullptr), 0);
        RawClient client;
        client.Write(message);
        EXPECT_TRUE(client.IsClosedByAgent()) << megabytes;
        other.ExpectToBeServed();
        GoodClient newcomer;
        EXPECT_EQ(newcomer.result["process"], mWorld.AgentProcess());
    }
    EXPECT_THAT(mWorld.AgentLog(), HasSubstr("out of memory"));
}

TEST_F(PosixAgent, LetsNoOtherUserIn) {
    if (getuid() != 0)
        GTEST_SKIP() << "only root can become somebody else";
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (setgid(kNobody) != 0 || setuid(kNobody) != 0)
            _exit(2);
        try {
            RawClient client;
            client.Send({{"id", 1}, {"method", "GetStatus"}});
            _exit(client.IsClosedByAgent() ? 0 : 1);
        } catch (const std::exception&) {
            _exit(0);  // not even the socket could be reached
        }
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

/// Everything of ours is closed to others, at any depth.
void ExpectPrivate(const TestWorld& world) {
    constexpr fs::perms kOthersWrite = fs::perms::group_write | fs::perms::others_write;
    constexpr fs::perms kOthers = fs::perms::group_all | fs::perms::others_all;
    int count = 0;
    for (const char* ours : {"data/Vantorix", "data/fonts/Vantorix", "cache/Vantorix", "config/Vantorix"}) {
        const fs::path folder = world.Path(ours);
        if (!fs::exists(folder))
            continue;
        EXPECT_EQ(fs::status(folder).permissions() & kOthers, fs::perms::none) << folder;
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            const fs::perms closed = entry.is_directory() ? kOthers : kOthersWrite;
            EXPECT_TRUE(entry.is_symlink() || (entry.status().permissions() & closed) == fs::perms::none)
                << entry.path();
            ++count;
        }
    }
    EXPECT_GT(count, 0);
}

TEST(OtherUsers, NothingIsLeftOpenWhateverTheMaskAndWhoeverComesFirst) {
    const TestLibrary library;
    for (const bool isLibraryFirst : {true, false}) {
        TestWorld world;
        const ScopeExit mask([before = umask(0)] { umask(before); });
        const auto useAgent = [&] {
            world.StartAgent();
            world.RunForJson({"add", world.WriteFont("Sample-Bold")});
            world.RunForJson({"activate", "Sample-Bold"});
        };
        if (!isLibraryFirst) {
            fs::create_directories(world.Path("data/Vantorix/Pellwick/vault/ab"));  // open to all
            useAgent();
            EXPECT_THAT(world.AgentLog(), HasSubstr("folders put right: "));
        }
        PluginThreadInstanceRef thread = nullptr;
        ASSERT_EQ(library.InitThreadInstance(&thread), 0u);
        EXPECT_EQ(library.BeginLogging(thread, "host.log"), 0u);
        EXPECT_EQ(library.Log(thread, "a line\n"), 0u);
        EXPECT_EQ(library.DestroyThreadInstance(thread), 0u);
        EXPECT_EQ(umask(0), 0u) << "a library leaves the host's mask alone";
        ExpectPrivate(world);
        if (isLibraryFirst)
            useAgent();
        world.RunForJson({"launch-info"});
        ExpectPrivate(world);
    }
}

}  // namespace
}  // namespace pellwick::test
