#include "platform/DebugOutput.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
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

/// Whoever read the output may have gone; that must not end the host. The signal that it comes as is kept
/// from this thread, and taken back if it came from here.
class NoPipeSignal {
public:
    NoPipeSignal() {
        sigemptyset(&mPipe);
        sigaddset(&mPipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        mWasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &mPipe, &mMask);
    }
    ~NoPipeSignal() {
        const timespec noTime{};
        if (!mWasPending)
            sigtimedwait(&mPipe, nullptr, &noTime);
        pthread_sigmask(SIG_SETMASK, &mMask, nullptr);
    }
    NoPipeSignal(const NoPipeSignal&) = delete;
    NoPipeSignal& operator=(const NoPipeSignal&) = delete;

private:
    sigset_t mPipe;
    sigset_t mMask;
    bool mWasPending;
};

class LinuxDebugOutput : public DebugOutput {
public:
    void Write(const char* text) noexcept override {
        if (!IsListening() || text == nullptr)
            return;
        const int savedErrno = errno;
        WriteAll(text);
        errno = savedErrno;
    }

    bool IsListening() noexcept override { return Destination() >= 0; }

private:
    static void WriteAll(const char* text) noexcept {
        const NoPipeSignal noSignal;
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
    }
};

}  // namespace

template <>
DebugOutput& SystemDefault<DebugOutput>() {
    static LinuxDebugOutput output;
    return output;
}

}  // namespace platform
