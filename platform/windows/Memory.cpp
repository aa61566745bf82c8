#include "platform/Memory.h"

#include <windows.h>

void platform::ReleaseFreeMemory() noexcept {
    HeapCompact(GetProcessHeap(), 0);
}
