// The library's state for this process: the facade and the connection behind it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "ErrorCodes.h"
#include "TarnwickPluginInterface.h"
#include "client/MissingFontNotes.h"
#include "client/NotificationListener.h"
#include "ipc/AgentConnection.h"
#include "platform/Processes.h"

namespace pellwick {

/// A facade is the number of a connection. A connection that is lost is made anew when the facade is next
/// fetched; a facade that was dropped is told from the one after it. Any thread.
class Library {
public:
    /// The library of this process. A process that was forked from one with a library gets its own: the
    /// connection and the locks of the other belong to threads that do not exist here.
    static Library& Get();

    PluginFacadeRef Facade();
    void DropFacade();

    /// Calls the agent. GAgentIF::kUninitialized for a null facade, GAgentIF::kAgentIFDestroyed for one that
    /// was dropped; otherwise as AgentConnection::Exchange.
    [[nodiscard]] ErrorCode Call(PluginFacadeRef facade, const char* method, const Json& arguments,
                                 Json& result);
    [[nodiscard]] ErrorCode CheckFacade(PluginFacadeRef facade);

    NotificationListener& Listener() { return mListener; }
    MissingFontNotes& Missing() { return mMissing; }
    /// Lets go of the connection and stops the listener.
    void CleanUp();

private:
    using Clock = AgentConnection::Clock;

    /// A request whose answer was lost: the agent may have carried it out.
    struct Unanswered {
        std::string method;
        Json arguments;
        long long id;
    };

    Library(platform::ProcessId process, uintptr_t generation);

    ErrorCode CheckGeneration(PluginFacadeRef facade) const;
    void Drop();
    ErrorCode CallConnected(const char* method, const Json& arguments, Clock::time_point begin, Json& result);
    ErrorCode Greet(Clock::time_point begin);
    Request NextRequest(const char* method, const Json& arguments);
    void NoteOutcome(const Request& request);
    /// When a call that begins now has to end, even while the agent gives signs of life.
    Clock::time_point EndOfPatience(Clock::time_point begin) const;

    const platform::ProcessId mProcess;
    std::mutex mConnectionLock;  ///< guards what follows, but for the listener
    uintptr_t mGeneration;
    std::unique_ptr<AgentConnection> mConnection;
    long long mLastID;
    long long mLastTaken;  ///< the last request whose answer arrived, or what came before the first
    std::optional<Unanswered> mUnanswered;
    bool mIsStalled = false;        ///< the agent has given no sign of life since a wait for it was over
    bool mHasWaitedInVain = false;  ///< and no agent has answered since, an earlier one or another
    Clock::time_point
        mEndOfPatience{};             ///< of the last call that waited in vain, and of those that follow it
    Clock::time_point mBeginOfRow{};  ///< of calls that followed one another without a pause
    Clock::time_point mLastEnd{};     ///< of a call
    NotificationListener mListener;
    MissingFontNotes mMissing;
};

}  // namespace pellwick
