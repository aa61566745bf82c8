// What processes are on a POSIX system: zombies, sessions, descriptors, signals.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include "ScopedVariable.h"
#include "TestProcess.h"
#include "platform/DebugOutput.h"
#include "support/Launch.h"

using namespace std::chrono_literals;

namespace {

std::unique_ptr<platform::ChildProcess> LaunchScript(const std::string& script) {
    return Launch("-c \"" + script + "\"", "/bin/sh");
}

}  // namespace

TEST(ProcessDetails, AChildThatEndsIsCollectedWithItsStatus) {
    const ScopedVariable ready("PLUGINCORE_READY_DESCRIPTOR", "99");  // as where the host was launched itself
    const ScopedVariable other("PLUGINCORE_TEST_STATUS", "4");
    const auto child = LaunchScript("exit $((PLUGINCORE_READY_DESCRIPTOR + PLUGINCORE_TEST_STATUS))");
    EXPECT_EQ(WaitForExit(*child), 7);
    EXPECT_EQ(waitpid(static_cast<pid_t>(child->Id()), nullptr, WNOHANG), -1) << "a zombie was left";
}

TEST(ProcessDetails, ProgramsInNamespacesOfTheirOwnAreNotListed) {
    const TemporaryFolder folder;
    const std::string program = CopyOfChild(folder, "child");
    const auto countOfListed = [&] {
        std::vector<platform::ProcessInfo> listed;
        EXPECT_FALSE(Processes().List([](const std::string& name) { return name == "child"; }, listed));
        return std::count_if(listed.begin(), listed.end(),
                             [&](const auto& each) { return each.executablePath == program; });
    };
    const std::string user = geteuid() == 0 ? "" : "--user --map-current-user ";
    const auto apart =
        Launch("--pid --fork --kill-child " + user + "\"" + program + "\" be-ready", "/usr/bin/unshare");
    if (!apart->WaitUntilIdle(10s))
        GTEST_SKIP() << "the system allows no namespaces";
    EXPECT_EQ(countOfListed(), 0);
    const auto beside = Launch("be-ready", program);
    ASSERT_TRUE(beside->WaitUntilIdle(10s));
    EXPECT_EQ(countOfListed(), 1);
    KillProcess(apart->Id());
    KillProcess(beside->Id());
}

TEST(ProcessDetails, AProcessIsAskedToEndByASignal) {
    const TemporaryFolder folder;
    const auto child =
        LaunchScript("trap 'exit 3' TERM; : > '" + (folder / "ready") + "'; while :; do sleep 0.01; done");
    ASSERT_TRUE(Eventually([&] { return platform::IsExistingFile(folder / "ready"); }));
    errno = EPERM;  // of an earlier call
    EXPECT_FALSE(platform::RequestEndOfProcess(child->Id(), platform::ProcessStartTime(child->Id())));
    EXPECT_EQ(WaitForExit(*child), 3);
}

TEST(ProcessDetails, AChildHasASessionOfItsOwnAndNoneOfOurDescriptors) {
    const TemporaryFolder folder;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);  // without close-on-exec
    const auto child = LaunchScript("ls /proc/self/fd > '" + (folder / "descriptors") +
                                    "'; ps -o sid= -p $$ > '" + (folder / "session") + "'");
    EXPECT_EQ(WaitForExit(*child), 0);
    close(ends[0]);
    close(ends[1]);
    const std::string descriptors = ContentOf(folder / "descriptors");
    EXPECT_EQ(descriptors.find(std::to_string(std::max(ends[1], 5)) + "\n"), std::string::npos)
        << descriptors;
    EXPECT_EQ(std::stol(ContentOf(folder / "session")), child->Id());
}

TEST(LinuxDebugOutput, OutputThatNobodyReadsAnyMoreDoesNotEndTheHost) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // the destination is decided once per process
    setenv("PLUGINCORE_DEBUG_OUTPUT", "-", 1);
    EXPECT_EXIT(
        {
            int ends[2];
            if (pipe(ends) != 0 || close(ends[0]) != 0 || dup2(ends[1], STDERR_FILENO) < 0)
                _exit(2);
            platform::Current<platform::DebugOutput>().Write("nobody hears this\n");
            sigset_t pending;
            sigpending(&pending);
            _exit(sigismember(&pending, SIGPIPE) == 0 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    unsetenv("PLUGINCORE_DEBUG_OUTPUT");
}
