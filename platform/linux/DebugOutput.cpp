#include "platform/DebugOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace platform {
namespace {

int OpenDestination() noexcept {
    const char* name = std::getenv("PLUGINCORE_DEBUG_OUTPUT");
    if (name == nullptr || *name == '\0')
        return -1;
    if (std::strcmp(name, "-") == 0)
        return STDERR_FILENO;
    return open(name, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
}

/// The descriptor to write to, -1 for none; decided once.
int Destination() noexcept {
    static const int destination = OpenDestination();
    return destination;
}

class LinuxDebugOutput : public DebugOutput {
public:
    void Write(const char* text) noexcept override {
        if (!IsListening() || text == nullptr)
            return;
        const int savedErrno = errno;
        size_t left = std::strlen(text);
        while (left > 0) {
            const ssize_t written = write(Destination(), text, left);
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0)
                break;
            text += written;
            left -= static_cast<size_t>(written);
        }
        errno = savedErrno;
    }

    bool IsListening() noexcept override { return Destination() >= 0; }
};

}  // namespace

template <>
DebugOutput& SystemDefault<DebugOutput>() {
    static LinuxDebugOutput output;
    return output;
}

}  // namespace platform
