#include "platform/PrivateFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string_view>

#include "Descriptor.h"
#include "platform/Files.h"

namespace platform {
namespace {

// Ours are four deep. Whoever could write there may have made deeper ones.
constexpr int kDeepest = 12;

/// A folder itself, never where a link leads.
Descriptor OpenFolder(int above, const char* name) {
    return Descriptor(openat(above, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool IsOpenForWriting(const struct stat& info) {
    return (info.st_mode & (S_IWGRP | S_IWOTH)) != 0;
}

int CloseAll(Descriptor folder, int depth);

int CloseThoseIn(Descriptor folder, int depth) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(fdopendir(folder.Get()), closedir);
    if (!entries)
        return 0;
    folder.Release();
    int count = 0;
    while (const dirent* entry = readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        const bool mayBeFolder = entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN;
        if (mayBeFolder && name != "." && name != "..")
            count += CloseAll(OpenFolder(dirfd(entries.get()), entry->d_name), depth + 1);
    }
    return count;
}

int CloseAll(Descriptor folder, int depth) {
    struct stat info {};
    if (!folder.IsValid() || fstat(folder.Get(), &info) != 0 || info.st_uid != geteuid())
        return 0;
    const bool isClosed = IsOpenForWriting(info) && fchmod(folder.Get(), S_IRWXU) == 0;
    return (isClosed ? 1 : 0) + (depth < kDeepest ? CloseThoseIn(std::move(folder), depth) : 0);
}

}  // namespace

SystemError MakePrivateFolder(const std::string& path) {
    if (const SystemError error = MakeFolders(path, true))
        return error;
    const Descriptor folder = OpenFolder(AT_FDCWD, path.c_str());
    struct stat info {};
    if (!folder.IsValid() || fstat(folder.Get(), &info) != 0)
        return LastSystemError();
    if (info.st_uid != geteuid())
        return SystemError{EPERM};
    if ((info.st_mode & (S_IRWXG | S_IRWXO)) != 0 && fchmod(folder.Get(), S_IRWXU) != 0)
        return LastSystemError();
    return {};
}

int CloseFoldersToOthers(const std::string& path) {
    return CloseAll(OpenFolder(AT_FDCWD, path.c_str()), 0);
}

std::string LockedOutOwner(const std::string& path, std::string& folder) {
    struct stat info {};
    folder = path;
    while (geteuid() == 0 && !folder.empty() && stat(folder.c_str(), &info) != 0)
        folder.resize(folder.find('/') != std::string::npos ? folder.rfind('/') : 0);
    if (geteuid() != 0 || folder.empty() || info.st_uid == 0)
        return {};
    const passwd* const owner = getpwuid(info.st_uid);
    return owner != nullptr ? owner->pw_name : std::to_string(info.st_uid);
}

void KeepNewFilesPrivate() {
    umask(S_IRWXG | S_IRWXO);
}

}  // namespace platform
