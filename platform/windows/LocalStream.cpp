#include "platform/LocalStream.h"

#include <windows.h>

#include <algorithm>
#include <asio/steady_timer.hpp>
#include <asio/windows/object_handle.hpp>
#include <asio/windows/stream_handle.hpp>
#include <optional>
#include <random>

#include "OwnedHandle.h"
#include "ProcessRights.h"
#include "SecurityAttributes.h"
#include "TextHash.h"
#include "UserIdentity.h"
#include "WideText.h"
#include "platform/System.h"

namespace platform {
namespace {

constexpr char kPipeFolder[] = R"(\\.\pipe\)";
// Enough for the answers to most requests; what is larger waits for its reader in the writer's memory.
constexpr DWORD kPipeBuffer = 65536;
// Clients that can connect while the loop is busy.
constexpr int kPlaces = 16;
constexpr std::chrono::milliseconds kListenRetryDelay{100};
// How long a cancellation may go unnoticed by a client that waits for a place.
constexpr DWORD kPlaceWait = 50;

/// Pipes need no sockets, and a library that a host loads has no business starting them while it is loaded,
/// as the Asio header would have it.
__attribute__((init_priority(101))) const asio::detail::winsock_init<>::manual withoutSockets;

asio::error_code ErrorCodeOf(DWORD error) {
    return {static_cast<int>(error), asio::system_category()};
}

bool IsPipeAddress(const std::string& address) {
    return address.starts_with(kPipeFolder);
}

std::string RandomDigits() {
    std::random_device random;
    return TextHash(std::to_string(random()) + std::to_string(random()) + std::to_string(random()));
}

/// Not by the process: one without an administrator's rights may not ask one that has them, and its identifier may be
/// another's by now.
bool IsServerTrusted(HANDLE pipe) {
    const std::optional<DWORD> integrity = IntegrityOfObject(pipe);
    return IsThisUser(OwnerOfObject(pipe)) && integrity && MayPassForUsers({.integrity = *integrity});
}

/// An end of the pipe that waits for a client.
class Place {
public:
    Place(OwnedHandle pipe, asio::io_context& loop)
        : mPipe(std::move(pipe)), mConnected(loop, CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
        mOperation.hEvent = mConnected.native_handle();
    }
    ~Place() {
        DWORD ignored = 0;
        // The system writes to the operation for as long as it is under way.
        if (mIsWaiting && CancelIoEx(mPipe.Get(), &mOperation))
            GetOverlappedResult(mPipe.Get(), &mOperation, &ignored, TRUE);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    bool Wait() {
        if (ConnectNamedPipe(mPipe.Get(), &mOperation))
            return true;
        const DWORD error = GetLastError();
        mIsWaiting = error == ERROR_IO_PENDING;
        if (error == ERROR_PIPE_CONNECTED)  // by a client that was faster
            SetEvent(mOperation.hEvent);
        return mIsWaiting || error == ERROR_PIPE_CONNECTED;
    }
    bool IsTaken() const { return WaitForSingleObject(mOperation.hEvent, 0) == WAIT_OBJECT_0; }
    asio::windows::object_handle& Connected() { return mConnected; }
    /// The pipe of a place that is taken.
    OwnedHandle Release() {
        mIsWaiting = false;
        return std::move(mPipe);
    }

private:
    OwnedHandle mPipe;
    asio::windows::object_handle mConnected;
    OVERLAPPED mOperation{};
    bool mIsWaiting = false;
};

}  // namespace

struct LocalStream::State {
    enum class End { kClient, kServer };

    State(asio::io_context& loop, End ownEnd) : pipe(loop), end(ownEnd) {}

