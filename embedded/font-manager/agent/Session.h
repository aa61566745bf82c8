// One client's connection, in the agent.
#pragma once

#include <array>
#include <asio/local/stream_protocol.hpp>
#include <deque>
#include <memory>
#include <string>

#include "agent/Commands.h"
#include "ipc/FrameBuffer.h"

namespace pellwick {

/// What a session needs from the server that owns it.
class SessionOwner {
public:
    virtual ~SessionOwner() = default;

    /// The frame that answers a request.
    virtual std::string Answer(Client& client, const Json& request) = 0;
    /// So much waits for the client that the connection is about to be closed.
    virtual void OnClientTooSlow(const Client& client) = 0;
    /// The connection is closed; the session is not to be used any more.
    virtual void OnClosed(const std::shared_ptr<class Session>& session) = 0;
};

/// Reads requests one after the other and writes what is to be sent without ever waiting for the client. A
/// message that cannot be understood, or a client that does not read, ends this connection and no other.
class Session : public std::enable_shared_from_this<Session> {
public:
    using Socket = asio::local::stream_protocol::socket;

    Session(Socket socket, SessionOwner& owner, const HostProcess& process);

    void Start();
    /// Sends the frame now, or as soon as the client takes it.
    void Send(const std::string& frame);
    /// Sends the frame and closes the connection after it.
    void SendLast(const std::string& frame);
    /// Whether requests are being waited for or output is on its way.
    bool IsOpen() const { return mSocket.is_open(); }
    const Client& Peer() const { return mClient; }

private:
    void Read();
    void HandleNextRequest();
    void WriteDirectly();
    void Write();
    void Close();

    Socket mSocket;
    SessionOwner& mOwner;
    Client mClient;
    FrameBuffer mInput;
    std::array<char, 65536> mPiece;
    std::deque<std::string> mOutput;
    size_t mWritten = 0;      ///< bytes of the first frame that are on their way already
    size_t mQueuedBytes = 0;  ///< all of mOutput
    bool mIsWriting = false;
    bool mClosesWhenWritten = false;
};

}  // namespace pellwick
