// Requests to end, as the system makes them.
#pragma once

#include <asio/io_context.hpp>
#include <functional>
#include <memory>

namespace platform {

/// Calls the handler, from the loop and once, when the system or the user wants the process to end, instead
/// of ending it. Linux: SIGINT, SIGTERM. Windows: Ctrl-C and Ctrl-Break, a console that closes, the end of
/// the session. One for a process; the loop has work for as long as it lives.
class EndRequests {
public:
    EndRequests(asio::io_context& loop, std::function<void()> handler);
    ~EndRequests();
    EndRequests(const EndRequests&) = delete;
    EndRequests& operator=(const EndRequests&) = delete;

private:
    struct State;
    std::unique_ptr<State> mState;
};

}  // namespace platform