    asio::windows::stream_handle pipe;
    End end;
};

LocalStream::LocalStream(asio::io_context& loop)
    : mState(std::make_shared<State>(loop, State::End::kClient)) {}
LocalStream::LocalStream(LocalStream&&) noexcept = default;
LocalStream& LocalStream::operator=(LocalStream&&) noexcept = default;
LocalStream::~LocalStream() {
    if (mState)
        Close();
}

asio::error_code LocalStream::Connect(const std::string& address, Deadline deadline,
                                      const std::atomic<bool>& isCancelled) {
    if (!IsPipeAddress(address))
        return ErrorCodeOf(ERROR_BAD_PATHNAME);
    const std::wstring name = ToWide(address);
    for (;;) {
        // The listener may look at who this is and not act in its name.
        constexpr DWORD kFlags = FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
        OwnedHandle pipe(CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                     kFlags, nullptr));
        if (pipe.IsValid()) {
            asio::error_code failure;
            mState->pipe.assign(pipe.Release(), failure);
            return failure;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_PIPE_BUSY)
            return ErrorCodeOf(error);
        if (isCancelled)
            return asio::error::operation_aborted;
        if (std::chrono::steady_clock::now() >= deadline)
            return asio::error::timed_out;
        WaitNamedPipeW(name.c_str(), kPlaceWait);
    }
}

SystemError LocalStream::IdentifyPeer(PeerIdentity& peer) const {
    ULONG id = 0;
    const HANDLE pipe = mState->pipe.native_handle();
    const bool isServer = mState->end == State::End::kServer;
    if (!(isServer ? GetNamedPipeClientProcessId(pipe, &id) : GetNamedPipeServerProcessId(pipe, &id)))
        return LastSystemError();
    peer.process = id;
    peer.isSameUser = isServer ? IsThisUser(UserOfPipeClient(pipe)) : IsServerTrusted(pipe);
    return {};
}

void LocalStream::Read(asio::mutable_buffer buffer, ReadHandler handler) {
    mState->pipe.async_read_some(
        buffer, [self = mState, handler = std::move(handler)](const asio::error_code& failure, size_t size) {
            handler(failure, size);
        });
}

/// The system takes all writes at once, in their order, and carries them out whether or not the loop runs.
void LocalStream::Write(std::string bytes, WriteHandler handler) {
    const auto owned = std::make_shared<const std::string>(std::move(bytes));
    mState->pipe.async_write_some(asio::buffer(*owned), [owned, self = mState, handler = std::move(handler)](
                                                            const asio::error_code& failure, size_t size) {
        handler(failure || size == owned->size() ? failure : asio::error::broken_pipe);
    });
}

bool LocalStream::HasInput() const {
    DWORD available = 0;
    return !PeekNamedPipe(mState->pipe.native_handle(), nullptr, 0, nullptr, &available, nullptr) ||
           available != 0;
}

bool LocalStream::IsOtherEndClosed() const {
    return !PeekNamedPipe(mState->pipe.native_handle(), nullptr, 0, nullptr, nullptr, nullptr);
}

void LocalStream::Cancel() {
    asio::error_code ignored;
    mState->pipe.cancel(ignored);
}

bool LocalStream::IsOpen() const {
    return mState->pipe.is_open();
}

void LocalStream::Close() {
    asio::error_code ignored;
    mState->pipe.close(ignored);
}

struct LocalAcceptor::State : std::enable_shared_from_this<State> {
    State(asio::io_context& connectionLoop, Handler connectionHandler)
        : loop(connectionLoop), retry(connectionLoop), handler(std::move(connectionHandler)) {}

    /// Makes a further end of the pipe, which waits for a client.
    bool AddPlace(DWORD flags) {
        constexpr DWORD kMode = PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS;
        PrivateToUser rights(PrivateToUser::Kind::kPipe);
        if (rights.Attributes() == nullptr)
            return false;
        OwnedHandle pipe(CreateNamedPipeW(name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | flags,
                                          kMode, PIPE_UNLIMITED_INSTANCES, kPipeBuffer, kPipeBuffer, 0,
                                          rights.Attributes()));
        if (!pipe.IsValid())
            return false;
        const auto place = std::make_shared<Place>(std::move(pipe), loop);
        if (!place->Wait())
            return false;
        places.push_back(place);
        place->Connected().async_wait([self = shared_from_this(), place](const asio::error_code& failure) {
            if (!failure && self->isOpen)
                self->Admit(place);
        });
        return true;
    }
    void FillPlaces() {
        while (isOpen && places.size() < kPlaces) {
            if (AddPlace(0))
                continue;
            retry.expires_after(kListenRetryDelay);
            retry.async_wait([self = shared_from_this()](const asio::error_code& cancelled) {
                if (!cancelled)
                    self->FillPlaces();
            });
            return;
        }
    }
    void Admit(const std::shared_ptr<Place>& place) {
        const auto found = std::find(places.begin(), places.end(), place);
        if (found == places.end())  // admitted while the loop was busy
            return;
        places.erase(found);
        LocalStream stream(loop);
        stream.mState->end = LocalStream::State::End::kServer;
        asio::error_code failure;
        stream.mState->pipe.assign(place->Release().Release(), failure);
        FillPlaces();
        if (!failure)
            handler(std::move(stream));
    }

    asio::io_context& loop;
    asio::steady_timer retry;
    Handler handler;
    std::wstring name;
    std::vector<std::shared_ptr<Place>> places;
    bool isOpen = false;
};

LocalAcceptor::LocalAcceptor(asio::io_context& loop, Handler handler)
    : mState(std::make_shared<State>(loop, std::move(handler))) {}

LocalAcceptor::~LocalAcceptor() {
    Close();
}

SystemError LocalAcceptor::Listen(const std::string& address) {
    if (!IsPipeAddress(address))
        return SystemError{ERROR_BAD_PATHNAME};
    mState->name = ToWide(address);
    // A pipe of that name which somebody else made is not ours to wait at.
    if (!mState->AddPlace(FILE_FLAG_FIRST_PIPE_INSTANCE)) {
        const SystemError error = LastSystemError();
        return error ? error : SystemError{ERROR_ACCESS_DENIED};
    }
    mState->isOpen = true;
    mState->FillPlaces();
    return {};
}

bool LocalAcceptor::IsInPlace() const {
    return mState->isOpen;
}

void LocalAcceptor::AdmitWaiting() {
    const auto places = mState->places;
    for (const auto& place : places) {
        if (place->IsTaken())
            mState->Admit(place);
    }
}

void LocalAcceptor::Close() {
    mState->isOpen = false;
    mState->retry.cancel();
    const auto places = std::move(mState->places);
    for (const auto& place : places) {
        asio::error_code ignored;
        place->Connected().cancel(ignored);
    }
}

std::vector<std::string> LocalStreamAddresses(const std::string& maker, const std::string& program,
                                              const std::string& dataFolder) {
    const std::string name = kPipeFolder + maker + "-" + program + "-" + TextHash(dataFolder) + "-" +
                             std::to_string(SessionNumber());
    return {name, name + "-" + RandomDigits()};
}

}  // namespace platform
