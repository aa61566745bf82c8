#include "platform/FileWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "FilesInternal.h"

namespace platform {

struct FileWriter::Handle {
    explicit Handle(int opened) : descriptor(opened) {}
    ~Handle() { close(descriptor); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    const int descriptor;
};

FileWriter::FileWriter() = default;
FileWriter::FileWriter(FileWriter&& other) noexcept
    : mHandle(std::move(other.mHandle)), mPath(std::exchange(other.mPath, {})) {}
FileWriter& FileWriter::operator=(FileWriter&& other) noexcept {
    std::swap(mHandle, other.mHandle);
    std::swap(mPath, other.mPath);
    return *this;
}

FileWriter::~FileWriter() {
    if (!mPath.empty())
        unlink(mPath.c_str());
}

SystemError FileWriter::Open(const std::string& folder) {
    std::string path = folder + "/" + std::string(kTemporaryDigits, 'X');
    const int descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor < 0)
        return LastSystemError();
    *this = FileWriter();
    mHandle = std::make_unique<Handle>(descriptor);
    mPath = std::move(path);
    return {};
}

SystemError FileWriter::Write(std::string_view bytes) {
    if (!mHandle)
        return SystemError{EBADF};
    while (!bytes.empty()) {
        const ssize_t written = write(mHandle->descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return LastSystemError();
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return {};
}

SystemError FileWriter::Finish() {
    if (!mHandle)
        return SystemError{EBADF};
    const std::unique_ptr<Handle> finished = std::move(mHandle);
    if (fchmod(finished->descriptor, S_IRUSR) != 0 || fsync(finished->descriptor) != 0)
        return LastSystemError();
    return {};
}

SystemError FileWriter::MoveTo(const std::string& path) {
    if (rename(mPath.c_str(), path.c_str()) != 0)
        return LastSystemError();
    mPath.clear();
    return FlushFolder(FolderOf(path));
}

}  // namespace platform
