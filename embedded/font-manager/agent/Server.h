// The agent's address and its clients.
#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "agent/AgentAddress.h"
#include "agent/ClientSession.h"
#include "agent/Requests.h"
#include "common/LogFile.h"
#include "platform/EndRequests.h"
#include "platform/FileLock.h"
#include "platform/FontWatch.h"
#include "platform/LocalStream.h"
#include "workers/Lane.h"

namespace pellwick {

/// One thread serves all clients in turn. What takes long is left to lanes meanwhile.
class Server : private Audience, private SessionOwner {
public:
    /// `lock`: what makes this process the agent. The server stops when it is lost.
    Server(FontManager& manager, LogFile& log, const platform::FileLock& lock);
    ~Server() override;

    /// Listens at the first address that can be had and writes the address down. False when that cannot be
    /// done; `problem` then tells people.
    bool Listen(std::string& problem) { return mAddress.Listen(problem); }
    const std::string& Address() const { return mAddress.Text(); }
    /// Adds files of the vault that no record knows to the library, while serving.
    void TakeBackFonts(std::vector<std::string> paths);
    /// Serves until the agent is told to stop.
    void Run();

private:
    using Deadline = std::chrono::steady_clock::time_point;

    // Audience
    void Announce(int32_t type, const Json& data) override;
    void KeepAlive() override;
    void Note(const std::string& text) override;
    void RequestStop() override { mStopsAfterCommand = true; }
    // SessionOwner
    void OnRequest(const std::shared_ptr<ClientSession>& session, const Json& request) override;
    void OnAnswerLost(const Client& client) override;
    void OnClientTooSlow(const Client& client) override;
    void OnClosed(const std::shared_ptr<ClientSession>& session) override;

    void WatchGround();
    void CheckGround();
    void FollowOtherSessions();
    void Admit(const std::shared_ptr<platform::LocalStream>& stream, Deadline deadline);
    void AdmitLater(const std::shared_ptr<platform::LocalStream>& stream, Deadline deadline);
    void Open(platform::LocalStream stream, const HostProcess& process);
    /// A command of which a lane does a part. One of the agent's own has no session.
    struct PendingCommand {
        std::string method;
        long long request = 0;
        std::shared_ptr<ClientSession> session{};
    };

    Client& ClientOf(const PendingCommand& command) {
        return command.session ? command.session->Peer() : mOwnClient;
    }
    /// `step` does the next part of the command. The answer goes out, unless it defers.
    template <class Step>
    void Proceed(PendingCommand command, const Step& step);
    void Defer(PendingCommand command, Deferral deferral);
    Lane& LaneOf(Deferral::LaneName name);
    /// Continues the pending command of that number.
    void GoOnWith(uint64_t number, const Continuation& rest);
    void Finish(const PendingCommand& command, const CommandAnswer& answer);
    /// Tells those who wait for a lane that the agent is alive.
    void KeepPendingAlive();
    /// Carries out a command of the agent's own.
    void RunOwn(const char* method, const Continuation& command);
    void CheckVaultLater();
    /// Adds new names to the index, bit by bit, so that a document finds little left to do.
    void IndexNames();
    void ReadSystemFonts();
    /// Once the system has nothing more to report for a while.
    void ReadSystemFontsLater();
    bool GoOn();
    void NoteLackOfMemory() noexcept;
    /// False when that could not be written.
    bool UndoRequests(const HostProcess& host, long long first, long long last);
    void UndoWhatWasNotTaken(Client& client);
    void UndoLater();
    void SweepLeasesIn(std::chrono::milliseconds delay);
    void SweepLeases();
    void Stop();

    FontManager& mManager;
    LogFile& mLog;
    const platform::FileLock& mLock;
    asio::io_context mLoop;
    std::optional<platform::EndRequests> mEndRequests;
    asio::steady_timer mGroundTimer;
    asio::steady_timer mSweepTimer;
    asio::steady_timer mUndoTimer;
    asio::steady_timer mGoodbyeTimer;
    std::set<std::shared_ptr<ClientSession>> mSessions;
    std::map<uint64_t, PendingCommand> mPending;  ///< by a number of their own
    uint64_t mLastPending = 0;
    Client mOwnClient;
    asio::steady_timer mPendingTimer;
    asio::steady_timer mVaultTimer;
    asio::steady_timer mSystemFontsTimer;
    asio::steady_timer mIndexTimer;
    std::optional<platform::FontWatch> mFontWatch;
    std::chrono::milliseconds mSweepDelay{0};  ///< 0 while there is nothing to look after
    bool mIsBehind = false;                    ///< what other sessions recorded does not hold here yet
    std::string mSweepFailure;                 ///< so that one that lasts leaves one line
    std::chrono::steady_clock::time_point mLastSignOfLife;
    bool mStopsAfterCommand = false;
    bool mIsStopping = false;
    // Their threads post to the loop.
    Lane mFileLane;
    Lane mPreviewLane;
    Lane mSystemFontsLane;
    AgentAddress mAddress;  ///< goes first, so that nobody is sent to an agent that ends
};

}  // namespace pellwick
