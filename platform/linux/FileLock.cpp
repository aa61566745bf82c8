#include "platform/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

#include "Descriptor.h"
#include "LinuxFiles.h"
#include "platform/Files.h"

namespace platform {

struct FileLock::Handle {
    Handle(Descriptor locked, std::string lockPath)
        : descriptor(std::move(locked)), path(std::move(lockPath)) {}
    // Closing alone would leave the lock to a child that was forked meanwhile.
    ~Handle() { flock(descriptor.Get(), LOCK_UN); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    Descriptor descriptor;
    std::string path;
};

namespace {

/// What stands at a lock's path may have been put there by somebody else: a link, a pipe that nobody reads.
SystemError OpenLock(const std::string& path, int flags, Descriptor& descriptor) {
    descriptor = Descriptor(open(path.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat info {};
    if (!descriptor.IsValid() || fstat(descriptor.Get(), &info) != 0)
        return LastSystemError();
    return S_ISREG(info.st_mode) ? SystemError{} : SystemError{EINVAL};
}

SystemError Lock(int descriptor, int operation) {
    int result = 0;
    do {
        result = flock(descriptor, operation);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? SystemError{} : LastSystemError();
}

/// True also where that cannot be told.
bool StandsAt(const std::string& path, int descriptor) {
    FileIdentity held;
    FileIdentity found;
    if (IdentityAt(descriptor, "", AT_EMPTY_PATH, held))
        return true;
    const SystemError error = IdentifyFile(path, found);
    return error ? !error.IsNotFound() : found == held;
}

}  // namespace

FileLock::FileLock() = default;
FileLock::~FileLock() = default;
FileLock::FileLock(FileLock&&) noexcept = default;
FileLock& FileLock::operator=(FileLock&&) noexcept = default;

SystemError FileLock::Acquire(const std::string& path, bool wait) {
    mHandle.reset();
    Descriptor descriptor;
    do {  // once more where the file was taken away before it was locked
        if (const SystemError error = OpenLock(path, O_RDWR | O_CREAT, descriptor))
            return error;
        if (const SystemError error = Lock(descriptor.Get(), wait ? LOCK_EX : LOCK_EX | LOCK_NB))
            return error;
    } while (!StandsAt(path, descriptor.Get()));
    mHandle = std::make_unique<Handle>(std::move(descriptor), path);
    return {};
}

bool FileLock::IsHeldByAnyone(const std::string& path) {
    Descriptor descriptor;
    return !OpenLock(path, O_RDONLY, descriptor) && Lock(descriptor.Get(), LOCK_SH | LOCK_NB).IsHeldByOther();
}

bool FileLock::IsInPlace() const {
    return mHandle && StandsAt(mHandle->path, mHandle->descriptor.Get());
}

SystemError FileLock::Write(std::string_view content) {
    if (!mHandle)
        return SystemError{EBADF};
    const int file = mHandle->descriptor.Get();
    if (ftruncate(file, 0) != 0 || lseek(file, 0, SEEK_SET) != 0)
        return LastSystemError();
    return WriteAll(file, content);
}

bool FileLock::IsHeld() const {
    return mHandle != nullptr;
}
void FileLock::Release() {
    mHandle.reset();
}

}  // namespace platform
