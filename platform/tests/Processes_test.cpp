#include "platform/Processes.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <thread>

#include "TemporaryFolder.h"
#include "platform/Files.h"

using namespace std::chrono_literals;

namespace {

platform::Processes& Processes() {
    return platform::Current<platform::Processes>();
}

std::unique_ptr<platform::ChildProcess> Launch(const std::string& script) {
    platform::SystemError error;
    auto child = Processes().Launch("/bin/sh", "\"/bin/sh\" -c \"" + script + "\"", error);
    EXPECT_FALSE(error);
    return child;
}

std::optional<int> WaitForExit(platform::ChildProcess& child) {
    child.WaitUntilIdle(10s);
    return child.ExitStatus();
}

}  // namespace

TEST(Processes, ThisProcessIsListedWithItsExecutable) {
    std::vector<platform::ProcessInfo> processes;
    ASSERT_FALSE(Processes().List(processes));
    const auto self = std::find_if(processes.begin(), processes.end(),
                                   [](const auto& each) { return each.id == platform::CurrentProcessId(); });
    ASSERT_NE(self, processes.end());
    EXPECT_EQ(self->executablePath, Processes().CurrentExecutablePath());
}

TEST(Processes, AChildThatEndsIsCollectedWithItsStatus) {
    const auto child = Launch("exit 7");
    EXPECT_EQ(WaitForExit(*child), 7);
    EXPECT_EQ(waitpid(static_cast<pid_t>(child->Id()), nullptr, WNOHANG), -1) << "a zombie was left";
    const auto killed = Launch("kill -9 $$");
    EXPECT_EQ(WaitForExit(*killed), 128 + SIGKILL);
}

TEST(Processes, AChildIsIdleWhenItSaysSo) {
    const auto child = Launch("printf R >&$PLUGINCORE_READY_DESCRIPTOR; exec 3>&-; sleep 30");
    EXPECT_TRUE(child->WaitUntilIdle(10s));
    EXPECT_EQ(child->ExitStatus(), std::nullopt);
    kill(static_cast<pid_t>(child->Id()), SIGKILL);
}

TEST(Processes, AChildThatIsReadyWhenNobodyWaitsAnyMoreLivesOn) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);  // the last one that could listen is the parent
        dup2(ends[1], 3);
        setenv("PLUGINCORE_READY_DESCRIPTOR", "3", 1);
        platform::NotifyReadyForInput();
        _exit(0);
    }
    close(ends[0]);
    close(ends[1]);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
}

TEST(Processes, WaitingForAnIdleChildHasALimit) {
    const auto child = Launch("sleep 30");
    EXPECT_FALSE(child->WaitUntilIdle(50ms));
    EXPECT_EQ(child->ExitStatus(), std::nullopt);
    kill(static_cast<pid_t>(child->Id()), SIGKILL);
}

TEST(Processes, ArgumentsAreSplitAtBlanksOutsideQuotes) {
    const TemporaryFolder folder;
    const std::string script =
        folder.Write("echo arguments.sh", "#!/bin/sh\nprintf '%s|' \"$@\" > \"$(dirname \"$0\")/out\"\n");
    platform::SystemError error;
    chmod(script.c_str(), 0700);
    const auto child =
        Processes().Launch(script, "\"" + script + "\" serve  \"two words\" --x=\"1 2\"", error);
    ASSERT_TRUE(child);
    EXPECT_EQ(WaitForExit(*child), 0);
    std::string out;
    ASSERT_FALSE(platform::ReadWholeFile(folder / "out", out, 1000));
    EXPECT_EQ(out, "serve|two words|--x=1 2|");
}

TEST(Processes, AChildHasASessionOfItsOwnAndNoneOfOurDescriptors) {
    const TemporaryFolder folder;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);  // without close-on-exec
    const auto child = Launch("ls /proc/self/fd > '" + (folder / "descriptors") + "'; ps -o sid= -p $$ > '" +
                              (folder / "session") + "'");
    EXPECT_EQ(WaitForExit(*child), 0);
    close(ends[0]);
    close(ends[1]);
    std::string descriptors;
    ASSERT_FALSE(platform::ReadWholeFile(folder / "descriptors", descriptors, 1000));
    EXPECT_EQ(descriptors.find(std::to_string(std::max(ends[1], 5)) + "\n"), std::string::npos)
        << descriptors;
    std::string session;
    ASSERT_FALSE(platform::ReadWholeFile(folder / "session", session, 100));
    EXPECT_EQ(std::stol(session), child->Id());
}

TEST(Processes, AMissingProgramIsAnError) {
    platform::SystemError error;
    EXPECT_EQ(Processes().Launch("/no/such/program", "\"/no/such/program\" ", error), nullptr);
    EXPECT_EQ(error.code, ENOENT);
}

TEST(Processes, AStartTimeTellsProcessesApart) {
    const uint64_t own = platform::ProcessStartTime(platform::CurrentProcessId());
    EXPECT_NE(own, 0u);
    EXPECT_EQ(own, platform::ProcessStartTime(platform::CurrentProcessId()));
    const auto child = Launch("exit 0");
    WaitForExit(*child);
    EXPECT_EQ(platform::ProcessStartTime(child->Id()), 0u);
}

TEST(Processes, TheProcessCanCallItselfOtherwise) {
    platform::SetCurrentProcessName("Illustrator2025");
    EXPECT_EQ(Processes().CurrentName(), "Illustrator2025");
}

TEST(Processes, AThreadStartedBehindASignalBlockIsSparedTheHostsSignals) {
    const auto blocked = [](int signal) {
        sigset_t mask;
        pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        return sigismember(&mask, signal) == 1;
    };
    {
        const platform::ScopedSignalBlock block;
        std::thread([&] {
            EXPECT_TRUE(blocked(SIGTERM) && blocked(SIGALRM) && blocked(SIGRTMAX));
            EXPECT_FALSE(blocked(SIGSEGV) || blocked(SIGABRT));
        }).join();
    }
    EXPECT_FALSE(blocked(SIGTERM) || blocked(SIGALRM) || blocked(SIGRTMAX));
}
