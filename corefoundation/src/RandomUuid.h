// The one thing here that each system does in its own way.
#pragma once

#include <array>
#include <cstdint>

namespace corefoundation {

using UuidBytes = std::array<uint8_t, 16>;  // in the order of the text form

// A new random (version 4) identifier.
UuidBytes MakeRandomUuid() noexcept;

}  // namespace corefoundation
