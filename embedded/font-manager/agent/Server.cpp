#include "agent/Server.h"

#include <algorithm>
#include <asio/post.hpp>
#include <csignal>
#include <nlohmann/json.hpp>
#include <vector>

#include "common/Limits.h"
#include "platform/Files.h"
#include "platform/LocalSockets.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"

namespace pellwick {
namespace {

// A host whose connection ends is about to end itself, or has only let go of the connection. So it is looked
// at soon after, then ever less often.
constexpr std::chrono::milliseconds kAcceptRetryDelay{100};
constexpr std::chrono::milliseconds kFirstSweepDelay{20};
constexpr std::chrono::milliseconds kLongestSweepDelay{5000};

std::string FrameOf(const Json& message) {
    return EncodeMessage(message).value_or(std::string());
}

}  // namespace

Server::Server(FontManager& manager, LogFile& log)
    : mManager(manager),
      mLog(log),
      mCommands(MakeCommandTable()),
      mLoop(1),
      mAcceptor(mLoop),
      mSignals(mLoop),
      mAcceptTimer(mLoop),
      mSweepTimer(mLoop),
      mGoodbyeTimer(mLoop) {}

Server::~Server() {
    std::error_code ignored;
    if (!mAddress.empty()) {
        std::filesystem::remove(platform::Utf8Path(mManager.locations.addressPath), ignored);
        std::filesystem::remove(platform::Utf8Path(mAddress), ignored);
        // Refused where there is more in it than our socket.
        std::filesystem::remove(platform::Utf8Path(mAddress).parent_path(), ignored);
    }
}

bool Server::Listen() {
    const std::vector<std::string> paths = mManager.locations.SocketPaths();
    const auto path =
        std::find_if(paths.begin(), paths.end(), [this](const auto& each) { return ListenAt(each); });
    if (path == paths.end())
        return false;
    mAddress = *path;
    return !platform::WriteWholeFile(mManager.locations.addressPath, mAddress);
}

bool Server::ListenAt(const std::string& path) {
    if (platform::MakePrivateFolder(platform::Utf8Text(platform::Utf8Path(path).parent_path())))
        return false;
    std::error_code failure;
    // Whoever holds the agent's lock owns the address: what is there was left behind.
    std::filesystem::remove(platform::Utf8Path(path), failure);
    mAcceptor.open(asio::local::stream_protocol(), failure);
    if (!failure)
        mAcceptor.bind(asio::local::stream_protocol::endpoint(path), failure);
    if (!failure && platform::MakeFilePrivate(path))
        failure = std::make_error_code(std::errc::permission_denied);
    if (!failure)
        mAcceptor.listen(asio::socket_base::max_listen_connections, failure);
    if (failure) {
        mLog.Write("cannot listen at " + path + ": " + failure.message() + "\n");
        mAcceptor.close(failure);
        return false;
    }
    return true;
}

void Server::Run() {
    for (const int signal : {SIGINT, SIGTERM})
        mSignals.add(signal);
    mSignals.async_wait([this](const asio::error_code& failure, int) {
        if (!failure)
            Stop();
    });
    SweepLeasesIn(kFirstSweepDelay);
    Accept();
    mLoop.run();
}

void Server::Accept() {
    mAcceptor.async_accept([this](const asio::error_code& failure, Session::Socket socket) {
        if (!mAcceptor.is_open())
            return;
        if (!failure) {
            Admit(std::move(socket));
            Accept();
            return;
        }
        // No descriptor is free, say: trying again at once would only keep the processor busy.
        mAcceptTimer.expires_after(kAcceptRetryDelay);
        mAcceptTimer.async_wait([this](const asio::error_code& cancelled) {
            if (!cancelled && mAcceptor.is_open())
                Accept();
        });
    });
}

void Server::AdmitWaiting() {
    asio::error_code failure;
    mAcceptor.non_blocking(true, failure);
    while (!failure && mAcceptor.is_open()) {
        Session::Socket socket(mLoop);
        mAcceptor.accept(socket, failure);
        if (!failure)
            Admit(std::move(socket));
    }
}

void Server::Admit(Session::Socket socket) {
    platform::PeerIdentity peer;
    if (platform::IdentifyPeer(socket.native_handle(), peer) || !peer.isSameUser)
        return;
    const HostProcess process{peer.process, platform::ProcessStartTime(peer.process)};
    if (process.startTime == 0)  // gone already: nobody could tell when its leases end
        return;
    SessionOwner& owner = *this;
    const auto session = std::make_shared<Session>(std::move(socket), owner, process);
    mSessions.insert(session);
    session->Start();
}

std::string Server::Answer(Client& client, const Json& request) {
    mLastSignOfLife = std::chrono::steady_clock::now();
    CommandContext context{mManager, client, *this};
    const CommandAnswer answer = AnswerRequest(mCommands, context, request);
    if (answer.code != CoreErrorCodes::kSuccess)
        mLog.Write(StringMember(request, "method") + ": " + ErrorCodeToName(answer.code) + "\n");
    if (mStopsAfterCommand)
        asio::post(mLoop, [this] { Stop(); });
    if (mSweepDelay.count() == 0)
        SweepLeasesIn(kLongestSweepDelay);
    return answer.frame;
}

void Server::Announce(int32_t type, const Json& data) {
    const std::string frame = FrameOf({{"notification", type}, {"data", data}});
    const auto sessions = mSessions;  // one that is closed for not reading leaves the set
    for (const auto& session : sessions) {
        if (session->Peer().isSubscribed)
            session->Send(frame);
    }
}

void Server::KeepAlive() {
    const auto now = std::chrono::steady_clock::now();
    if (now - mLastSignOfLife < kKeepAliveInterval)
        return;
    mLastSignOfLife = now;
    AdmitWaiting();
    const std::string frame = FrameOf({{"working", true}});
    const auto sessions = mSessions;
    for (const auto& session : sessions)
        session->Send(frame);
}

void Server::OnClientTooSlow(const Client& client) {
    mLog.Write("dropped a client that does not read: process " + std::to_string(client.process.process) +
               "\n");
}

void Server::OnClosed(const std::shared_ptr<Session>& session) {
    mSessions.erase(session);
    if (!mIsStopping)
        SweepLeasesIn(kFirstSweepDelay);
    else if (mSessions.empty())
        mLoop.stop();
}

void Server::SweepLeasesIn(std::chrono::milliseconds delay) {
    mSweepDelay = delay;
    mSweepTimer.expires_after(delay);
    mSweepTimer.async_wait([this](const asio::error_code& failure) {
        if (!failure)
            SweepLeases();
    });
}

void Server::SweepLeases() {
    bool isAnyLeft = true;
    try {
        AnnounceChanges(*this, mManager.EndLeasesOfDeadProcesses());
        isAnyLeft = !mManager.activations.Hosts().empty();
    } catch (const DatabaseError& error) {
        mLog.Write(std::string("ending leases: ") + error.what() + "\n");
    }
    if (isAnyLeft)
        SweepLeasesIn(std::min(mSweepDelay * 2, kLongestSweepDelay));
    else
        mSweepDelay = std::chrono::milliseconds(0);
}

void Server::Stop() {
    if (mIsStopping)
        return;
    mIsStopping = true;
    asio::error_code ignored;
    mAcceptor.close(ignored);
    mSweepTimer.cancel();
    mSignals.cancel(ignored);
    const std::string goodbye = FrameOf({{"goodbye", true}});
    const auto sessions = mSessions;
    for (const auto& session : sessions)
        session->SendLast(goodbye);
    if (mSessions.empty()) {
        mLoop.stop();
        return;
    }
    mGoodbyeTimer.expires_after(kGoodbyeLimit);
    mGoodbyeTimer.async_wait([this](const asio::error_code&) { mLoop.stop(); });
}

}  // namespace pellwick
