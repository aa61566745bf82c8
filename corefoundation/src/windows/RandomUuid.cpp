#include "RandomUuid.h"

#include <rpc.h>

#include <algorithm>

namespace corefoundation {

UuidBytes MakeRandomUuid() noexcept {
    UUID uuid;
    // The only failures concern identifiers that are unique to this machine alone, which is enough here.
    (void)UuidCreate(&uuid);
    UuidBytes bytes;
    const auto store = [&](size_t first, size_t size, unsigned long value) {
        for (size_t i = 0; i < size; ++i)
            bytes[first + size - 1 - i] = static_cast<uint8_t>(value >> (8 * i));
    };
    store(0, 4, uuid.Data1);
    store(4, 2, uuid.Data2);
    store(6, 2, uuid.Data3);
    std::copy_n(uuid.Data4, 8, bytes.begin() + 8);
    return bytes;
}

}  // namespace corefoundation
