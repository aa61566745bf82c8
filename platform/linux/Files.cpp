#include "platform/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "Descriptor.h"
#include "FilesInternal.h"
#include "LinuxFiles.h"

namespace platform {

const char kPathSeparator = '/';
const SystemError kFileTooLarge{EFBIG};

namespace {

SystemError StatRegularFile(const std::string& path, struct stat& info) {
    if (stat(path.c_str(), &info) != 0)
        return LastSystemError();
    if (S_ISDIR(info.st_mode))
        return SystemError{EISDIR};
    return S_ISREG(info.st_mode) ? SystemError{} : SystemError{EINVAL};
}

SystemError CopyAll(ReadOnlyFile& source, int target) {
    std::vector<char> piece(size_t{1} << 20);
    for (uint64_t offset = 0;;) {
        size_t size = 0;
        if (const SystemError error = source.ReadAt(offset, piece.data(), piece.size(), size))
            return error;
        if (size == 0)
            return Flush(target);
        if (const SystemError error = WriteAll(target, {piece.data(), size}))
            return error;
        offset += size;
    }
}

/// A new file in the folder under a name that is nobody else's, with the rights of any new file.
Descriptor MakeTemporaryFile(const std::string& folder, std::string& path) {
    static std::atomic<unsigned> counter{0};
    for (;;) {
        path = folder + "/.copy-" + std::to_string(getpid()) + "-" + std::to_string(++counter) + ".part";
        Descriptor descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (descriptor.IsValid() || errno != EEXIST)
            return descriptor;
    }
}

bool Exists(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

SystemError RenameToFreeName(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return LastSystemError();
    // The file system cannot promise it: looking first is the best that can be done there.
    if (Exists(to))
        return SystemError{EEXIST};
    return rename(from.c_str(), to.c_str()) == 0 ? SystemError{} : LastSystemError();
}

}  // namespace

struct ReadOnlyFile::Handle {
    Descriptor descriptor;
};

ReadOnlyFile::ReadOnlyFile() = default;
ReadOnlyFile::~ReadOnlyFile() = default;
ReadOnlyFile::ReadOnlyFile(ReadOnlyFile&&) noexcept = default;
ReadOnlyFile& ReadOnlyFile::operator=(ReadOnlyFile&&) noexcept = default;

SystemError ReadOnlyFile::Open(const std::string& path) {
    mHandle.reset();
    // O_NONBLOCK: opening a named pipe must not wait for a writer. It has no effect on regular files.
    Descriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor.IsValid())
        return LastSystemError();
    struct stat info {};
    if (fstat(descriptor.Get(), &info) != 0)
        return LastSystemError();
    if (!S_ISREG(info.st_mode))
        return SystemError{S_ISDIR(info.st_mode) ? EISDIR : EINVAL};
    mHandle = std::make_unique<Handle>(Handle{std::move(descriptor)});
    return {};
}

SystemError ReadOnlyFile::ReadAt(uint64_t offset, void* buffer, size_t size, size_t& bytesRead) {
    bytesRead = 0;
    if (!mHandle)
        return SystemError{EBADF};
    return platform::ReadAt(mHandle->descriptor.Get(), offset, buffer, size, bytesRead);
}

SystemError ReadOnlyFile::Size(uint64_t& size) const {
    struct stat info {};
    if (!mHandle)
        return SystemError{EBADF};
    if (fstat(mHandle->descriptor.Get(), &info) != 0)
        return LastSystemError();
    size = static_cast<uint64_t>(info.st_size);
    return {};
}

void ReadOnlyFile::Close() {
    mHandle.reset();
}
bool ReadOnlyFile::IsOpen() const {
    return mHandle != nullptr;
}

intptr_t ReadOnlyFile::NativeHandle() const {
    return mHandle ? mHandle->descriptor.Get() : -1;
}

SystemError FileSize(const std::string& path, uint64_t& size) {
    struct stat info {};
    const SystemError error = StatRegularFile(path, info);
    if (!error)
        size = static_cast<uint64_t>(info.st_size);
    return error;
}

SystemError FileModificationTime(const std::string& path, int64_t& seconds) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        return LastSystemError();
    seconds = info.st_mtim.tv_sec;
    return {};
}

