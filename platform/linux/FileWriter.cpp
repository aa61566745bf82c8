#include "platform/FileWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Descriptor.h"
#include "FilesInternal.h"
#include "LinuxFiles.h"

namespace platform {

struct FileWriter::Handle {
    Descriptor descriptor;
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
    Descriptor descriptor(mkostemp(path.data(), O_CLOEXEC));
    if (!descriptor.IsValid())
        return LastSystemError();
    *this = FileWriter();
    mHandle = std::make_unique<Handle>(Handle{std::move(descriptor)});
    mPath = std::move(path);
    return {};
}

SystemError FileWriter::Write(std::string_view bytes) {
    return mHandle ? WriteAll(mHandle->descriptor.Get(), bytes) : SystemError{EBADF};
}

SystemError FileWriter::Finish() {
    if (!mHandle)
        return SystemError{EBADF};
    const std::unique_ptr<Handle> finished = std::move(mHandle);
    const int file = finished->descriptor.Get();
    return fchmod(file, S_IRUSR) == 0 ? Flush(file) : LastSystemError();
}

SystemError FileWriter::MoveTo(const std::string& path) {
    if (rename(mPath.c_str(), path.c_str()) != 0)
        return LastSystemError();
    mPath.clear();
    return FlushFolder(FolderOf(path));
}

}  // namespace platform
