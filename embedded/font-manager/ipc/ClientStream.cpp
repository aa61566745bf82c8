#include "ipc/ClientStream.h"

#include <array>
#include <atomic>
#include <nlohmann/json.hpp>
#include <optional>

#include "ipc/FrameBuffer.h"
#include "platform/LocalStream.h"

namespace pellwick {

struct ClientStream::Connection {
    asio::io_context loop{1};
    platform::LocalStream stream{loop};
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
            stream.Cancel();
            while (!result) {  // a cancellation by another thread may stop the loop once more
                loop.restart();
                loop.run();
            }
        }
        if (!*result && !isCancelled)  // also when it was done at the last moment
            return true;
        failure = isTimeOver && isCancelled ? asio::error::operation_aborted : *result;
        if (isTimeOver && !isCancelled && failure == asio::error::operation_aborted)
            failure = {};
        return !isTimeOver && !failure;
    }
};

ClientStream::ClientStream() : mConnection(std::make_unique<Connection>()) {}
ClientStream::~ClientStream() = default;

bool ClientStream::Connect(const std::string& address, Clock::time_point deadline) {
    platform::LocalStream& stream = mConnection->stream;
    platform::PeerIdentity peer;
    return !stream.Connect(address, deadline, mConnection->isCancelled) && !stream.IdentifyPeer(peer) &&
           peer.isSameUser;
}

bool ClientStream::Send(const std::string& frame, Clock::time_point deadline) {
    asio::error_code failure;
    size_t ignored = 0;
    return mConnection->Complete(
        [&](auto handler) {
            mConnection->stream.Write(
                frame, [handler](const asio::error_code& result) { handler(result, size_t{0}); });
        },
        deadline, failure, ignored);
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
            [&](auto handler) { mConnection->stream.Read(asio::buffer(mConnection->piece), handler); },
            deadline, failure, size);
        if (!isComplete)
            return failure ? Outcome::kBroken : Outcome::kTimeOver;
        mConnection->input.Append(mConnection->piece.data(), size);
    }
}

bool ClientStream::HasInput() const {
    return !mConnection->input.IsEmpty() || mConnection->stream.HasInput();
}

void ClientStream::Close() {
    mConnection->stream.Close();
}

void ClientStream::Cancel() {
    mConnection->isCancelled = true;
    mConnection->loop.stop();
}

}  // namespace pellwick
