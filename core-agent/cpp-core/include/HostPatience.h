// How long the host's main thread may be kept by one call into the core.
//
// A host does not draw while it waits, and its user takes it for hung. So a call that has waited for others
// for a while begins nothing more that may have to wait: what is left undone answers with its error, and is
// caught up with later. What the user sees happening, a dialog or a bar, is not waiting.
#pragma once

#include <chrono>
#include <cstdint>

#include "HostCall.h"

/// Main thread.
class HostPatience {
public:
    /// Lasts for a call of the host. One within another, from behind a dialog, has a patience of its own.
    class Call {
    public:
        Call();
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        const HostCall mCall;
    };

    /// The user saw something and begins to wait anew.
    static void Renew();
    /// An agent that was waited for answers again. The interface library sees to it that what follows does
    /// not wait for long a second time.
    static void NoteRecovery();

    /// Whether a request to the font manager may be begun, which may wait for two seconds.
    static bool AllowsRequest();
    /// Whether the agent may be asked if it is there, which waits for a fraction of a second when it was
    /// silent the last time.
    static bool AllowsQuestion() { return Spent() <= kLatestQuestion; }
    /// Whether a start of the agent may be begun, which may wait for two seconds, and for a request after it.
    static bool AllowsLaunch() { return Spent() <= kLatestLaunch; }

private:
    // Together with what they wait for these stay below five seconds.
    static constexpr std::chrono::milliseconds kLatestRequest{2900};
    static constexpr std::chrono::milliseconds kLatestRequestAfterRecovery{4500};
    static constexpr std::chrono::milliseconds kLatestQuestion{4500};
    static constexpr std::chrono::milliseconds kLatestLaunch{2600};

    /// Nothing outside of a call.
    static std::chrono::milliseconds Spent();
};
