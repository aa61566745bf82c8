// The launch-info file, whatever stands in it.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "AgentLauncher.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string content(reinterpret_cast<const char*>(data), size);
    const std::string value = AgentLauncher::LaunchInfoValue(content, "pellwick.path");
    if (value.find_first_of("\r\n") != std::string::npos)
        std::abort();
    return 0;
}
