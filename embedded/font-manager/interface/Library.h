// The library's state for this process: the facade and the connection behind it.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "ErrorCodes.h"
#include "TarnwickPluginInterface.h"
#include "interface/NotificationListener.h"
#include "ipc/AgentConnection.h"
#include "platform/Processes.h"

namespace pellwick {

/// A facade is the number of a connection. A connection that has failed is not made anew until the facade was
/// dropped; a facade that was dropped is told from the one after it. Any thread.
class Library {
public:
    /// The library of this process. A process that was forked from one with a library gets its own: the
    /// connection and the locks of the other belong to threads that do not exist here.
    static Library& Get();

    PluginFacadeRef Facade();
    void DropFacade();

    /// Calls the agent. GAgentIF::kUninitialized for a null facade, GAgentIF::kAgentIFDestroyed for one that
    /// was dropped; otherwise as AgentConnection::Call.
    [[nodiscard]] ErrorCode Call(PluginFacadeRef facade, const char* method, const Json& arguments,
                                 Json& result);
    [[nodiscard]] ErrorCode CheckFacade(PluginFacadeRef facade);

    NotificationListener& Listener() { return mListener; }
    /// Lets go of the connection and stops the listener.
    void CleanUp();

private:
    Library(platform::ProcessId process, uintptr_t generation) : mProcess(process), mGeneration(generation) {}

    ErrorCode CheckGeneration(PluginFacadeRef facade) const;

    const platform::ProcessId mProcess;
    std::mutex mConnectionLock;
    uintptr_t mGeneration;
    bool mWasDropped = false;  ///< since the facade was last fetched
    std::unique_ptr<AgentConnection> mConnection;
    NotificationListener mListener;
};

}  // namespace pellwick
