// What the framework's tests share: folders, environment variables and log lines of their own, and child
// processes.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <string>
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
