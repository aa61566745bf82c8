#include "StartedProgram.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <stdexcept>

#include "Descriptor.h"

namespace {

/// The program's end of a pipe whose other end is ours, to be read from or written to.
platform::Descriptor MakePipe(Stream& ours, bool isRead) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    ours.reset(isRead ? fdopen(ends[0], "r") : fdopen(ends[1], "w"));
    return platform::Descriptor(ends[isRead ? 1 : 0]);
}

}  // namespace

StartedProgram::StartedProgram(const std::vector<std::string>& command) {
    const platform::Descriptor theirs[] = {MakePipe(input, false), MakePipe(output, true),
                                           MakePipe(errors, true)};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_adddup2(&actions, theirs[number].Get(), number);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    std::vector<std::string> words = command;
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t process = 0;
    const int failure = posix_spawn(&process, words[0].c_str(), &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0)
        throw std::runtime_error("cannot start " + command[0]);
    id = process;
}

int StartedProgram::Collect() const {
    int status = 0;
    waitpid(static_cast<pid_t>(id), &status, 0);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
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
