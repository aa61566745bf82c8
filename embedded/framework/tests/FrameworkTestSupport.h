// What the framework's tests share: folders, environment variables and log lines of their own.
#pragma once

#include <fstream>

#include "CapturedTrace.h"
#include "TemporaryFolder.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

/// Gives an environment variable a value for the length of a scope; an empty one counts as unset.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const std::string& value)
        : mName(name), mPrevious(platform::EnvironmentVariable(name)) {
        platform::SetEnvironment(name, value);
    }
    ~ScopedVariable() { platform::SetEnvironment(mName, mPrevious); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const char* mName;
    const std::string mPrevious;
};

inline void WriteText(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(platform::Utf8Path(path).parent_path());
    std::ofstream(platform::Utf8Path(path), std::ios::binary) << text;
}
