#include "HostCall.h"

#include <algorithm>
#include <mutex>
#include <thread>
#include <vector>

#include "NoDestructor.h"
#include "TraceLog.h"

namespace {

struct Call {
    HostCall::Number number;
    std::thread::id thread;
    uintptr_t place;  ///< in the thread's stack, which grows towards lower addresses
    int indentation;  ///< of the trace when it began
};

/// Hosts are to call on one thread; those that do not must not break more than themselves.
struct Calls {
    std::mutex lock;
    std::vector<Call> underWay;  ///< those of a thread from the outermost to the innermost
    HostCall::Number last = 0;
};

Calls& AllCalls() {
    static NoDestructor<Calls> calls;
    return *calls;
}

/// Forgets the calls of this thread that the host left without returning.
void DropAbandoned(std::vector<Call>& calls, uintptr_t place) {
    for (size_t index = calls.size(); index-- > 0;) {
        const Call call = calls[index];
        if (call.thread != std::this_thread::get_id())
            continue;
        if (call.place > place)
            return;
        SetTraceIndentation(call.indentation);
        calls.erase(calls.begin() + static_cast<ptrdiff_t>(index));
    }
}

}  // namespace

HostCall::HostCall() {
    const auto place = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
    Calls& calls = AllCalls();
    const std::lock_guard guard(calls.lock);
    DropAbandoned(calls.underWay, place);
    mNumber = ++calls.last;
    calls.underWay.push_back({mNumber, std::this_thread::get_id(), place, TraceIndentation()});
}

HostCall::~HostCall() {
    Calls& calls = AllCalls();
    const std::lock_guard guard(calls.lock);
    std::erase_if(calls.underWay, [this](const Call& call) { return call.number == mNumber; });
}

HostCall::Number HostCall::Innermost() {
    Calls& calls = AllCalls();
    const std::lock_guard guard(calls.lock);
    const auto found = std::find_if(calls.underWay.rbegin(), calls.underWay.rend(), [](const Call& call) {
        return call.thread == std::this_thread::get_id();
    });
    return found == calls.underWay.rend() ? 0 : found->number;
}

bool HostCall::IsUnderWay(Number number) {
    Calls& calls = AllCalls();
    const std::lock_guard guard(calls.lock);
    return number == 0 || std::any_of(calls.underWay.begin(), calls.underWay.end(),
                                      [&](const Call& call) { return call.number == number; });
}
