// Byte streams between processes of one user on one machine, for use with an Asio loop: local sockets on
// Linux, named pipes on Windows. Nobody else gets through: the listener's address is closed to other users,
// and either side can ask who is at the other end.
//
// The objects belong to the thread that runs the loop. Handlers are called by that thread, and never after
// the object was closed on purpose but with asio::error::operation_aborted.
#pragma once

#include <asio/buffer.hpp>
#include <asio/error_code.hpp>
#include <asio/io_context.hpp>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Processes.h"
#include "platform/SystemError.h"

namespace platform {

struct PeerIdentity {
    ProcessId process = 0;    ///< the process that opened the other end; 0 when it cannot be seen from here
    bool isSameUser = false;  ///< whether it belongs to the user of this process
};

/// One end of a connection.
class LocalStream {
public:
    using Deadline = std::chrono::steady_clock::time_point;
    using ReadHandler = std::function<void(const asio::error_code& failure, size_t size)>;
    using WriteHandler = std::function<void(const asio::error_code& failure)>;

    explicit LocalStream(asio::io_context& loop);
    ~LocalStream();
    LocalStream(LocalStream&&) noexcept;
    LocalStream& operator=(LocalStream&&) noexcept;

    /// Connects to a listener, and waits where all its places are taken until one is free, the deadline has
    /// passed, or `isCancelled` turns true. It is not checked who listens there.
    asio::error_code Connect(const std::string& address, Deadline deadline,
                             const std::atomic<bool>& isCancelled);
    /// Who opened the other end.
    SystemError IdentifyPeer(PeerIdentity& peer) const;

    /// Waits for bytes, of which the loop tells. The buffer must live until then. One read at a time.
    void Read(asio::mutable_buffer buffer, ReadHandler handler);
    /// Hands the bytes over, behind those of earlier calls, and never waits. What the system takes at once is
    /// on its way even if the loop does not run for long. `handler` is called once, when the system has taken
    /// all of them or will not: within this call, where that is known at once, or by the loop.
    void Write(std::string bytes, WriteHandler handler);

    /// Whether a read would not have to wait: for bytes that have arrived, or because the other end is
    /// closed.
    bool HasInput() const;
    /// Whether the other end is closed. Windows: not before everything that it sent was read.
    bool IsOtherEndClosed() const;

    /// Ends reads and writes under way with asio::error::operation_aborted; the loop tells.
    void Cancel();
    bool IsOpen() const;
    /// What the system has taken is still delivered.
    void Close();

private:
    friend class LocalAcceptor;
    struct State;
    std::shared_ptr<State> mState;  ///< shared with the operations under way
};

/// The listening end.
class LocalAcceptor {
public:
    /// `handler` gets each connection.
    using Handler = std::function<void(LocalStream connection)>;

    LocalAcceptor(asio::io_context& loop, Handler handler);
    /// Closes.
    ~LocalAcceptor();
    LocalAcceptor(const LocalAcceptor&) = delete;
    LocalAcceptor& operator=(const LocalAcceptor&) = delete;

    /// Opens the address to this user alone; from then on connections are taken while the loop runs. To be
    /// called once. Linux: makes the folder, private to the user, but not those above it, and takes the place
    /// of a socket that was left there, of nothing else. Fails where other users could put something in the
    /// folder's place. Windows: fails where the address is in use.
    SystemError Listen(const std::string& address);
    /// Takes those who wait to be connected now, without the loop.
    void AdmitWaiting();
    /// Whether who connects to the address still comes to this listener. Windows: for as long as it is open.
    bool IsInPlace() const;
    /// No connection is taken any more. The address goes, if it is still that of this listener.
    void Close();

private:
    struct State;
    std::shared_ptr<State> mState;
};

/// Addresses for the program's listener, best first, all of them told apart by its data folder (a full path).
/// Linux: sockets in the folder for those of this login, in the data folder, and in a folder of short name
/// where those paths are too long for a socket. Windows: the pipe of that name and of this session, and one of
/// a name that nobody can foresee: clients of an agent that died may hold the first for as long as they like.
std::vector<std::string> LocalStreamAddresses(const std::string& maker, const std::string& program,
                                              const std::string& dataFolder);

}  // namespace platform
