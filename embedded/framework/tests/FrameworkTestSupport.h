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

#include "platform/DebugOutput.h"
#include "platform/Utf8Path.h"

/// A new folder, with a name that is hard on careless code; taken away with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "framework ü 字 😀 XXXXXX").string();
        mPath = mkdtemp(name.data()) != nullptr ? name : "";
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(platform::Utf8Path(mPath), ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& Path() const { return mPath; }
    std::string operator/(const std::string& name) const { return mPath + "/" + name; }

private:
    std::string mPath;
};

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

/// Collects what goes to the debugger output.
class LogCapture : public platform::DebugOutput {
public:
    void Write(const char* text) noexcept override {
        const std::lock_guard guard(mTextLock);
        mText += text;
    }
    bool IsListening() noexcept override { return true; }

    std::string Text() {
        const std::lock_guard guard(mTextLock);
        return mText;
    }
    size_t LineCount() {
        const std::string text = Text();
        return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    }

private:
    std::mutex mTextLock;
    std::string mText;
    platform::ScopedOverride<platform::DebugOutput> mOverride{*this};
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
