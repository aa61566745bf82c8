#include "platform/LocalStream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>
#include <cerrno>
#include <deque>
#include <utility>

#include "Descriptor.h"
#include "TextHash.h"
#include "platform/Files.h"
#include "platform/Folders.h"

namespace platform {
namespace {

using Protocol = asio::local::stream_protocol;

constexpr size_t kPathLimit = sizeof(sockaddr_un::sun_path) - 1;
constexpr std::chrono::milliseconds kAcceptRetryDelay{100};

bool IsNotTakenNow(const asio::error_code& failure) {
    return failure == asio::error::would_block || failure == asio::error::try_again;
}

/// Takes over a descriptor. No socket here is ever one that a program inherits which the host starts
/// meanwhile, as Asio's own would be.
asio::error_code Assign(Descriptor opened, auto& socket) {
    asio::error_code failure;
    if (!opened.IsValid())
        return {errno, std::system_category()};
    socket.assign(Protocol(), opened.Get(), failure);
    if (!failure)
        opened.Release();
    return failure;
}

asio::error_code OpenSocket(auto& socket) {
    return Assign(Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)), socket);
}

/// Which of the events hold for the descriptor now.
short EventsNow(int descriptor, short events) {
    pollfd wanted{descriptor, events, 0};
    return poll(&wanted, 1, 0) == 1 ? wanted.revents : short{0};
}

/// A socket's place in a folder of its own. The folders are looked up by their paths once; what is checked
/// and what is used are the same ones, whatever is put at those paths meanwhile.
class SocketPlace {
public:
    SystemError Open(const std::string& address);
    /// Takes away a socket that was left there.
    SystemError Clear() const;
    /// Has the socket stand there, closed to others.
    SystemError Bind(int socket);
    /// Takes away the socket that was bound, and the folder when nothing else is in it.
    void Leave();

    /// Whether who follows the address comes to the socket that was bound.
    bool IsOnItsWay() const;

private:
    SystemError OpenFolder();
    bool IsFound(int folder, const std::string& name, const struct stat& expected) const;

    std::string mAddress;
    std::string mFolderName;
    std::string mName;
    Descriptor mParent;
    Descriptor mFolder;
    struct stat mSocket {};
    bool mIsBound = false;
};

