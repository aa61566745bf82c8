#include "agent/Server.h"

#include <algorithm>
#include <asio/post.hpp>
#include <exception>
#include <limits>
#include <new>
#include <nlohmann/json.hpp>
#include <utility>

#include "TarnwickPluginInterface.h"
#include "agent/SystemFonts.h"
#include "agent/VaultCommands.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "platform/DynamicLibrary.h"
#include "platform/Memory.h"
#include "platform/Processes.h"

namespace pellwick {
namespace {

/// What a host asks for first over a new connection when it has lost an answer: how the agent is, and the
/// same again, which undoes by itself what it did the first time.
bool MayRepeatActivation(const Json& request) {
    const std::string method = StringMember(request, member::kMethod);
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

Server::Server(FontManager& manager, LogFile& log, const platform::FileLock& lock)
    : mManager(manager),
      mLog(log),
      mLock(lock),
      mLoop(1),
      mGroundTimer(mLoop),
      mSweepTimer(mLoop),
      mUndoTimer(mLoop),
      mGoodbyeTimer(mLoop),
      mPendingTimer(mLoop),
      mVaultTimer(mLoop),
      mSystemFontsTimer(mLoop),
      mIndexTimer(mLoop),
      mFileLane(FontWorkerPath()),
      mPreviewLane(FontWorkerPath()),
      mSystemFontsLane(FontWorkerPath()),
      mAddress(mLoop, manager.locations, log, [this](platform::LocalStream stream) {
          try {
              Admit(std::make_shared<platform::LocalStream>(std::move(stream)),
                    Deadline::clock::now() + kAnswerLimit);
          } catch (const std::bad_alloc&) {  // the next one may find some
              NoteLackOfMemory();
          }
      }) {}

Server::~Server() = default;

void Server::Run() {
    mEndRequests.emplace(mLoop, [this] { Stop(); });
    SweepLeasesIn(kFirstSweepDelay);
    CheckVaultLater();
    IndexNames();
    mFontWatch.emplace(mLoop, [this] { ReadSystemFontsLater(); });
    ReadSystemFonts();
    WatchGround();
    while (!GoOn()) {
    }
}

/// False when it ran out of memory. The client that asked for too much has been dropped; the others are
/// still served.
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
        mLog.WriteLine("out of memory; what was being done is given up");
    } catch (const std::bad_alloc&) {  // not even for that
    }
}

void Server::WatchGround() {
    mGroundTimer.expires_after(kGroundInterval);
    mGroundTimer.async_wait([this](const asio::error_code& failure) {
        if (failure)
            return;
        CheckGround();
    });
}

/// Restores the address when others removed it, or stops when the lock is lost.
void Server::CheckGround() {
    if (mLock.IsInPlace()) {
        mAddress.Check();
        WatchGround();
        FollowOtherSessions();
        return;
    }
    mLog.WriteLine("the agent ends: " + mManager.locations.lockPath +
                   " is gone or another file, so that another agent may serve");
    Stop();
}

/// What the user has agents of other sessions activate, add and remove holds here too.
void Server::FollowOtherSessions() {
    try {
        mIsBehind = mManager.database.HasChangedElsewhere() || mIsBehind;
        if (mIsBehind && mManager.FollowOtherSessions())
            Announce(kPluginCallback_PanelDataChanged, nullptr);
        mIsBehind = false;
    } catch (const DatabaseError& error) {
        Note(std::string("following other sessions: ") + error.what());
    }
}

/// A client whose process cannot be examined is not admitted: nobody could tell when its leases end. Perhaps
/// no descriptor is free just now, so this is tried again for as long as the client waits.
void Server::Admit(const std::shared_ptr<platform::LocalStream>& stream, Deadline deadline) {
    platform::PeerIdentity peer;
    if (stream->IdentifyPeer(peer) || !peer.isSameUser)
        return;
    HostProcess process{peer.process};
    const platform::ProcessState state = platform::LookAtProcess(peer.process, process.startTime);
    if (state == platform::ProcessState::kAlive)
        Open(std::move(*stream), process);
    else if (state == platform::ProcessState::kCannotBeTold && Deadline::clock::now() < deadline)
        AdmitLater(stream, deadline);
}

void Server::AdmitLater(const std::shared_ptr<platform::LocalStream>& stream, Deadline deadline) {
    const auto timer = std::make_shared<asio::steady_timer>(mLoop, kAdmissionPause);
    timer->async_wait([this, timer, stream, deadline](const asio::error_code&) {
        if (!mIsStopping && !stream->IsOtherEndClosed())
            Admit(stream, deadline);
    });
}

void Server::Open(platform::LocalStream stream, const HostProcess& process) {
    SessionOwner& owner = *this;
    const auto session = std::make_shared<ClientSession>(mLoop, std::move(stream), owner, process);
    mSessions.insert(session);
    session->Start();
}

void Server::OnRequest(const std::shared_ptr<ClientSession>& session, const Json& request) {
    mLastSignOfLife = std::chrono::steady_clock::now();
    if (!MayRepeatActivation(request))
        UndoWhatWasNotTaken(session->Peer());
    Proceed({StringMember(request, member::kMethod), IntegerMember(request, member::kID), session},
            [&](CommandContext& context) { return BeginRequest(context, request); });
    if (mSweepDelay.count() == 0)
        SweepLeasesIn(kLongestSweepDelay);
}

template <class Step>
void Server::Proceed(PendingCommand command, const Step& step) {
    CommandContext context{mManager, ClientOf(command), *this, command.request, FindMethod(command.method)};
    const std::optional<CommandAnswer> answer = step(context);
    if (answer)
        Finish(command, *answer);
    else
        Defer(std::move(command), std::move(*context.deferral));
}

void Server::Finish(const PendingCommand& command, const CommandAnswer& answer) {
    Client& client = ClientOf(command);
    if (answer.code != CoreErrorCodes::kSuccess && command.request != 0 &&
        client.provisionalRequest == command.request) {
        OnAnswerLost(client);  // the client is told of a failure instead
        client.provisionalRequest = 0;
    }
    if (client.lastTaken && command.method == method::kHello)
        UndoLater();
    if (answer.code != CoreErrorCodes::kSuccess)
        Note(command.method + ": " + ErrorCodeToName(answer.code) + ": " + answer.problem);
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
    LaneOf(deferral.lane).Post([this, number, work = std::move(deferral.work)](FontWorker& worker) {
        Continuation rest;
        try {
            rest = work(worker);
        } catch (...) {
            rest = [problem = std::current_exception()](CommandContext&) -> Json {
                std::rethrow_exception(problem);
            };
        }
        asio::post(mLoop, [this, number, rest = std::move(rest)] { GoOnWith(number, rest); });
    });
}

Lane& Server::LaneOf(Deferral::LaneName name) {
    switch (name) {
        case Deferral::LaneName::kFiles:
            return mFileLane;
        case Deferral::LaneName::kPreviews:
            return mPreviewLane;
        case Deferral::LaneName::kSystemFonts:
            return mSystemFontsLane;
    }
    return mFileLane;
}

void Server::GoOnWith(uint64_t number, const Continuation& rest) {
    const PendingCommand command = mPending.extract(number).mapped();
    try {
        Proceed(command, [&](CommandContext& context) { return ContinueRequest(context, rest); });
    } catch (const std::bad_alloc&) {
        if (command.session)
            command.session->Close();
        throw;
    }
}

void Server::KeepPendingAlive() {
    mPendingTimer.expires_after(kKeepAliveInterval);
    mPendingTimer.async_wait([this](const asio::error_code& failure) {
        if (failure || mPending.empty())
            return;
        const std::string frame = FrameOf({{member::kWorking, true}});
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

void Server::TakeBackFonts(std::vector<std::string> paths) {
    const auto left = std::make_shared<std::vector<std::string>>(std::move(paths));
    RunOwn("taking fonts back", [left](CommandContext& context) { return TakeBack(context, left); });
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

void Server::IndexNames() {
    mIndexTimer.expires_after(kIndexPause);
    mIndexTimer.async_wait([this](const asio::error_code& failure) {
        if (failure)
            return;
        bool isMore = false;
        try {
            isMore = mManager.replacements.IndexSome();
        } catch (const DatabaseError&) {  // whoever needs it is told
        }
        if (isMore)
            IndexNames();
    });
}

void Server::ReadSystemFonts() {
    RunOwn("reading the system's fonts", [this](CommandContext& context) {
        return pellwick::ReadSystemFonts(context, [this](const std::vector<std::string>& folders) {
            if (!mIsStopping && mFontWatch->Watch(folders))
                ReadSystemFontsLater();
        });
    });
}

void Server::ReadSystemFontsLater() {
    mSystemFontsTimer.expires_after(kFontChangePause);
    mSystemFontsTimer.async_wait([this](const asio::error_code& failure) {
        if (failure)
            return;
        if (mManager.systemFontReading.expired())
            ReadSystemFonts();
        else
            ReadSystemFontsLater();
    });
}

void Server::Note(const std::string& text) {
    mLog.WriteLine(text);
}

void Server::Announce(int32_t type, const Json& data) {
    if (type == kPluginCallback_PanelDataChanged && !mIsStopping)
        IndexNames();  // fonts may have come
    const std::string frame = FrameOf({{member::kNotification, type}, {member::kData, data}});
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
    mAddress.AdmitWaiting();  // they are to see signs of life as well
    const std::string frame = FrameOf({{member::kWorking, true}});
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
        mLog.WriteLine(std::string("undoing an activation: ") + error.what());
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
    mLog.WriteLine("dropped a client that does not read: process " + std::to_string(client.process.process));
}

void Server::OnClosed(const std::shared_ptr<ClientSession>& session) {
    mSessions.erase(session);
    if (!mIsStopping)
        SweepLeasesIn(kFirstSweepDelay);
    else if (mSessions.empty())
        mLoop.stop();
}

/// At the latest then: clients that connect and leave without a pause do not postpone it.
void Server::SweepLeasesIn(std::chrono::milliseconds delay) {
    const auto time = std::chrono::steady_clock::now() + delay;
    const bool isDueBefore = mSweepDelay.count() != 0 && mSweepTimer.expiry() <= time;
    mSweepDelay = delay;
    if (isDueBefore)
        return;
    mSweepTimer.expires_at(time);
    mSweepTimer.async_wait([this](const asio::error_code& failure) {
        if (!failure)
            SweepLeases();
    });
}

void Server::SweepLeases() {
    const auto delay = std::exchange(mSweepDelay, std::chrono::milliseconds(0));
    bool isAnyLeft = true;
    try {
        AnnounceChanges(*this, mManager.EndLeasesOfDeadProcesses());
        if (mManager.NeedsRepair())
            mManager.RepairActiveFonts();
        isAnyLeft = mManager.NeedsRepair() || mManager.CountHosts() != 0;
        mSweepFailure.clear();
    } catch (const DatabaseError& error) {
        if (mSweepFailure != error.what())
            mLog.WriteLine(std::string("ending leases: ") + error.what());
        mSweepFailure = error.what();
    }
    if (isAnyLeft)
        SweepLeasesIn(std::min(delay * 2, kLongestSweepDelay));
}

void Server::Stop() {
    if (mIsStopping)
        return;
    mIsStopping = true;
    mAddress.Close();
    mGroundTimer.cancel();
    mSweepTimer.cancel();
    mUndoTimer.cancel();
    mPendingTimer.cancel();
    mVaultTimer.cancel();
    mSystemFontsTimer.cancel();
    mIndexTimer.cancel();
    mFontWatch.reset();
    const std::string goodbye = FrameOf({{member::kGoodbye, true}});
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
