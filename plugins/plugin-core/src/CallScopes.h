// What a call from the host holds from its beginning to its end, however it ends.
#pragma once

#include "ErrorCodes.h"
#include "TraceLog.h"

/// The closing line of a call from the host.
inline auto ExitingWithResult(const char* name, const ErrorCode& result) {
    return [name, &result] { LogMessage(-1, "Exiting %s() with result %d", name, static_cast<int>(result)); };
}

/// The turn of a modal dialog, or of a call that may show one, from behind which a host that pumps events may
/// call again. False, and told in the trace, while an earlier turn lasts.
class DialogTurn {
public:
    /// `isTaken` is shared by all turns of the kind and outlives them.
    DialogTurn(bool& isTaken, const char* caller) : mIsTaken(isTaken), mIsOurs(!isTaken) {
        mIsTaken = true;
        if (!mIsOurs)
            LogMessage(0, "ERROR: %s() called recursively.", caller);
    }
    ~DialogTurn() {
        if (mIsOurs)
            mIsTaken = false;
    }
    DialogTurn(const DialogTurn&) = delete;
    DialogTurn& operator=(const DialogTurn&) = delete;
    explicit operator bool() const { return mIsOurs; }

private:
    bool& mIsTaken;
    const bool mIsOurs;
};
