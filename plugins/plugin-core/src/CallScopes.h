// What a call from the host holds from its beginning to its end, however it ends.
#pragma once

#include "ErrorCodes.h"
#include "HostCall.h"
#include "TraceLog.h"

/// The closing line of a call from the host.
inline auto ExitingWithResult(const char* name, const ErrorCode& result) {
    return [name, &result] { LogMessage(-1, "Exiting %s() with result %d", name, static_cast<int>(result)); };
}

/// The turn of a modal dialog, or of a call that may show one, from behind which a host that pumps events may
/// call again. False, and told in the trace, while an earlier turn lasts.
class DialogTurn {
public:
    /// `turn` is shared by all of the kind and outlives them.
    DialogTurn(Turn& turn, const char* caller) : mHolder(turn) {
        if (!mHolder)
            LogMessage(0, "ERROR: %s() called recursively.", caller);
    }
    explicit operator bool() const { return static_cast<bool>(mHolder); }

private:
    const TurnHolder mHolder;
};
