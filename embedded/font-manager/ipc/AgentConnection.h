// Calls to the agent.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "ErrorCodes.h"
#include "ipc/ClientStream.h"

namespace pellwick {

/// A connection that is made with the first call and, once it has failed, stays failed: the caller decides
/// whether to make another. One thread.
class AgentConnection {
public:
    /// `limit`: how long to wait for a sign of life of the agent.
    explicit AgentConnection(std::chrono::milliseconds limit) : mLimit(limit) {}

    /// Has the agent carry out a method. On success `result` is its answer, else what "message" it gives, if
    /// any. GIPCClient::kServiceUnavailable when the agent cannot be reached or gives no sign of life in
    /// time, GAgentIF::kShutdown when it said that it ends; both for every later call as well.
    [[nodiscard]] ErrorCode Call(const char* method, const Json& arguments, Json& result);

    /// After a subscription: waits for what the agent has to tell. False when the agent has ended, whether it
    /// said so or not, or another thread ended the wait.
    bool WaitForNotification(int32_t& type, Json& data);
    /// Ends the wait of another thread. Any thread.
    void Cancel() { mStream.Cancel(); }

private:
    using Deadline = ClientStream::Clock::time_point;

    ErrorCode Open(Deadline deadline);
    ErrorCode Exchange(const char* method, const Json& arguments, Deadline deadline, Json& result);
    ErrorCode Send(const Json& request, Deadline deadline);
    ErrorCode ReceiveAnswer(long long id, Deadline deadline, Json& result);

    const std::chrono::milliseconds mLimit;
    ClientStream mStream;
    bool mIsOpen = false;
    ErrorCode mFailure = CoreErrorCodes::kSuccess;  ///< that of the connection, for good
    long long mLastID = 0;
};

/// "message" of a failed call's result, or else the name of the code.
std::string FailureText(ErrorCode code, const Json& result);

}  // namespace pellwick
