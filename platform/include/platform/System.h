// Which system this is.
#pragma once

namespace platform {

/// For tables that differ from system to system. What is done in another way is a service instead.
extern const bool kIsLinux;

}  // namespace platform
