#include "TestProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <stdexcept>
#include <thread>

#include "Descriptor.h"

namespace {

constexpr std::chrono::milliseconds kPatience{60'000};

/// Waits for something to read or the end; false when nothing comes, so that a test fails instead of hanging.
bool IsReadable(int file) {
    pollfd wanted{file, POLLIN, 0};
    return poll(&wanted, 1, static_cast<int>(kPatience.count())) == 1;
}

std::string ReadToEnd(int descriptor) {
    std::string text;
    char piece[4096];
    for (ssize_t size = 0; (size = read(descriptor, piece, sizeof piece)) > 0;)
        text.append(piece, static_cast<size_t>(size));
    return text;
}

int ExitStatus(int status) {
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

struct Pipe {
    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        readEnd = platform::Descriptor(ends[0]);
        writeEnd = platform::Descriptor(ends[1]);
    }

    platform::Descriptor readEnd, writeEnd;
};

}  // namespace

struct TestProcess::State {
    pid_t process = 0;
    bool isCollected = false;
    Pipe input;
    Pipe output;
    Pipe errors;

    int Collect() {
        int status = 0;
        waitpid(process, &status, 0);
        isCollected = true;
        return ExitStatus(status);
    }
};

TestProcess::TestProcess(const std::vector<std::string>& command) : mState(std::make_unique<State>()) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, mState->input.readEnd.Get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, mState->output.writeEnd.Get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, mState->errors.writeEnd.Get(), STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    std::vector<std::string> words = command;
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const int failure =
        posix_spawn(&mState->process, words[0].c_str(), &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    for (auto* theirs : {&mState->input.readEnd, &mState->output.writeEnd, &mState->errors.writeEnd})
        *theirs = {};
    if (failure != 0)
        throw std::runtime_error("cannot start " + command[0]);
}

TestProcess::~TestProcess() {
    if (!mState->isCollected) {
        Kill();
        mState->Collect();
    }
}

platform::ProcessId TestProcess::Id() const {
    return mState->process;
}

std::string TestProcess::ReadLine() {
    const int output = mState->output.readEnd.Get();
    char character = 0;
    std::string line;
    while (IsReadable(output) && read(output, &character, 1) == 1 && character != '\n')
        line += character;
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

void TestProcess::WriteLine(const std::string& line) {
    const std::string text = line + "\n";
    ASSERT_EQ(write(mState->input.writeEnd.Get(), text.data(), text.size()),
              static_cast<ssize_t>(text.size()));
}

void TestProcess::CloseInput() {
    mState->input.writeEnd = {};
}

ProgramResult TestProcess::Finish() {
    CloseInput();
    ProgramResult result;
    std::thread errors([&] { result.errors = ReadToEnd(mState->errors.readEnd.Get()); });
    result.output = ReadToEnd(mState->output.readEnd.Get());
    errors.join();
    result.status = mState->Collect();
    return result;
}

void KillProcess(platform::ProcessId id) {
    kill(static_cast<pid_t>(id), SIGKILL);
}

void SuspendProcess(platform::ProcessId id) {
    kill(static_cast<pid_t>(id), SIGSTOP);
}

void ResumeProcess(platform::ProcessId id) {
    kill(static_cast<pid_t>(id), SIGCONT);
}
