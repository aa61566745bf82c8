// One client's connection, in the agent.
#pragma once

#include <array>
#include <asio/io_context.hpp>
#include <memory>
#include <string>

#include "agent/CommandContext.h"
#include "ipc/FrameBuffer.h"
#include "platform/LocalStream.h"

namespace pellwick {

/// What a session needs from the server that owns it.
class SessionOwner {
public:
    virtual ~SessionOwner() = default;

    /// A request, to be answered by ClientSession::Answer, now or later.
    virtual void OnRequest(const std::shared_ptr<class ClientSession>& session, const Json& request) = 0;
    /// The connection is about to be closed, and the client has not taken what its last activation came to.
    virtual void OnAnswerLost(const Client& client) = 0;
    /// Too much output waits for the client; the connection is about to be closed.
    virtual void OnClientTooSlow(const Client& client) = 0;
    /// The connection is closed; the session is not to be used any more.
    virtual void OnClosed(const std::shared_ptr<ClientSession>& session) = 0;
};

/// Reads requests one after the other and writes what is to be sent without ever waiting for the client. A
/// message that cannot be understood, or a client that does not read, ends this connection and no other. The
/// requests of a client that has closed the connection are not begun.
class ClientSession : public std::enable_shared_from_this<ClientSession> {
public:
    ClientSession(asio::io_context& loop, platform::LocalStream stream, SessionOwner& owner,
                  const HostProcess& process);

    void Start() { Read(); }
    /// Sends the answer to the request under way, and goes on to the next one.
    void Answer(const std::string& frame);
    /// Sends the frame now, or as soon as the client takes it.
    void Send(const std::string& frame);
    /// Sends the frame and closes the connection after it.
    void SendLast(const std::string& frame);
    void Close();
    /// Whether requests are being waited for or output is on its way.
    bool IsOpen() const { return mStream.IsOpen(); }
    Client& Peer() { return mClient; }

private:
    /// Runs the next step. A session that runs out of memory in it is closed.
    template <class Step>
    void Take(const Step& step);
    void Read();
    void HandleNextMessage();
    void Handle(const Json& message);
    void GoOn();
    void OnTaken(size_t size, const asio::error_code& failure);

    asio::io_context& mLoop;
    platform::LocalStream mStream;
    SessionOwner& mOwner;
    Client mClient;
    FrameBuffer mInput;
    std::array<char, 65536> mPiece;
    size_t mQueuedBytes = 0;     ///< of frames that the system has not taken
    bool mHasTakenMuch = false;  ///< of memory, for the message before
    bool mClosesWhenWritten = false;
    bool mIsHeardNoMore = false;  ///< by the client; what it has said is still to be read
};

}  // namespace pellwick
