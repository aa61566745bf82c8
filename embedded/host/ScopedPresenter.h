// Who asks the user on behalf of a program that was typed at a terminal.
#pragma once

#include <string>

#include "platform/Environment.h"

/// While the core starts, which is when its framework looks who asks: the terminal, and nobody where there is none,
/// so that no script waits behind a window. What the user has chosen stands. Programs that are started later do not
/// inherit it: the terminal is not theirs.
class ScopedPresenter {
public:
    ScopedPresenter() {
        if (mIsOurs)
            platform::SetEnvironment(kVariable, HasTerminal() ? "terminal" : "silent");
    }
    ~ScopedPresenter() {
        if (mIsOurs)
            platform::SetEnvironment(kVariable, {});
    }
    ScopedPresenter(const ScopedPresenter&) = delete;
    ScopedPresenter& operator=(const ScopedPresenter&) = delete;

private:
    static constexpr char kVariable[] = "PLUGINCORE_PRESENTER";

    static bool HasTerminal() {
        return platform::IsTerminal(platform::StandardStream::kInput) &&
               platform::IsTerminal(platform::StandardStream::kError);
    }

    const bool mIsOurs = platform::EnvironmentVariable(kVariable).empty();
};
