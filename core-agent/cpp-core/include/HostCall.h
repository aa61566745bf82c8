// Calls from the host, and what is done once at a time while they last.
//
// A host may leave a call without returning through it: its callback throws an exception of another runtime, or
// jumps. Nothing of ours is told then. So what a call marks as begun counts only while that call is under way, and a
// call is over, however it ended, once another begins from no deeper in the stack, or the call around it goes on.
#pragma once

#include <cstdint>

/// A call from the host, for as long as it lasts. One within another comes from behind a dialog, or from within a
/// callback of the host.
class HostCall {
public:
    /// Tells one call from all others; 0 for none.
    using Number = uint64_t;

    HostCall();
    ~HostCall();
    HostCall(const HostCall&) = delete;
    HostCall& operator=(const HostCall&) = delete;

    /// The innermost of this thread.
    static Number Innermost();
    /// Also true of 0: what begins outside of any call ends by itself.
    static bool IsUnderWay(Number call);

    /// The host has returned to that call from a dialog or a callback, so those that began within it are over.
    static void ComeBackTo(Number call);

private:
    Number mNumber;
};

/// Hands control to the host, in a dialog or a callback, for as long as it lasts.
class WithinHost {
public:
    WithinHost() : mCall(HostCall::Innermost()) {}
    ~WithinHost() {
        if (mCall != 0)
            HostCall::ComeBackTo(mCall);
    }
    WithinHost(const WithinHost&) = delete;
    WithinHost& operator=(const WithinHost&) = delete;

private:
    const HostCall::Number mCall;
};

/// Whether something that nobody is to begin twice is being done.
class Turn {
public:
    bool IsTaken() const { return mIsTaken && HostCall::IsUnderWay(mCall); }

private:
    friend class TurnHolder;
    bool mIsTaken = false;
    HostCall::Number mCall = 0;  ///< in which it was taken
};

/// Acquires a free turn, and releases it at the end. False where somebody has it. The turn outlives it.
class TurnHolder {
public:
    explicit TurnHolder(Turn& turn) : mTurn(turn.IsTaken() ? nullptr : &turn) {
        if (mTurn == nullptr)
            return;
        mTurn->mIsTaken = true;
        mTurn->mCall = HostCall::Innermost();
    }
    ~TurnHolder() {
        if (mTurn != nullptr)
            mTurn->mIsTaken = false;
    }
    TurnHolder(const TurnHolder&) = delete;
    TurnHolder& operator=(const TurnHolder&) = delete;
    explicit operator bool() const { return mTurn != nullptr; }

private:
    Turn* const mTurn;
};
