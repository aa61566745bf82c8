#include "LinuxFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "Descriptor.h"

namespace platform {

SystemError ReadAt(int descriptor, uint64_t offset, void* buffer, size_t size, size_t& bytesRead) {
    bytesRead = 0;
    while (bytesRead < size) {
        const ssize_t count = pread(descriptor, static_cast<char*>(buffer) + bytesRead, size - bytesRead,
                                    static_cast<off_t>(offset + bytesRead));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return LastSystemError();
        if (count == 0)
            break;
        bytesRead += static_cast<size_t>(count);
    }
    return {};
}

SystemError WriteAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return LastSystemError();
        content.remove_prefix(static_cast<size_t>(written));
    }
    return {};
}

SystemError Flush(int descriptor) {
    return fsync(descriptor) == 0 ? SystemError{} : LastSystemError();
}

SystemError FlushFolder(const std::string& folder) {
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.IsValid())
        return {};  // one that may be written to but not read
    const SystemError error = Flush(descriptor.Get());
    return error.code == EINVAL ? SystemError{} : error;
}

SystemError IdentityAt(int folder, const char* name, int flags, FileIdentity& identity) {
    struct statx info {};
    if (statx(folder, name, flags | AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME, &info) != 0)
        return LastSystemError();
    identity.volume = uint64_t{info.stx_dev_major} << 32 | info.stx_dev_minor;
    identity.file = info.stx_ino;
    // A number that is free again is soon given to another file.
    if ((info.stx_mask & STATX_BTIME) != 0)
        identity.birth =
            static_cast<uint64_t>(info.stx_btime.tv_sec) * 1'000'000'000 + info.stx_btime.tv_nsec;
    return {};
}

}  // namespace platform