/// The folder above is not made: that of the session is the system's to make, and goes with the session.
SystemError SocketPlace::Open(const std::string& address) {
    mAddress = address;
    mName = NamePart(address);
    std::string folder = FolderPart(address);
    while (!folder.empty() && folder.back() == '/')
        folder.pop_back();
    mFolderName = NamePart(folder);
    if (mName.empty() || mFolderName.empty())
        return SystemError{EINVAL};
    mParent = Descriptor(open(FolderPart(folder).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat info {};
    if (!mParent.IsValid() || fstat(mParent.Get(), &info) != 0)
        return LastSystemError();
    // Whoever owns it, or may write to it without the sticky bit, could put another folder in place of ours.
    const bool isOthers = info.st_uid != geteuid() && info.st_uid != 0;
    if (isOthers || ((info.st_mode & (S_IWGRP | S_IWOTH)) != 0 && (info.st_mode & S_ISVTX) == 0))
        return SystemError{EPERM};
    return OpenFolder();
}

SystemError SocketPlace::OpenFolder() {
    if (mkdirat(mParent.Get(), mFolderName.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        return LastSystemError();
    mFolder = Descriptor(
        openat(mParent.Get(), mFolderName.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat info {};
    if (!mFolder.IsValid() || fstat(mFolder.Get(), &info) != 0)
        return LastSystemError();
    if (info.st_uid != geteuid())
        return SystemError{EPERM};
    const bool isOpen = (info.st_mode & (S_IRWXG | S_IRWXO)) != 0;
    return !isOpen || fchmod(mFolder.Get(), S_IRWXU) == 0 ? SystemError{} : LastSystemError();
}

SystemError SocketPlace::Clear() const {
    struct stat info {};
    if (fstatat(mFolder.Get(), mName.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT ? SystemError{} : LastSystemError();
    if (!S_ISSOCK(info.st_mode))
        return SystemError{EEXIST};
    return unlinkat(mFolder.Get(), mName.c_str(), 0) == 0 ? SystemError{} : LastSystemError();
}

SystemError SocketPlace::Bind(int socket) {
    // There is no call that binds to a name in an open folder, but every open folder has such a path.
    const std::string path = "/proc/self/fd/" + std::to_string(mFolder.Get()) + "/" + mName;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() > kPathLimit)
        return SystemError{ENAMETOOLONG};
    path.copy(address.sun_path, path.size());
    if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return LastSystemError();
    if (fchmodat(mFolder.Get(), mName.c_str(), S_IRUSR | S_IWUSR, 0) != 0 ||
        fstatat(mFolder.Get(), mName.c_str(), &mSocket, AT_SYMLINK_NOFOLLOW) != 0)
        return LastSystemError();
    mIsBound = true;
    return {};
}

/// As long as the socket is open its number is not given to another file.
bool SocketPlace::IsFound(int folder, const std::string& name, const struct stat& expected) const {
    struct stat found {};
    return fstatat(folder, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 &&
           found.st_dev == expected.st_dev && found.st_ino == expected.st_ino;
}

bool SocketPlace::IsOnItsWay() const {
    return mIsBound && IsFound(AT_FDCWD, mAddress, mSocket);
}

void SocketPlace::Leave() {
    if (!mIsBound)
        return;
    mIsBound = false;
    if (IsFound(mFolder.Get(), mName, mSocket))
        unlinkat(mFolder.Get(), mName.c_str(), 0);
    struct stat folder {};
    // Refused where there is more in it than our socket.
    if (fstat(mFolder.Get(), &folder) == 0 && IsFound(mParent.Get(), mFolderName, folder))
        unlinkat(mParent.Get(), mFolderName.c_str(), AT_REMOVEDIR);
}

}  // namespace

struct LocalStream::State : std::enable_shared_from_this<State> {
    struct Output {
        std::string bytes;
        WriteHandler handler;
    };

    explicit State(Protocol::socket connected) : socket(std::move(connected)) {
        asio::error_code ignored;
        socket.non_blocking(true, ignored);
    }

    void WriteNext() {
        socket.async_write_some(asio::buffer(outputs.front().bytes) + written,
                                [self = shared_from_this()](const asio::error_code& failure, size_t size) {
                                    self->written += size;
                                    if (failure)
                                        self->FailAll(failure);
                                    else if (self->written == self->outputs.front().bytes.size())
                                        self->FinishFirst();
                                    else
                                        self->WriteNext();
                                });
    }
    void FinishFirst() {
        outputs.front().handler({});  // while it stays in the queue, what the handler writes comes behind it
        outputs.pop_front();
        written = 0;
        if (!outputs.empty())
            WriteNext();
    }
    /// Nothing more will be taken, and the system does not say so a second time to those who wait for it.
    void FailAll(const asio::error_code& failure) {
        const std::deque<Output> failed = std::exchange(outputs, {});
        written = 0;
        for (const Output& output : failed)
            output.handler(failure);
    }

    Protocol::socket socket;
    std::deque<Output> outputs;  ///< the first is on its way
    size_t written = 0;          ///< bytes of the first
};

LocalStream::LocalStream(asio::io_context& loop) : mState(std::make_shared<State>(Protocol::socket(loop))) {}
LocalStream::LocalStream(LocalStream&&) noexcept = default;
LocalStream& LocalStream::operator=(LocalStream&&) noexcept = default;
LocalStream::~LocalStream() {
    if (mState)
        Close();
}

/// The queue of a listener is long, so that a full one means an agent that has long stopped taking
/// connections: there is no use in waiting.
asio::error_code LocalStream::Connect(const std::string& address, Deadline, const std::atomic<bool>&) {
    asio::error_code failure;
    if (address.empty() || address.size() > kPathLimit)
        return asio::error::name_too_long;
    Protocol::socket& socket = mState->socket;
    failure = OpenSocket(socket);
    if (!failure)
        socket.non_blocking(true, failure);
    if (!failure)
        socket.connect(Protocol::endpoint(address), failure);
    return failure;
}

SystemError LocalStream::IdentifyPeer(PeerIdentity& peer) const {
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (getsockopt(mState->socket.native_handle(), SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
        return LastSystemError();
    peer.process = credentials.pid;
    peer.isSameUser = credentials.uid == geteuid();
    return {};
}

void LocalStream::Read(asio::mutable_buffer buffer, ReadHandler handler) {
    mState->socket.async_read_some(
        buffer, [self = mState, handler = std::move(handler)](const asio::error_code& failure, size_t size) {
            handler(failure, size);
        });
}

void LocalStream::Write(std::string bytes, WriteHandler handler) {
    State& state = *mState;
    if (!state.outputs.empty()) {
        state.outputs.push_back({std::move(bytes), std::move(handler)});
        return;
    }
    asio::error_code failure;
    const size_t written = state.socket.write_some(asio::buffer(bytes), failure);
    if (written == bytes.size() || (failure && !IsNotTakenNow(failure))) {
        handler(failure);
        return;
    }
    state.written = written;
    state.outputs.push_back({std::move(bytes), std::move(handler)});
    state.WriteNext();
}

bool LocalStream::HasInput() const {
    return EventsNow(mState->socket.native_handle(), POLLIN) != 0;
}

bool LocalStream::IsOtherEndClosed() const {
    return (EventsNow(mState->socket.native_handle(), POLLRDHUP) & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

void LocalStream::Cancel() {
    asio::error_code ignored;
    mState->socket.cancel(ignored);
}

bool LocalStream::IsOpen() const {
    return mState->socket.is_open();
}

void LocalStream::Close() {
    asio::error_code ignored;
    // A process that was forked meanwhile may hold the socket as well; the other end is to know all the same.
    mState->socket.shutdown(Protocol::socket::shutdown_both, ignored);
    mState->socket.close(ignored);
}

struct LocalAcceptor::State : std::enable_shared_from_this<State> {
    State(asio::io_context& connectionLoop, Handler connectionHandler)
        : loop(connectionLoop),
          acceptor(connectionLoop),
          retry(connectionLoop),
          handler(std::move(connectionHandler)) {}

    void Accept() {
        acceptor.async_wait(Protocol::acceptor::wait_read,
                            [self = shared_from_this()](const asio::error_code& cancelled) {
                                if (!cancelled && self->acceptor.is_open())
                                    self->TakeNext();
                            });
    }
    void TakeNext() {
        Protocol::socket socket(loop);
        const asio::error_code failure = Take(socket);
        if (failure && !IsNotTakenNow(failure)) {
            AcceptLater();
            return;
        }
        Accept();  // first: handing it over may fail for lack of memory
        if (!failure)
            Hand(std::move(socket));
    }
    asio::error_code Take(Protocol::socket& socket) {
        return Assign(
            Descriptor(accept4(acceptor.native_handle(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK)),
            socket);
    }
    /// No descriptor is free, say: trying again at once would only keep the processor busy.
    void AcceptLater() {
        retry.expires_after(kAcceptRetryDelay);
        retry.async_wait([self = shared_from_this()](const asio::error_code& cancelled) {
            if (!cancelled && self->acceptor.is_open())
                self->Accept();
        });
    }
    void Hand(Protocol::socket socket) {
        LocalStream stream(loop);
        stream.mState = std::make_shared<LocalStream::State>(std::move(socket));
        handler(std::move(stream));
    }

    asio::io_context& loop;
    Protocol::acceptor acceptor;
    asio::steady_timer retry;
    Handler handler;
    SocketPlace place;
};

LocalAcceptor::LocalAcceptor(asio::io_context& loop, Handler handler)
    : mState(std::make_shared<State>(loop, std::move(handler))) {}

LocalAcceptor::~LocalAcceptor() {
    Close();
}

SystemError LocalAcceptor::Listen(const std::string& address) {
    if (address.size() > kPathLimit)
        return SystemError{ENAMETOOLONG};
    SocketPlace place;
    if (const SystemError error = place.Open(address))
        return error;
    if (const SystemError error = place.Clear())
        return error;
    std::error_code failure;
    Protocol::acceptor& acceptor = mState->acceptor;
    failure = OpenSocket(acceptor);
    if (!failure)
        failure.assign(place.Bind(acceptor.native_handle()).code, std::system_category());
    if (!failure)
        acceptor.non_blocking(true, failure);
    if (!failure)
        acceptor.listen(asio::socket_base::max_listen_connections, failure);
    mState->place = std::move(place);
    if (failure) {
        Close();
        return SystemError{failure.value()};
    }
    mState->Accept();
    return {};
}

bool LocalAcceptor::IsInPlace() const {
    return mState->acceptor.is_open() && mState->place.IsOnItsWay();
}

void LocalAcceptor::AdmitWaiting() {
    asio::error_code failure;
    while (!failure && mState->acceptor.is_open()) {
        Protocol::socket socket(mState->loop);
        failure = mState->Take(socket);
        if (!failure)
            mState->Hand(std::move(socket));
    }
}

void LocalAcceptor::Close() {
    asio::error_code ignored;
    mState->place.Leave();  // while the socket is open: then nobody else's is taken for it
    mState->acceptor.close(ignored);
    mState->retry.cancel();
}

std::vector<std::string> LocalStreamAddresses(const std::string& maker, const std::string& program,
                                              const std::string& dataFolder) {
    const std::string hash = TextHash(dataFolder);
    std::vector<std::string> addresses;
    const auto add = [&addresses](const std::string& path) {
        if (path.size() <= kPathLimit)
            addresses.push_back(path);
    };
    Folders& folders = Current<Folders>();
    if (const std::string runtime = folders.PathOf(KnownFolder::kRuntime); !runtime.empty())
        add(runtime + "/" + maker + "/" + program + "-" + hash);
    add(dataFolder + "/agent.socket");
    for (const std::string& temporary : {folders.PathOf(KnownFolder::kTemporary), std::string("/tmp")})
        add(temporary + "/" + maker + "-" + hash + "/socket");
    return addresses;
}

}  // namespace platform
