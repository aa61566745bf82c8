// The agent's address and its clients.
#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "agent/Commands.h"
#include "agent/Session.h"
#include "common/LogFile.h"
#include "platform/EndRequests.h"
#include "platform/LocalStream.h"

namespace pellwick {

/// One thread serves all clients in turn.
class Server : private Audience, private SessionOwner {
public:
    Server(FontManager& manager, LogFile& log);
    ~Server() override;

    /// Listens at the first address that can be had and writes the address down. False when that cannot be
    /// done; `problem` then tells people.
    bool Listen(std::string& problem);
    const std::string& Address() const { return mAddress; }
    /// Serves until the agent is told to stop.
    void Run();

private:
    // Audience
    void Announce(int32_t type, const Json& data) override;
    void KeepAlive() override;
    void RequestStop() override { mStopsAfterCommand = true; }
    // SessionOwner
    std::string Answer(Client& client, const Json& request) override;
    void OnAnswerLost(const Client& client) override;
    void OnClientTooSlow(const Client& client) override;
    void OnClosed(const std::shared_ptr<Session>& session) override;

    bool GoOn();
    void NoteLackOfMemory() noexcept;
    void Admit(platform::LocalStream stream);
    /// False when that could not be written.
    bool UndoRequests(const HostProcess& host, long long first, long long last);
    void UndoWhatWasNotTaken(Client& client);
    void UndoLater();
    void SweepLeasesIn(std::chrono::milliseconds delay);
    void SweepLeases();
    void Stop();

    FontManager& mManager;
    LogFile& mLog;
    const CommandTable mCommands;
    asio::io_context mLoop;
    platform::LocalAcceptor mAcceptor;
    std::optional<platform::EndRequests> mEndRequests;
    asio::steady_timer mSweepTimer;
    asio::steady_timer mUndoTimer;
    asio::steady_timer mGoodbyeTimer;
    std::set<std::shared_ptr<Session>> mSessions;
    std::string mAddress;
    std::chrono::milliseconds mSweepDelay{0};  ///< 0 while there is nothing to look after
    std::string mSweepFailure;                 ///< so that one that lasts leaves one line
    std::chrono::steady_clock::time_point mLastSignOfLife;
    bool mStopsAfterCommand = false;
    bool mIsStopping = false;
};

}  // namespace pellwick
