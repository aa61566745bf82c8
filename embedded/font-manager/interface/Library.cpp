#include "interface/Library.h"

#include <algorithm>
#include <atomic>
#include <nlohmann/json.hpp>

#include "common/Limits.h"

namespace pellwick {
namespace {

// Lives to process end: hosts call in while their own static objects are being destroyed.
std::atomic<Library*> theLibrary{nullptr};

/// Greater than what a library that was in this process before can have counted to.
long long FirstID() {
    using std::chrono::microseconds;
    return std::chrono::duration_cast<microseconds>(AgentConnection::Clock::now().time_since_epoch()).count();
}

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

Library::Library(platform::ProcessId process, uintptr_t generation)
    : mProcess(process), mGeneration(generation), mLastID(FirstID()) {}

PluginFacadeRef Library::Facade() {
    const std::lock_guard guard(mConnectionLock);
    if (mConnection && mConnection->IsLost())
        Drop();
    return reinterpret_cast<PluginFacadeRef>(mGeneration);
}

void Library::DropFacade() {
    const std::lock_guard guard(mConnectionLock);
    Drop();
    mIsStalled = false;  // it is another agent from now on
}

void Library::Drop() {
    ++mGeneration;
    mConnection.reset();
    mListener.Hurry();
}

ErrorCode Library::Call(PluginFacadeRef facade, const char* method, const Json& arguments, Json& result) {
    const std::lock_guard guard(mConnectionLock);
    const ErrorCode code = CheckGeneration(facade);
    if (code != CoreErrorCodes::kSuccess)
        return code;
    if (!mConnection)
        mConnection = std::make_unique<AgentConnection>();
    return CallConnected(method, arguments, Clock::now(), result);
}

ErrorCode Library::CallConnected(const char* method, const Json& arguments, Clock::time_point begin,
                                 Json& result) {
    if (mLastAnswer && begin - *mLastAnswer > kHostPause)
        mEndOfPatience = {};
    ErrorCode code = Greet(begin);
    if (code == CoreErrorCodes::kSuccess) {
        mIsStalled = false;
        const Request request = NextRequest(method, arguments);
        code = mConnection->Exchange(request, {kAnswerLimit, EndOfPatience(begin, kCallLimit)}, result);
        if (mConnection->HasFailed()) {
            mUnanswered = Unanswered{method, arguments, request.id};
        } else {
            mUnanswered.reset();
            mLastTaken = request.id;
            mLastAnswer = Clock::now();
        }
    }
    if (mConnection->HasTimedOut()) {
        mLastAnswer.reset();
        if (Clock::now() >= mEndOfPatience)
            mEndOfPatience = begin + kCallLimit;
        mIsStalled = true;
    }
    return code;
}

ErrorCode Library::Greet(Clock::time_point begin) {
    return mConnection->Greet({{"taken", mLastTaken}},
                              EndOfPatience(begin, mIsStalled ? kStalledLimit : kAnswerLimit));
}

Request Library::NextRequest(const char* method, const Json& arguments) {
    if (mUnanswered && mUnanswered->method == method && mUnanswered->arguments == arguments)
        return {method, arguments, mUnanswered->id, true};
    return {method, arguments, ++mLastID, false};
}

AgentConnection::Clock::time_point Library::EndOfPatience(Clock::time_point begin,
                                                          std::chrono::milliseconds limit) const {
    const Clock::time_point end = begin + limit;
    return begin < mEndOfPatience ? std::min(end, std::max(mEndOfPatience, begin + kStalledLimit)) : end;
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
