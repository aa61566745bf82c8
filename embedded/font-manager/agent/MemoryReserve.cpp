#include "agent/MemoryReserve.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "common/Limits.h"

namespace pellwick::memory_reserve {
namespace {

std::atomic<void*> theReserve{nullptr};

[[noreturn]] void OnFailedAllocation() {
    std::free(theReserve.exchange(nullptr));
    throw std::bad_alloc();
}

}  // namespace

void Restore() noexcept {
    if (theReserve == nullptr)
        theReserve = std::malloc(kMemoryReserve);
    std::set_new_handler(OnFailedAllocation);
}

}  // namespace pellwick::memory_reserve
