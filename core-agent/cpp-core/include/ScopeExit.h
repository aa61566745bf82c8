#pragma once

#include <utility>

/// Runs its action when the scope is left, however it is left. The action throws nothing.
template <class Action>
class ScopeExit {
public:
    explicit ScopeExit(Action action) : mAction(std::move(action)) {}
    ~ScopeExit() { mAction(); }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

private:
    Action mAction;
};
