#include "platform/PrivateFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/Files.h"

namespace platform {

SystemError MakePrivateFolder(const std::string& path) {
    if (const SystemError error = MakeFolders(path, true))
        return error;
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0)
        return LastSystemError();
    if (!S_ISDIR(info.st_mode))
        return SystemError{ENOTDIR};
    if (info.st_uid != geteuid())
        return SystemError{EPERM};
    if ((info.st_mode & (S_IRWXG | S_IRWXO)) != 0 && chmod(path.c_str(), S_IRWXU) != 0)
        return LastSystemError();
    return {};
}

}  // namespace platform
