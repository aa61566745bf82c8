#include "platform/System.h"

namespace platform {

const bool kIsLinux = false;

}  // namespace platform
