// Calls to the agent.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "ErrorCodes.h"
#include "ipc/ClientStream.h"

namespace pellwick {

/// One request, as its client numbers it.
struct Request {
    const char* method;
    const Json& arguments;
    long long id = 0;       ///< greater than that of every request before it
    long long repeats = 0;  ///< the ID that the same request had when its answer was lost; 0: it is a new one
};

/// A connection that is made with the first call and, once it has failed, stays failed: the caller decides
/// whether to make another. One thread.
class AgentConnection {
public:
    using Clock = ClientStream::Clock;

    /// How long to wait for an answer.
    struct Patience {
        std::chrono::milliseconds sign;  ///< for a sign of life of the agent
        Clock::time_point end;           ///< for the answer, however many signs there are
    };

    /// `limit`: how long Call waits for a sign of life of the agent.
    explicit AgentConnection(std::chrono::milliseconds limit = {}) : mLimit(limit) {}

    /// Has the agent carry out a method. On success `result` is its answer, else what "message" it gives, if
    /// any. GIPCClient::kServiceUnavailable when the agent cannot be reached or gives no sign of life in
    /// time, GAgentIF::kShutdown when it said that it ends; both for every later call as well.
    [[nodiscard]] ErrorCode Call(const char* method, const Json& arguments, Json& result);

    // The steps of a call, for callers that pace them themselves.

    /// Connects and greets the agent, unless that is done. `greeting`: members that the greeting has beside
    /// the version. When the agent does not answer in time the answer can still be waited for with another
    /// Greet.
    [[nodiscard]] ErrorCode Greet(const Json& greeting, const Patience& patience);
    /// Sends the request and waits for its answer. A request that is not answered in time is withdrawn: the
    /// connection fails.
    [[nodiscard]] ErrorCode Exchange(const Request& request, const Patience& patience, Json& result);
    /// Tells the agent that the answer to that request has arrived.
    void Acknowledge(long long id);

    bool HasFailed() const { return mState == State::kFailed; }
    /// Whether no call can succeed any more: it has failed, or the agent has closed it or said goodbye since.
    /// Does not wait.
    bool IsLost();
    /// Whether the last wait was for an agent that kept the connection and gave no answer in time.
    bool HasTimedOut() const { return mHasTimedOut; }

    /// After a subscription: waits for what the agent has to tell. kSuccess for a notification; kShutdown
    /// when the agent said that it ends, kServiceUnavailable when it ended without a word, or another thread
    /// ended the wait.
    [[nodiscard]] ErrorCode WaitForNotification(int32_t& type, Json& data);
    /// Ends the wait of another thread. Any thread.
    void Cancel() { mStream.Cancel(); }

private:
    enum class State { kClosed, kGreeting, kOpen, kFailed };

    ErrorCode Fail(ErrorCode code);
    bool Send(const Json& message, Clock::time_point deadline);
    ErrorCode ReceiveAnswer(long long id, const Patience& patience, Json& result);

    const std::chrono::milliseconds mLimit;
    ClientStream mStream;
    State mState = State::kClosed;
    ErrorCode mFailure = CoreErrorCodes::kSuccess;  ///< that of the connection, for good
    bool mHasTimedOut = false;
    long long mLastID = 0;  ///< of Call's requests
};

/// "message" of a failed call's result, or else the name of the code.
std::string FailureText(ErrorCode code, const Json& result);

}  // namespace pellwick
