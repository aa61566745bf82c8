// A client's end of a connection to the agent: messages, with a limit on every wait.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "ipc/Message.h"

namespace pellwick {

/// One thread, but for Cancel.
class ClientStream {
public:
    using Clock = std::chrono::steady_clock;

    ClientStream();
    ~ClientStream();
    ClientStream(const ClientStream&) = delete;
    ClientStream& operator=(const ClientStream&) = delete;

    /// Connects to the agent at `address`; false when nobody listens there or takes the connection in time,
    /// or it is not a process of this user.
    bool Connect(const std::string& address, Clock::time_point deadline);
    /// False when the connection is broken or the other side does not take the frame in time.
    bool Send(const std::string& frame, Clock::time_point deadline);

    enum class Outcome { kMessage, kTimeOver, kBroken };
    /// Waits for the next message. What arrived before the connection broke is still delivered.
    Outcome Receive(Json& message, Clock::time_point deadline);

    /// Whether Receive has something to go on without waiting, the end of the connection included.
    bool HasInput() const;

    /// Nothing more is sent or received.
    void Close();

    /// Ends the wait of another thread, and every later one, with kBroken. Any thread.
    void Cancel();

private:
    struct Connection;
    std::unique_ptr<Connection> mConnection;
};

}  // namespace pellwick
