#include "platform/FileTrust.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "Descriptor.h"
#include "FilesInternal.h"
#include "LinuxFiles.h"

namespace platform {
namespace {

/// A group of the same number as the user is the user's own, as most systems make them.
bool IsGroupTrusted(gid_t group) {
    return group == 0 || group == getuid();
}

bool CanBeWrittenByOthers(const struct stat& info, FileUse use) {
    // There others make files, but take none away.
    if (use == FileUse::kContent && S_ISDIR(info.st_mode) && (info.st_mode & S_ISVTX) != 0)
        return false;
    return (info.st_mode & S_IWOTH) != 0 || ((info.st_mode & S_IWGRP) != 0 && !IsGroupTrusted(info.st_gid));
}

/// What is wrong with the one that is open.
std::string FaultOf(const Descriptor& opened, const std::string& path, FileUse use) {
    struct stat info {};
    if (fstat(opened.Get(), &info) != 0)
        return path + " cannot be looked at";
    if (info.st_uid != 0 && info.st_uid != geteuid())
        return path + " belongs to somebody else";
    return CanBeWrittenByOthers(info, use) ? path + " can be written to by others" : "";
}

/// Links were followed before: one that stands here now was put there since.
Descriptor OpenItself(const Descriptor& folder, const std::string& name, int flags) {
    return Descriptor(openat(folder.Get(), name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC));
}

/// The folder of that path without links, and what is wrong with it or one above it.
Descriptor OpenFolder(const std::filesystem::path& path, FileUse use, std::string& fault) {
    std::filesystem::path each = path.root_path();
    Descriptor folder(open(each.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    for (const std::filesystem::path& name : path.relative_path()) {
        if (fault.empty())
            fault = FaultOf(folder, each.native(), FileUse::kContent);
        each /= name;
        folder = OpenItself(folder, name.native(), O_PATH | O_DIRECTORY);
    }
    if (fault.empty())
        fault = FaultOf(folder, each.native(), use);
    return folder;
}

}  // namespace

struct JudgedFile::Handle {
    Descriptor file;
};

JudgedFile::JudgedFile() = default;
JudgedFile::~JudgedFile() = default;

SystemError JudgedFile::Open(const std::string& path, FileUse use, std::string& fault) {
    mHandle.reset();
    fault = path + " cannot be looked at";
    std::error_code failure;
    const std::filesystem::path real = std::filesystem::canonical(path, failure);
    if (failure)
        return SystemError{failure.value()};
    std::string found;
    const Descriptor folder = OpenFolder(real.parent_path(), use, found);
    // A program need not be readable. A pipe is not waited for.
    Descriptor file = OpenItself(folder, real.filename(),
                                 use == FileUse::kProgram ? O_PATH : O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat info {};
    if (!file.IsValid() || fstat(file.Get(), &info) != 0)
        return LastSystemError();
    if (!S_ISREG(info.st_mode))
        return SystemError{EINVAL};
    fault = found.empty() ? FaultOf(file, real.native(), use) : found;
    mPath = real.native();
    mHandle = std::make_unique<Handle>(Handle{std::move(file)});
    return {};
}

SystemError JudgedFile::Read(std::string& content, uint64_t sizeLimit) {
    if (!mHandle)
        return SystemError{EBADF};
    std::string bytes(static_cast<size_t>(sizeLimit) + 1, '\0');
    size_t size = 0;
    if (const SystemError error = ReadAt(mHandle->file.Get(), 0, bytes.data(), bytes.size(), size))
        return error;
    if (size > sizeLimit)
        return kFileTooLarge;
    bytes.resize(size);
    content = std::move(bytes);
    return {};
}

}  // namespace platform
