// The memory of this process.
#pragma once

namespace platform {

/// Gives memory back to the system that was used and is free again. Takes up to some milliseconds. Any
/// thread.
void ReleaseFreeMemory() noexcept;

}  // namespace platform
