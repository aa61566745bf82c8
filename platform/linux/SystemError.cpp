#include "platform/SystemError.h"

#include <cerrno>
#include <cstring>

namespace platform {

SystemError LastSystemError() {
    return SystemError{errno};
}

std::string SystemErrorText(SystemError error) {
    char buffer[256] = "";
    // The GNU form returns the text, which need not stand in the buffer.
    const char* text = strerror_r(error.code, buffer, sizeof buffer);
    if (text == nullptr || *text == '\0')
        return "Null message";
    return text;
}

}  // namespace platform
