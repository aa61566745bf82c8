#include "agent/Server.h"

#include <algorithm>
#include <asio/post.hpp>
#include <limits>
#include <new>
#include <nlohmann/json.hpp>

#include "common/Limits.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "platform/Memory.h"
#include "platform/Processes.h"

namespace pellwick {
namespace {

// A host whose connection ends is about to end itself, or has only let go of the connection. So it is looked
// at soon after, then ever less often.
constexpr std::chrono::milliseconds kFirstSweepDelay{20};
constexpr std::chrono::milliseconds kLongestSweepDelay{5000};

/// What a host asks for first over a new connection when it has lost an answer: how the agent is, and the
/// same again, which undoes by itself what it did the first time.
bool MayRepeatActivation(const Json& request) {
    const std::string method = StringMember(request, "method");
    return method == method::kHello || method == method::kGetStatus || method == method::kActivateFonts ||
           method == method::kActivateDocumentFonts;
}

std::string FrameOf(const Json& message) {
    return EncodeMessage(message).value_or(std::string());
}

}  // namespace

Server::Server(FontManager& manager, LogFile& log)
    : mManager(manager),
      mLog(log),
      mCommands(MakeCommandTable()),
      mLoop(1),
      mAcceptor(mLoop,
                [this](platform::LocalStream stream) {
                    try {
                        Admit(std::move(stream));
                    } catch (const std::bad_alloc&) {  // the next one may find some
                        NoteLackOfMemory();
                    }
                }),
      mSweepTimer(mLoop),
      mUndoTimer(mLoop),
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
    while (!GoOn()) {
    }
}

/// False when it ran out of memory: whoever asked for too much has been let go of, and the others are served
/// on.
bool Server::GoOn() {
    try {
        mLoop.run();
        return true;
    } catch (const std::bad_alloc&) {
        NoteLackOfMemory();
        return false;
    }
}

void Server::NoteLackOfMemory() noexcept {
    try {
        platform::ReleaseFreeMemory();
        mLog.Write("out of memory; what was being done is given up\n");
    } catch (const std::bad_alloc&) {  // not even for that
    }
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
    if (!MayRepeatActivation(request))
        UndoWhatWasNotTaken(client);
    CommandContext context{mManager, client, *this};
    const CommandAnswer answer = AnswerRequest(mCommands, context, request);
    if (answer.code != CoreErrorCodes::kSuccess && client.provisionalRequest == context.request) {
        OnAnswerLost(client);  // the client is told of a failure instead
        client.provisionalRequest = 0;
    }
    if (client.lastTaken && StringMember(request, "method") == method::kHello)
        UndoLater();
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

/// A client that this agent says goodbye to may take its answer yet, and says so to the next agent.
void Server::OnAnswerLost(const Client& client) {
    if (mIsStopping)
        return;
    // Later: it may be a command at work that finds the client gone.
    asio::post(mLoop, [this, host = client.process, request = client.provisionalRequest] {
        UndoRequests(host, request, request);
    });
}

bool Server::UndoRequests(const HostProcess& host, long long first, long long last) {
    try {
        AnnounceChanges(*this, mManager.UndoRequests(host, first, last));
        return true;
    } catch (const DatabaseError& error) {
        mLog.Write(std::string("undoing an activation: ") + error.what() + "\n");
        return false;
    }
}

void Server::UndoWhatWasNotTaken(Client& client) {
    if (client.lastTaken &&
        UndoRequests(client.process, *client.lastTaken + 1, std::numeric_limits<long long>::max()))
        client.lastTaken.reset();
}

void Server::UndoLater() {
    mUndoTimer.expires_after(kUndoDelay);
    mUndoTimer.async_wait([this](const asio::error_code& failure) {
        if (failure)
            return;
        const auto sessions = mSessions;
        for (const auto& session : sessions)
            UndoWhatWasNotTaken(session->Peer());
    });
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
    mUndoTimer.cancel();
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