SystemError WriteWholeFile(const std::string& path, std::string_view content, FileRights rights) {
    std::string temporary = path + std::string(kTemporaryMark) + std::string(kTemporaryDigits, 'X');
    const Descriptor descriptor = rights == FileRights::kThisUserOnly
                                      ? Descriptor(mkostemp(temporary.data(), O_CLOEXEC))
                                      : MakeTemporaryFile(FolderOf(path), temporary);
    if (!descriptor.IsValid())
        return LastSystemError();
    SystemError error = WriteAll(descriptor.Get(), content);
    if (!error)
        error = Flush(descriptor.Get());
    if (!error && rename(temporary.c_str(), path.c_str()) != 0)
        error = LastSystemError();
    if (!error)
        return FlushFolder(FolderOf(path));
    unlink(temporary.c_str());
    return error;
}

SystemError WriteTemporaryFile(const std::string& folder, const std::string& prefix,
                               const std::string& suffix, std::string_view content, std::string& path) {
    std::string name = folder + "/" + prefix + "XXXXXX" + suffix;
    const Descriptor file(mkostemps(name.data(), static_cast<int>(suffix.size()), O_CLOEXEC));
    if (!file.IsValid())
        return LastSystemError();
    if (const SystemError error = WriteAll(file.Get(), content)) {
        unlink(name.c_str());
        return error;
    }
    path = name;
    return {};
}

SystemError RemoveFile(const std::string& path) {
    return unlink(path.c_str()) == 0 || errno == ENOENT ? SystemError{} : LastSystemError();
}

SystemError CopyToNewFile(const std::string& source, const std::string& target) {
    if (Exists(target))
        return SystemError{EEXIST};
    ReadOnlyFile file;
    if (const SystemError error = file.Open(source))
        return error;
    const std::string folder = FolderOf(target);
    std::string temporary;
    const Descriptor descriptor = MakeTemporaryFile(folder, temporary);
    if (!descriptor.IsValid())
        return LastSystemError();
    SystemError error = CopyAll(file, descriptor.Get());
    if (!error)
        error = RenameToFreeName(temporary, target);
    if (!error)
        return FlushFolder(folder);
    unlink(temporary.c_str());
    return error;
}

SystemError MakeFolders(const std::string& path, bool privateToUser) {
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string folder = path.substr(0, end);
        if (mkdir(folder.c_str(), privateToUser ? 0700 : 0777) != 0 && errno != EEXIST && errno != EISDIR) {
            const SystemError error = LastSystemError();
            struct stat info {};  // an existing folder on a read-only file system answers EROFS
            if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
                return error;
        }
        if (end == std::string::npos)
            break;
    }
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        return LastSystemError();
    return S_ISDIR(info.st_mode) ? SystemError{} : SystemError{ENOTDIR};
}

bool IsLink(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
}

SystemError IdentifyFile(const std::string& path, FileIdentity& identity) {
    return IdentityAt(AT_FDCWD, path.c_str(), 0, identity);
}

struct AppendedFile::Handle {
    Descriptor descriptor;
};

AppendedFile::AppendedFile() = default;
AppendedFile::~AppendedFile() = default;

SystemError AppendedFile::Open(const std::string& path) {
    mHandle.reset();
    Descriptor descriptor(
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat info {};
    if (!descriptor.IsValid() || fstat(descriptor.Get(), &info) != 0)
        return LastSystemError();
    if (!S_ISREG(info.st_mode))
        return SystemError{EINVAL};
    if ((info.st_mode & (S_IWGRP | S_IWOTH)) != 0)  // an earlier version may have made it so
        fchmod(descriptor.Get(), S_IRUSR | S_IWUSR);
    mHandle = std::make_unique<Handle>(Handle{std::move(descriptor)});
    return {};
}

SystemError AppendedFile::Append(std::string_view content) {
    return mHandle ? WriteAll(mHandle->descriptor.Get(), content) : SystemError{EBADF};
}

void AppendedFile::Close() {
    mHandle.reset();
}
bool AppendedFile::IsOpen() const {
    return mHandle != nullptr;
}

}  // namespace platform
