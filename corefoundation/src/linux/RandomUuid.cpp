#include "RandomUuid.h"

#include <uuid/uuid.h>

namespace corefoundation {

UuidBytes MakeRandomUuid() noexcept {
    UuidBytes bytes;
    uuid_generate_random(bytes.data());
    return bytes;
}

}  // namespace corefoundation
