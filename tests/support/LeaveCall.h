// Hosts whose callbacks do not return to the core.
#pragma once

#include <functional>

/// Runs the call; true when a callback of it left by LeaveCall.
bool IsLeft(const std::function<void()>& call);

/// From a callback: continues behind IsLeft. Linux: by a jump. Windows: by an exception that the core's compiler does not
/// know, which IsLeft catches as hosts of another compiler do.
[[noreturn]] void LeaveCall();
