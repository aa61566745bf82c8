// The agent where the system has signals and fork.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <thread>

#include "ipc/AgentConnection.h"
#include "ipc/Message.h"
#include "tests/support/RawClient.h"
#include "tests/support/TestLibrary.h"
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

/// While it lives, the process gets no descriptors beyond so many; those that it has it keeps.
class FewDescriptors {
public:
    FewDescriptors(platform::ProcessId process, rlim_t count) : mProcess(static_cast<pid_t>(process)) {
        prlimit(mProcess, RLIMIT_NOFILE, nullptr, &mSaved);
        const rlimit few{count, mSaved.rlim_max};
        prlimit(mProcess, RLIMIT_NOFILE, &few, nullptr);
    }
    ~FewDescriptors() { prlimit(mProcess, RLIMIT_NOFILE, &mSaved, nullptr); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    const pid_t mProcess;
    rlimit mSaved{};
};

/// The lowest that is free.
rlim_t FreeDescriptorOf(platform::ProcessId process) {
    rlim_t number = 0;
    while (std::filesystem::is_symlink("/proc/" + std::to_string(process) + "/fd/" + std::to_string(number)))
        ++number;
    return number;
}

TEST(PosixAgent, WithoutFreeDescriptorsNoHostLosesItsFontsAndNoClientIsTurnedAway) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers need descriptors of their own, to tell memory from what is none";
#endif
    TestWorld world;
    world.StartAgent();
    world.WriteFont("Sample-Bold");
    world.RunForJson({"add", world.Path("fonts")});
    const TestLibrary library;
    ASSERT_EQ(library.Activate("/document", {"Sample-Bold"}).size(), 1u);
    AgentConnection kept(std::chrono::seconds(30));
    Json answer;
    ASSERT_EQ(kept.Call("GetStatus", Json::object(), answer), 0u);
    {
        auto leaving = std::make_unique<AgentConnection>(std::chrono::seconds(30));
        ASSERT_EQ(leaving->Call("GetStatus", Json::object(), answer), 0u);
        const FewDescriptors few(world.AgentProcess(), 3);
        leaving.reset();  // now the agent looks at its hosts
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        ASSERT_EQ(kept.Call("GetStatus", Json::object(), answer), 0u);
        EXPECT_EQ(answer["hosts"], 1);
    }
    EXPECT_EQ(world.ActiveFiles().size(), 1u);
    // One is left for a new client, none to look at it.
    auto few =
        std::make_unique<FewDescriptors>(world.AgentProcess(), FreeDescriptorOf(world.AgentProcess()) + 1);
    std::thread client([] {
        AgentConnection late(std::chrono::seconds(30));
        Json status;
        EXPECT_EQ(late.Call("GetStatus", Json::object(), status), 0u);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    few.reset();
    client.join();
    library.CleanUpOnShutdown();
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
