// What a call from the host holds from its beginning to its end, however it ends.
#pragma once

#include <string>

#include "ErrorCodes.h"
#include "TraceLog.h"

/// The opening line in the trace, and the closing one with the result.
class TracedCall {
public:
    /// `name`: the qualified name, a literal. `subject`: the first text argument.
    TracedCall(const char* name, const std::string& subject) : mName(name) {
        LogMessage(1, "Entering %s('%s', ...)", mName, subject.c_str());
    }
    ~TracedCall() { LogMessage(-1, "Exiting %s() with result %d", mName, static_cast<int>(result)); }
    TracedCall(const TracedCall&) = delete;
    TracedCall& operator=(const TracedCall&) = delete;

    ErrorCode result = CoreErrorCodes::kUnknownError;

private:
    const char* mName;
};

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
