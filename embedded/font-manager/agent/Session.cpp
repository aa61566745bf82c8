#include "agent/Session.h"

#include <asio/buffer.hpp>
#include <asio/post.hpp>
#include <nlohmann/json.hpp>

#include "common/Limits.h"

namespace pellwick {

Session::Session(Socket socket, SessionOwner& owner, const HostProcess& process)
    : mSocket(std::move(socket)), mOwner(owner) {
    mClient.process = process;
}

void Session::Start() {
    asio::error_code failure;
    mSocket.non_blocking(true, failure);
    Read();
}

void Session::Read() {
    mSocket.async_read_some(asio::buffer(mPiece),
                            [self = shared_from_this()](const asio::error_code& failure, size_t size) {
                                if (failure) {
                                    self->Close();
                                    return;
                                }
                                self->mInput.Append(self->mPiece.data(), size);
                                self->HandleNextRequest();
                            });
}

void Session::HandleNextRequest() {
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
    const std::optional<Json> request = DecodeMessage(*payload);
    if (!request) {
        Close();
        return;
    }
    Send(mOwner.Answer(mClient, *request));
    // The others get their turn before this client's next request.
    asio::post(mSocket.get_executor(), [self = shared_from_this()] { self->HandleNextRequest(); });
}

void Session::Send(const std::string& frame) {
    if (!IsOpen() || mClosesWhenWritten)
        return;
    if (mQueuedBytes + frame.size() > kMaxQueuedBytes) {
        mOwner.OnClientTooSlow(mClient);
        Close();
        return;
    }
    mOutput.push_back(frame);
    mQueuedBytes += frame.size();
    if (!mIsWriting)
        WriteDirectly();
}

void Session::SendLast(const std::string& frame) {
    Send(frame);
    mClosesWhenWritten = true;
    if (mOutput.empty())
        Close();
}

/// What the system takes at once need not wait for the loop, which a long command keeps busy.
void Session::WriteDirectly() {
    asio::error_code failure;
    const size_t written = mSocket.write_some(asio::buffer(mOutput.front()), failure);
    if (failure && failure != asio::error::would_block && failure != asio::error::try_again) {
        Close();
        return;
    }
    mWritten = written;
    if (written == mOutput.front().size()) {
        mQueuedBytes -= written;
        mOutput.pop_front();
        mWritten = 0;
    }
    if (!mOutput.empty())
        Write();
}

void Session::Write() {
    mIsWriting = true;
    mSocket.async_write_some(asio::buffer(mOutput.front()) + mWritten,
                             [self = shared_from_this()](const asio::error_code& failure, size_t size) {
                                 self->mIsWriting = false;
                                 if (failure) {
                                     self->Close();
                                     return;
                                 }
                                 self->mWritten += size;
                                 if (self->mWritten == self->mOutput.front().size()) {
                                     self->mQueuedBytes -= self->mOutput.front().size();
                                     self->mOutput.pop_front();
                                     self->mWritten = 0;
                                 }
                                 if (!self->mOutput.empty())
                                     self->Write();
                                 else if (self->mClosesWhenWritten)
                                     self->Close();
                             });
}

void Session::Close() {
    if (!IsOpen())
        return;
    asio::error_code ignored;
    mSocket.close(ignored);
    mOwner.OnClosed(shared_from_this());
}

}  // namespace pellwick
