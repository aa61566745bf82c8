// Environment variables for the length of a scope.
#pragma once

#include "platform/Environment.h"

/// Gives an environment variable a value for as long as it lives; an empty one counts as unset.
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
