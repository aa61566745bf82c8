#include "HostCall.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <thread>

#include "NoDestructor.h"
#include "TraceLog.h"

namespace {

struct Call {
    HostCall::Number number = 0;
    std::thread::id thread{};
    uintptr_t place = 0;  ///< in the thread's stack, which grows towards lower addresses
    int indentation = 0;  ///< of the trace when it began
};

/// Hosts are to call on one thread; those that do not must not break more than themselves. Needs no memory: a call
/// that has none is answered for, too.
class Calls {
public:
    HostCall::Number Begin(uintptr_t place) {
        const std::lock_guard guard(mLock);
        EndIf([&](const Call& call) { return call.place <= place; });
        ++mLast;
        if (mCount < mUnderWay.size())
            mUnderWay[mCount++] = {mLast, std::this_thread::get_id(), place, TraceIndentation()};
        return mLast;
    }
    /// The call and those within it.
    void End(HostCall::Number number) {
        const std::lock_guard guard(mLock);
        EndIf([&](const Call& call) { return call.number >= number; });
    }
    HostCall::Number Innermost() {
        const std::lock_guard guard(mLock);
        for (size_t index = mCount; index-- > 0;) {
            if (IsOurs(mUnderWay[index]))
                return mUnderWay[index].number;
        }
        return 0;
    }
    bool Has(HostCall::Number number) {
        const std::lock_guard guard(mLock);
        return std::any_of(mUnderWay.begin(), mUnderWay.begin() + mCount,
                           [&](const Call& call) { return call.number == number; });
    }

private:
    static bool IsOurs(const Call& call) { return call.thread == std::this_thread::get_id(); }

    /// Of this thread's. The trace is as deep again as when the first of them began.
    template <class Condition>
    void EndIf(const Condition& isOver) {
        const auto end = mUnderWay.begin() + mCount;
        const auto isEnded = [&](const Call& call) { return IsOurs(call) && isOver(call); };
        const auto first = std::find_if(mUnderWay.begin(), end, isEnded);
        if (first == end)
            return;
        SetTraceIndentation(first->indentation);
        mCount = static_cast<size_t>(std::remove_if(first, end, isEnded) - mUnderWay.begin());
    }

    std::mutex mLock;
    std::array<Call, 64> mUnderWay{};  ///< those of a thread from the outermost to the innermost
    size_t mCount = 0;
    HostCall::Number mLast = 0;
};

Calls& AllCalls() {
    static NoDestructor<Calls> calls;
    return *calls;
}

}  // namespace

HostCall::HostCall() : mNumber(AllCalls().Begin(reinterpret_cast<uintptr_t>(__builtin_frame_address(0)))) {}

HostCall::~HostCall() {
    AllCalls().End(mNumber);
}

HostCall::Number HostCall::Innermost() {
    return AllCalls().Innermost();
}

bool HostCall::IsUnderWay(Number call) {
    return call == 0 || AllCalls().Has(call);
}

void HostCall::ComeBackTo(Number call) {
    AllCalls().End(call + 1);
}
