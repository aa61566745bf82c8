#include "platform/System.h"

namespace platform {

const bool kIsLinux = true;

uint32_t SessionNumber() {
    return 0;
}

}  // namespace platform
