#include "platform/System.h"

#include <windows.h>

namespace platform {

const bool kIsLinux = false;

uint32_t SessionNumber() {
    DWORD session = 0;
    ProcessIdToSessionId(GetCurrentProcessId(), &session);
    return session;
}

}  // namespace platform
