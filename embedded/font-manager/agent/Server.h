// The agent's socket and its clients.
#pragma once

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <memory>
#include <set>
#include <string>

#include "agent/Commands.h"
#include "agent/Session.h"
#include "common/LogFile.h"

namespace pellwick {

/// One thread serves all clients in turn.
class Server : private Audience, private SessionOwner {
public:
    Server(FontManager& manager, LogFile& log);
    ~Server() override;

    /// Opens the socket at the first address that can be had and writes the address down. False when there
    /// is none.
    bool Listen();
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
    void OnClientTooSlow(const Client& client) override;
    void OnClosed(const std::shared_ptr<Session>& session) override;

    bool ListenAt(const std::string& path);
    void Accept();
    /// Those who connect during a long command are to see signs of life as well.
    void AdmitWaiting();
    void Admit(Session::Socket socket);
    void SweepLeasesIn(std::chrono::milliseconds delay);
    void SweepLeases();
    void Stop();

    FontManager& mManager;
    LogFile& mLog;
    const CommandTable mCommands;
    asio::io_context mLoop;
    asio::local::stream_protocol::acceptor mAcceptor;
    asio::signal_set mSignals;
    asio::steady_timer mAcceptTimer;
    asio::steady_timer mSweepTimer;
    asio::steady_timer mGoodbyeTimer;
    std::set<std::shared_ptr<Session>> mSessions;
    std::string mAddress;
    std::chrono::milliseconds mSweepDelay{0};  ///< 0 while there is nothing to look after
    std::chrono::steady_clock::time_point mLastSignOfLife;
    bool mStopsAfterCommand = false;
    bool mIsStopping = false;
};

}  // namespace pellwick
