#include "agent/ClientSession.h"

#include <asio/buffer.hpp>
#include <asio/post.hpp>
#include <new>
#include <nlohmann/json.hpp>

#include "agent/MemoryReserve.h"
#include "common/FontManagerLimits.h"
#include "platform/Memory.h"

namespace pellwick {

ClientSession::ClientSession(asio::io_context& loop, platform::LocalStream stream, SessionOwner& owner,
                             const HostProcess& process)
    : mLoop(loop), mStream(std::move(stream)), mOwner(owner) {
    mClient.process = process;
}

template <class Step>
void ClientSession::Take(const Step& step) {
    memory_reserve::Restore();
    try {
        step();
    } catch (const std::bad_alloc&) {
        Close();
        throw;
    }
}

void ClientSession::Read() {
    mStream.Read(asio::buffer(mPiece),
                 [self = shared_from_this()](const asio::error_code& failure, size_t size) {
                     if (failure) {
                         self->Close();
                         return;
                     }
                     self->Take([&] {
                         self->mInput.Append(self->mPiece.data(), size);
                         self->HandleNextMessage();
                     });
                 });
}

void ClientSession::HandleNextMessage() {
    if (!IsOpen() || mClosesWhenWritten)
        return;
    const std::optional<std::string> payload = mInput.Next();
    if (!payload) {
        if (mInput.IsBroken())
            Close();
        else
            Read();
        return;
    }
    if (payload->size() > kMaxMessageWithoutReserve && !memory_reserve::Restore())
        throw std::bad_alloc();
    mHasTakenMuch = payload->size() > kMaxIdleBuffer;
    if (std::optional<Json> message = DecodeMessage(*payload)) {
        const ScopedDisposal disposal(*message);
        Handle(*message);
    } else {
        Close();
    }
}

void ClientSession::Handle(const Json& message) {
    const bool isRequest = !message.contains(member::kTaken);
    if (!isRequest) {
        mClient.provisionalRequest = 0;
        GoOn();
    } else if (mStream.IsOtherEndClosed()) {
        Close();
    } else {
        mOwner.OnRequest(shared_from_this(), message);
    }
}

void ClientSession::Answer(const std::string& frame) {
    Send(frame);
    GoOn();
}

void ClientSession::GoOn() {
    // The others get their turn before this client's next message.
    asio::post(mLoop, [self = shared_from_this()] {
        if (self->mHasTakenMuch)
            platform::ReleaseFreeMemory();
        self->Take([&] { self->HandleNextMessage(); });
    });
}

void ClientSession::Send(const std::string& frame) {
    if (!IsOpen() || mClosesWhenWritten || mIsHeardNoMore)
        return;
    if (mQueuedBytes + frame.size() > kMaxQueuedBytes) {
        mOwner.OnClientTooSlow(mClient);
        Close();
        return;
    }
    mQueuedBytes += frame.size();
    mStream.Write(frame, [self = shared_from_this(), size = frame.size()](const asio::error_code& failure) {
        self->OnTaken(size, failure);
    });
}

void ClientSession::SendLast(const std::string& frame) {
    Send(frame);
    mClosesWhenWritten = true;
    if (mQueuedBytes == 0)
        Close();
}

void ClientSession::OnTaken(size_t size, const asio::error_code& failure) {
    mQueuedBytes -= size;
    if (failure)
        mIsHeardNoMore = true;
    if (mClosesWhenWritten && (failure || mQueuedBytes == 0))
        Close();
}

void ClientSession::Close() {
    if (!IsOpen())
        return;
    mStream.Close();
    if (mClient.provisionalRequest != 0)
        mOwner.OnAnswerLost(mClient);
    mOwner.OnClosed(shared_from_this());
}

}  // namespace pellwick
