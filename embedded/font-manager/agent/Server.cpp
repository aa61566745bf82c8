#include "agent/Server.h"

#include <algorithm>
#include <asio/post.hpp>
#include <exception>
#include <limits>
#include <nlohmann/json.hpp>

#include "common/Limits.h"
#include "common/Protocol.h"
#include "platform/DynamicLibrary.h"
#include "platform/Files.h"
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

/// It stands beside the agent.
std::string FontWorkerPath() {
    const std::string agent = platform::Current<platform::Processes>().CurrentExecutablePath();
    return platform::FolderPart(agent) + platform::ProgramFileName(kFontWorkerProgram);
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
      mAcceptor(mLoop, [this](platform::LocalStream stream) { Admit(std::move(stream)); }),
      mSweepTimer(mLoop),
      mUndoTimer(mLoop),
      mGoodbyeTimer(mLoop),
      mPendingTimer(mLoop),
      mVaultTimer(mLoop),
      mFileLane(FontWorkerPath()),
      mPreviewLane(FontWorkerPath()) {}

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
    CheckVaultLater();
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

void Server::OnRequest(const std::shared_ptr<Session>& session, const Json& request) {
    mLastSignOfLife = std::chrono::steady_clock::now();
    if (!MayRepeatActivation(request))
        UndoWhatWasNotTaken(session->Peer());
    Proceed({StringMember(request, "method"), IntegerMember(request, "id"), session},
            [&](CommandContext& context) { return BeginRequest(mCommands, context, request); });
    if (mSweepDelay.count() == 0)
        SweepLeasesIn(kLongestSweepDelay);
}

template <class Step>
void Server::Proceed(PendingCommand command, const Step& step) {
    CommandContext context{mManager, ClientOf(command), *this, command.request};
    const std::optional<CommandAnswer> answer = step(context);
    if (answer)
        Finish(command, *answer);
    else
        Defer(std::move(command), std::move(*context.deferral));
}

void Server::Finish(const PendingCommand& command, const CommandAnswer& answer) {
    Client& client = ClientOf(command);
    if (answer.code != CoreErrorCodes::kSuccess && client.provisionalRequest == command.request) {
        OnAnswerLost(client);  // the client is told of a failure instead
        client.provisionalRequest = 0;
    }
    if (client.lastTaken && command.method == method::kHello)
        UndoLater();
    if (answer.code != CoreErrorCodes::kSuccess)
        mLog.Write(command.method + ": " + ErrorCodeToName(answer.code) + ": " + answer.problem + "\n");
    if (mStopsAfterCommand)
        asio::post(mLoop, [this] { Stop(); });
    if (command.session)
        command.session->Answer(answer.frame);
}

void Server::Defer(PendingCommand command, Deferral deferral) {
    if (mPending.empty())
        KeepPendingAlive();
    const uint64_t number = ++mLastPending;
    mPending.emplace(number, std::move(command));
    Lane& lane = deferral.lane == Deferral::LaneName::kFiles ? mFileLane : mPreviewLane;
    lane.Post([this, number, work = std::move(deferral.work)](FontWorker& worker) {
        Continuation rest;
        try {
            rest = work(worker);
        } catch (...) {
            rest = [problem = std::current_exception()](CommandContext&) -> Json {
                std::rethrow_exception(problem);
            };
        }
        asio::post(mLoop, [this, number, rest = std::move(rest)] {
            const auto pending = mPending.extract(number);
            Proceed(pending.mapped(),
                    [&](CommandContext& context) { return ContinueRequest(context, rest); });
        });
    });
}

void Server::KeepPendingAlive() {
    mPendingTimer.expires_after(kKeepAliveInterval);
    mPendingTimer.async_wait([this](const asio::error_code& failure) {
        if (failure || mPending.empty())
            return;
        const std::string frame = FrameOf({{"working", true}});
        for (const auto& [number, command] : mPending) {
            if (command.session)
                command.session->Send(frame);
        }
        KeepPendingAlive();
    });
}

void Server::RunOwn(const char* method, const Continuation& command) {
    Proceed({method}, [&](CommandContext& context) { return ContinueRequest(context, command); });
}

void Server::TakeBackFonts(const std::vector<std::string>& paths) {
    if (!paths.empty())
        RunOwn("taking fonts back", [&](CommandContext& context) { return TakeBack(context, paths); });
}

void Server::CheckVaultLater() {
    mVaultTimer.expires_after(kVaultCheckInterval);
    mVaultTimer.async_wait([this](const asio::error_code& failure) {
        if (failure)
            return;
        if (mFileLane.IsIdle())
            RunOwn("checking the vault", CheckNextFile);
        CheckVaultLater();
    });
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
    mPendingTimer.cancel();
    mVaultTimer.cancel();
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
