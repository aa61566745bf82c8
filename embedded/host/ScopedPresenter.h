// Who asks the user on behalf of a program that was typed at a terminal.
#pragma once

#include <optional>
#include <string>

#include "platform/Environment.h"

/// While the core starts, which is when its framework looks who asks: a file of answers, if there is one, else the
/// terminal, and nobody where there is none, so that no script waits behind a window. What the user has set stands but
/// for the answers. Programs that are started later, or that this one becomes, do not inherit it.
class ScopedPresenter {
public:
    /// `answers`: the file's full path; may be empty.
    explicit ScopedPresenter(const std::string& answers) {
        if (!answers.empty())
            mAnswers.emplace("PLUGINCORE_ANSWERS", answers);
        if (platform::EnvironmentVariable(kPresenter).empty())
            mPresenter.emplace(kPresenter, HasTerminal() ? "terminal" : "silent");
    }

private:
    static constexpr char kPresenter[] = "PLUGINCORE_PRESENTER";

    class Variable {
    public:
        Variable(const char* name, const std::string& value)
            : mName(name), mBefore(platform::EnvironmentVariable(name)) {
            platform::SetEnvironment(name, value);
        }
        ~Variable() { platform::SetEnvironment(mName, mBefore); }
        Variable(const Variable&) = delete;
        Variable& operator=(const Variable&) = delete;

    private:
        const char* mName;
        const std::string mBefore;
    };

    static bool HasTerminal() {
        return platform::IsTerminal(platform::StandardStream::kInput) &&
               platform::IsTerminal(platform::StandardStream::kError);
    }

    std::optional<Variable> mAnswers;
    std::optional<Variable> mPresenter;
};
