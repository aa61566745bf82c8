#include "HostCall.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>
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

/// Hosts make one call at a time; those that do not must not break more than themselves. Needs no memory: a call
/// that has none is answered for, too.
class Calls {
public:
    HostCall::Number Begin(uintptr_t place) {
        const std::lock_guard guard(mLock);
        Forget([&](const Call& call) { return call.place <= place; });
        ++mLast;
        if (mCount < mUnderWay.size())
            mUnderWay[mCount++] = {mLast, std::this_thread::get_id(), place, TraceIndentation()};
        return mLast;
    }
    void End(HostCall::Number number) {
        ForgetWithin(number);
        const std::lock_guard guard(mLock);
        Remove([&](const Call& call) { return call.number == number; });
    }
    /// Those that began within the call and did not end.
    void ForgetWithin(HostCall::Number number) {
        const std::lock_guard guard(mLock);
        Forget([&](const Call& call) { return call.number > number; });
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

    /// Those of this thread; where the first of them stood.
    template <class Condition>
    std::optional<Call> Remove(const Condition& isMeant) {
        const auto end = mUnderWay.begin() + mCount;
        const auto isOurs = [&](const Call& call) { return IsOurs(call) && isMeant(call); };
        const auto first = std::find_if(mUnderWay.begin(), end, isOurs);
        if (first == end)
            return std::nullopt;
        const Call outermost = *first;
        mCount = static_cast<size_t>(std::remove_if(first, end, isOurs) - mUnderWay.begin());
        return outermost;
    }
    /// The host left them, and so no line of the trace closed what theirs had opened.
    template <class Condition>
    void Forget(const Condition& isLeft) {
        if (const auto outermost = Remove(isLeft))
            SetTraceIndentation(outermost->indentation);
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
    AllCalls().ForgetWithin(call);
}
