#include "platform/System.h"

namespace platform {

const bool kIsLinux = true;

}  // namespace platform
