#include "platform/Memory.h"

#include <malloc.h>

void platform::ReleaseFreeMemory() noexcept {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}
