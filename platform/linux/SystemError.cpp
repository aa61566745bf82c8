#include "platform/SystemError.h"

#include <cerrno>
#include <cstring>

namespace platform {

const SystemError kDiskFull{ENOSPC};

bool SystemError::IsNotFound() const {
    return code == ENOENT || code == ENOTDIR;
}

bool SystemError::IsExisting() const {
    return code == EEXIST;
}

bool SystemError::IsNotPermitted() const {
    return code == EACCES || code == EPERM || code == EROFS;
}

bool SystemError::IsPathTooLong() const {
    return code == ENAMETOOLONG;
}

bool SystemError::IsDiskFull() const {
    return code == ENOSPC || code == EDQUOT;
}

bool SystemError::IsHeldByOther() const {
    return code == EAGAIN;
}

SystemError LastSystemError() {
    return SystemError{errno};
}

std::string SystemErrorText(SystemError error) {
    const char* text = strerrordesc_np(error.code);
    if (text == nullptr)
        return "FormatMessage Failed";
    return *text != '\0' ? text : "Null message";
}

}  // namespace platform
