// The event by which other processes of this user ask one to end.
#pragma once

#include <string>

namespace platform {

/// Its name, for those in the same session. A process has it while it has EndRequests.
inline std::wstring EndEventName(unsigned long process) {
    return L"Local\\PluginCore-End-" + std::to_wstring(process);
}

}  // namespace platform
