#include "platform/EndRequests.h"

#include <asio/signal_set.hpp>
#include <csignal>

namespace platform {

struct EndRequests::State {
    explicit State(asio::io_context& loop) : signals(loop, SIGINT, SIGTERM) {}

    asio::signal_set signals;
};

EndRequests::EndRequests(asio::io_context& loop, std::function<void()> handler)
    : mState(std::make_unique<State>(loop)) {
    mState->signals.async_wait([handler = std::move(handler)](const asio::error_code& failure, int) {
        if (!failure)
            handler();
    });
}

EndRequests::~EndRequests() = default;

}  // namespace platform
