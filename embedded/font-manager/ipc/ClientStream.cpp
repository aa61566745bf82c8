#include "ipc/ClientStream.h"

#include <array>
#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/write.hpp>
#include <atomic>
#include <nlohmann/json.hpp>
#include <optional>

#include "ipc/FrameBuffer.h"
#include "platform/LocalSockets.h"

namespace pellwick {

struct ClientStream::Connection {
    asio::io_context loop{1};
    asio::local::stream_protocol::socket socket{loop};
    FrameBuffer input;
    std::array<char, 65536> piece;
    std::atomic<bool> isCancelled{false};

    void RunUntil(Clock::time_point deadline) {
        if (deadline == Clock::time_point::max())
            loop.run();  // a deadline, however far, would have the loop wake up every second
        else
            loop.run_until(deadline);
    }

    /// Starts an operation and runs the loop until it is done. False when it failed, with the reason, or,
    /// without one, when the time was over.
    template <class Start>
    bool Complete(Start start, Clock::time_point deadline, asio::error_code& failure, size_t& size) {
        std::optional<asio::error_code> result;
        start([&](const asio::error_code& code, size_t transferred) {
            result = code;
            size = transferred;
        });
        loop.restart();
        if (!isCancelled)  // after the restart: a cancellation stops the loop or is seen here
            RunUntil(deadline);
        const bool isTimeOver = !result;
        if (isTimeOver) {  // the operation refers to this frame of the stack
            asio::error_code ignored;
            socket.cancel(ignored);
            while (!result) {  // a cancellation by another thread may stop the loop once more
                loop.restart();
                loop.run();
            }
        }
        failure = isTimeOver && isCancelled ? asio::error::operation_aborted : *result;
        if (isTimeOver && !isCancelled && failure == asio::error::operation_aborted)
            failure = {};
        return !isTimeOver && !failure;
    }
};

ClientStream::ClientStream() : mConnection(std::make_unique<Connection>()) {}
ClientStream::~ClientStream() = default;

bool ClientStream::Connect(const std::string& address) {
    if (address.empty() || address.size() > platform::kLocalSocketPathLimit)
        return false;
    asio::error_code failure;
    auto& socket = mConnection->socket;
    socket.open(asio::local::stream_protocol(), failure);
    if (!failure)
        socket.non_blocking(true, failure);  // a full queue of connections refuses instead of waiting
    if (!failure)
        socket.connect(asio::local::stream_protocol::endpoint(address), failure);
    platform::PeerIdentity peer;
    return !failure && !platform::IdentifyPeer(socket.native_handle(), peer) && peer.isSameUser;
}

bool ClientStream::Send(const std::string& frame, Clock::time_point deadline) {
    asio::error_code failure;
    size_t size = 0;
    return mConnection->Complete(
        [&](auto handler) { asio::async_write(mConnection->socket, asio::buffer(frame), handler); }, deadline,
        failure, size);
}

ClientStream::Outcome ClientStream::Receive(Json& message, Clock::time_point deadline) {
    for (;;) {
        if (const auto payload = mConnection->input.Next()) {
            auto decoded = DecodeMessage(*payload);
            if (!decoded)
                return Outcome::kBroken;
            message = std::move(*decoded);
            return Outcome::kMessage;
        }
        if (mConnection->input.IsBroken())
            return Outcome::kBroken;
        asio::error_code failure;
        size_t size = 0;
        const bool isComplete = mConnection->Complete(
            [&](auto handler) {
                mConnection->socket.async_read_some(asio::buffer(mConnection->piece), handler);
            },
            deadline, failure, size);
        if (!isComplete)
            return failure ? Outcome::kBroken : Outcome::kTimeOver;
        mConnection->input.Append(mConnection->piece.data(), size);
    }
}

void ClientStream::Cancel() {
    mConnection->isCancelled = true;
    mConnection->loop.stop();
}

}  // namespace pellwick
