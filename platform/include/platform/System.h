// Which system this is.
#pragma once

#include <cstdint>

namespace platform {

/// For tables that differ from system to system. What is done in another way is a service instead.
extern const bool kIsLinux;

/// Windows: the session of this process. A user may have several, in each of which programs see the fonts that were made
/// active there alone. Linux: 0, since programs see the fonts of their user.
uint32_t SessionNumber();

}  // namespace platform
