#include "agent/MemoryReserve.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "common/FontManagerLimits.h"

namespace pellwick::memory_reserve {
namespace {

/// For what must not fail, since it cleans up already.
std::atomic<void*> theFirst{nullptr};
/// For cleaning up after what fails then.
std::atomic<void*> theSecond{nullptr};

void OnFailedAllocation() {
    if (void* first = theFirst.exchange(nullptr)) {
        std::free(first);
        return;  // it is tried again
    }
    std::free(theSecond.exchange(nullptr));
    throw std::bad_alloc();
}

void SetAside(std::atomic<void*>& reserve) {
    if (reserve == nullptr)
        reserve = std::malloc(kMemoryReserve);
}

}  // namespace

bool Restore() noexcept {
    SetAside(theSecond);
    SetAside(theFirst);
    std::set_new_handler(OnFailedAllocation);
    return theFirst != nullptr && theSecond != nullptr;
}

}  // namespace pellwick::memory_reserve
