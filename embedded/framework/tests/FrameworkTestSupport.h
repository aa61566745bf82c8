// What the framework's tests share: folders, environment variables and log lines of their own, and child
// processes.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CapturedTrace.h"
#include "TemporaryFolder.h"
#include "platform/Utf8Path.h"

/// Sets an environment variable, or unsets it, for the length of a scope.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const std::optional<std::string>& value) : mName(name) {
        if (const char* previous = std::getenv(name))
            mPrevious = previous;
        Set(value);
    }
    ~ScopedVariable() { Set(mPrevious); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    void Set(const std::optional<std::string>& value) {
        if (value)
            setenv(mName, value->c_str(), 1);
        else
            unsetenv(mName);
    }

    const char* mName;
    std::optional<std::string> mPrevious;
};

inline void WriteText(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(platform::Utf8Path(path).parent_path());
    std::ofstream(platform::Utf8Path(path), std::ios::binary) << text;
}

inline std::string ReadText(const std::string& path) {
    std::ifstream file(platform::Utf8Path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Runs `work` in a child process, which ends with 0 when it answers true.
template <class Work>
pid_t StartChild(Work work) {
    const pid_t child = fork();
    if (child == 0)
        _exit(work() ? 0 : 1);
    return child;
}

/// The exit status; 128 + N when signal N ended it.
inline int WaitForChild(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child)
        return -1;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// A program whose standard output the test reads. Killed and waited for at the end of its scope.
class RunningProgram {
public:
    explicit RunningProgram(std::vector<std::string> arguments) {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        std::vector<char*> list;
        for (std::string& argument : arguments)
            list.push_back(argument.data());
        list.push_back(nullptr);
        mProcess = fork();
        if (mProcess == 0) {
            dup2(ends[1], STDOUT_FILENO);
            execv(list[0], list.data());
            _exit(127);
        }
        close(ends[1]);
        mOutput = fdopen(ends[0], "r");
    }
    ~RunningProgram() {
        Kill();
        fclose(mOutput);
    }
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// Without the line feed; nothing at the end.
    std::optional<std::string> ReadLine() {
        char line[256];
        if (std::fgets(line, sizeof line, mOutput) == nullptr)
            return std::nullopt;
        return std::string(line, std::strcspn(line, "\n"));
    }
    /// The exit status, as of WaitForChild.
    int Wait() { return mProcess > 0 ? WaitForChild(std::exchange(mProcess, -1)) : -1; }
    void Kill() {
        if (mProcess > 0)
            kill(mProcess, SIGKILL);
        Wait();
    }

private:
    pid_t mProcess = -1;
    std::FILE* mOutput = nullptr;
};
