#include "interface/Library.h"

#include <atomic>
#include <nlohmann/json.hpp>

#include "common/Limits.h"

namespace pellwick {
namespace {

// Lives to process end: hosts call in while their own static objects are being destroyed.
std::atomic<Library*> theLibrary{nullptr};

}  // namespace

Library& Library::Get() {
    Library* library = theLibrary.load(std::memory_order_acquire);
    const platform::ProcessId process = platform::CurrentProcessId();
    while (library == nullptr || library->mProcess != process) {
        // The lock of a forked library may never be let go; its number is read without it, while nobody else
        // is there to change it.
        auto* created = new Library(process, library != nullptr ? library->mGeneration + 1 : 1);
        if (theLibrary.compare_exchange_strong(library, created, std::memory_order_acq_rel))
            return *created;
        delete created;
    }
    return *library;
}

PluginFacadeRef Library::Facade() {
    bool wasDropped = false;
    uintptr_t generation = 0;
    {
        const std::lock_guard guard(mConnectionLock);
        wasDropped = std::exchange(mWasDropped, false);
        generation = mGeneration;
    }
    if (wasDropped)
        mListener.Reconnect();
    return reinterpret_cast<PluginFacadeRef>(generation);
}

void Library::DropFacade() {
    const std::lock_guard guard(mConnectionLock);
    ++mGeneration;
    mWasDropped = true;
    mConnection.reset();
}

ErrorCode Library::Call(PluginFacadeRef facade, const char* method, const Json& arguments, Json& result) {
    const std::lock_guard guard(mConnectionLock);
    const ErrorCode code = CheckGeneration(facade);
    if (code != CoreErrorCodes::kSuccess)
        return code;
    if (!mConnection)
        mConnection = std::make_unique<AgentConnection>(kAnswerLimit);
    return mConnection->Call(method, arguments, result);
}

ErrorCode Library::CheckFacade(PluginFacadeRef facade) {
    const std::lock_guard guard(mConnectionLock);
    return CheckGeneration(facade);
}

ErrorCode Library::CheckGeneration(PluginFacadeRef facade) const {
    if (facade == nullptr)
        return GAgentIF::kUninitialized;
    return reinterpret_cast<uintptr_t>(facade) == mGeneration ? CoreErrorCodes::kSuccess
                                                              : GAgentIF::kAgentIFDestroyed;
}

void Library::CleanUp() {
    mListener.RemoveAll();
    DropFacade();
}

}  // namespace pellwick
