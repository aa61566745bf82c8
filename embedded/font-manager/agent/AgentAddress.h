// Where clients find the agent.
#pragma once

#include <asio/io_context.hpp>
#include <functional>
#include <memory>
#include <string>

#include "common/Locations.h"
#include "common/LogFile.h"
#include "platform/Files.h"
#include "platform/LocalStream.h"

namespace pellwick {

/// A listener, and the file that says where it listens. Check restores either when others remove it. The
/// destructor removes this agent's own, never a successor's.
class AgentAddress {
public:
    /// `handler` gets each connection.
    AgentAddress(asio::io_context& loop, const Locations& locations, LogFile& log,
                 platform::LocalAcceptor::Handler handler);
    ~AgentAddress();
    AgentAddress(const AgentAddress&) = delete;
    AgentAddress& operator=(const AgentAddress&) = delete;

    /// Listens at the first address that can be had and writes the address down. False when that cannot be
    /// done; `problem` then tells people.
    bool Listen(std::string& problem);
    const std::string& Text() const { return mText; }
    /// Listens again where the listener is gone, and writes the address down again where the file is. A
    /// problem that lasts leaves one line in the log.
    void Check();
    /// Accepts waiting connections now, without the loop.
    void AdmitWaiting() { mAcceptor->AdmitWaiting(); }
    /// Stops accepting connections.
    void Close() { mAcceptor->Close(); }

private:
    bool ListenAt(const std::string& address);
    bool WriteDown(std::string& problem);
    bool IsWrittenDown() const;

    asio::io_context& mLoop;
    const Locations& mLocations;
    LogFile& mLog;
    const platform::LocalAcceptor::Handler mHandler;
    std::unique_ptr<platform::LocalAcceptor> mAcceptor;
    std::string mText;
    platform::FileIdentity mFile;
    std::string mProblem;
};

}  // namespace pellwick
