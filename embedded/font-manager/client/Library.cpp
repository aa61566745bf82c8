#include "client/Library.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <nlohmann/json.hpp>

#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

// Lives to process end: hosts call in while their own static objects are being destroyed.
std::atomic<Library*> theLibrary{nullptr};

/// Notes when its scope ends.
class ScopedEnd {
public:
    explicit ScopedEnd(AgentConnection::Clock::time_point& end) : mEnd(end) {}
    ~ScopedEnd() { mEnd = AgentConnection::Clock::now(); }
    ScopedEnd(const ScopedEnd&) = delete;
    ScopedEnd& operator=(const ScopedEnd&) = delete;

private:
    AgentConnection::Clock::time_point& mEnd;
};

/// Greater than any ID that a library used earlier in this process.
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
    : mProcess(process), mGeneration(generation), mLastID(FirstID()), mLastTaken(mLastID) {}

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
    assert(HoldsOnly(arguments, FindMethod(method)->arguments));
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
    if (begin - mLastEnd > kHostPause) {
        mBeginOfRow = begin;
        if (!mHasWaitedInVain && !mUnanswered)
            mEndOfPatience = {};
    }
    const ScopedEnd end(mLastEnd);
    ErrorCode code = Greet(begin);
    if (code == CoreErrorCodes::kSuccess) {
        mIsStalled = mHasWaitedInVain = false;
        const Request request = NextRequest(method, arguments);
        code = mConnection->Exchange(request, {kAnswerLimit, EndOfPatience(begin)}, result);
        NoteOutcome(request);
    }
    if (mConnection->HasTimedOut()) {
        if (Clock::now() >= mEndOfPatience)
            mEndOfPatience = begin + kCallLimit;
        mIsStalled = mHasWaitedInVain = true;
    }
    return code;
}

void Library::NoteOutcome(const Request& request) {
    if (mConnection->HasFailed()) {
        mUnanswered = Unanswered{request.method, request.arguments, request.id};
        return;
    }
    mLastTaken = request.id;
    // Between a request whose answer was lost and its repetition callers ask how the agent is.
    if (std::string_view(request.method) != method::kGetStatus)
        mUnanswered.reset();
}

ErrorCode Library::Greet(Clock::time_point begin) {
    return mConnection->Greet({{member::kTaken, mLastTaken}},
                              {mIsStalled ? kStalledLimit : kAnswerLimit, EndOfPatience(begin)});
}

Request Library::NextRequest(const char* method, const Json& arguments) {
    const bool repeats = mUnanswered && mUnanswered->method == method && mUnanswered->arguments == arguments;
    return {method, arguments, ++mLastID, repeats ? mUnanswered->id : 0};
}

AgentConnection::Clock::time_point Library::EndOfPatience(Clock::time_point begin) const {
    if (begin < mEndOfPatience)
        return std::max(mEndOfPatience, begin + kStalledLimit);
    return std::max(mBeginOfRow + kCallLimit, begin + kAnswerLimit);
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
