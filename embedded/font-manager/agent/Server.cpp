#include "agent/Server.h"

#include <algorithm>
#include <asio/post.hpp>
#include <nlohmann/json.hpp>

#include "common/Limits.h"
#include "platform/Files.h"
#include "platform/Processes.h"

namespace pellwick {
namespace {

// A host whose connection ends is about to end itself, or has only let go of the connection. So it is looked
// at soon after, then ever less often.
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
      mAcceptor(mLoop, [this](platform::LocalStream stream) { Admit(std::move(stream)); }),
      mSweepTimer(mLoop),
      mGoodbyeTimer(mLoop) {}

Server::~Server() {
    if (!mAddress.empty())
        platform::RemoveFile(mManager.locations.addressPath);
}

bool Server::Listen(std::string& problem) {
    for (const std::string& address :
         platform::LocalStreamAddresses("Vantorix", "Pellwick", mManager.locations.dataFolder)) {
        const platform::SystemError error = mAcceptor.Listen(address);
        if (error) {
            mLog.Write("cannot listen at " + address + ": " + platform::SystemErrorText(error) + "\n");
            continue;
        }
        mAddress = address;
        const std::string& path = mManager.locations.addressPath;
        const platform::SystemError failure = platform::WriteWholeFile(path, mAddress);
        if (failure)
            problem = platform::WriteFailureText(path, failure);
        return !failure;
    }
    problem = "there is no address where the agent can listen; Pellwick.log in " +
              mManager.locations.logFolder + " says why";
    return false;
}

void Server::Run() {
    mEndRequests.emplace(mLoop, [this] { Stop(); });
    SweepLeasesIn(kFirstSweepDelay);
    mLoop.run();
}

void Server::Admit(platform::LocalStream stream) {
    platform::PeerIdentity peer;
    if (stream.IdentifyPeer(peer) || !peer.isSameUser)
        return;
    const HostProcess process{peer.process, platform::ProcessStartTime(peer.process)};
    if (process.startTime == 0)  // gone already: nobody could tell when its leases end
        return;
    SessionOwner& owner = *this;
    const auto session = std::make_shared<Session>(mLoop, std::move(stream), owner, process);
    mSessions.insert(session);
    session->Start();
}

std::string Server::Answer(Client& client, const Json& request) {
    mLastSignOfLife = std::chrono::steady_clock::now();
    CommandContext context{mManager, client, *this};
    const CommandAnswer answer = AnswerRequest(mCommands, context, request);
    if (answer.code != CoreErrorCodes::kSuccess)
        mLog.Write(StringMember(request, "method") + ": " + ErrorCodeToName(answer.code) + ": " +
                   answer.problem + "\n");
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
    mAcceptor.AdmitWaiting();  // they are to see signs of life as well
    const std::string frame = FrameOf({{"working", true}});
    const auto sessions = mSessions;
    for (const auto& session : sessions)
        session->Send(frame);
}

void Server::OnAnswerLost(const Client& client) {
    const long long request = client.provisionalRequest;
    try {
        AnnounceChanges(*this, mManager.UndoRequests(client.process, request, request));
    } catch (const DatabaseError& error) {
        mLog.Write(std::string("undoing an activation: ") + error.what() + "\n");
    }
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
        if (mManager.NeedsRepair())
            mManager.RepairActiveFonts();
        isAnyLeft = mManager.NeedsRepair() || !mManager.activations.Hosts().empty();
        mSweepFailure.clear();
    } catch (const DatabaseError& error) {
        if (mSweepFailure != error.what())
            mLog.Write(std::string("ending leases: ") + error.what() + "\n");
        mSweepFailure = error.what();
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
    mAcceptor.Close();
    mSweepTimer.cancel();
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
