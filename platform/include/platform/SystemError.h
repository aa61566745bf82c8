// Errors of the operating system: errno on POSIX, the last-error value on Windows.
#pragma once

#include <string>
#include <system_error>

namespace platform {

struct SystemError {
    int code = 0;  ///< the system's own number; 0 is success

    explicit operator bool() const { return code != 0; }
    /// The file, or a folder on the way to it, is not there.
    bool IsNotFound() const;
    /// Something of that name is there.
    bool IsExisting() const;
    /// This user, or nobody, may do that there.
    bool IsNotPermitted() const;
    bool IsPathTooLong() const;
    /// There is no room left, or the user may not have more.
    bool IsDiskFull() const;
    /// Another process has the file or the lock now; a later attempt may succeed.
    bool IsHeldByOther() const;
};

/// That of a write for which there is no room.
extern const SystemError kDiskFull;

/// The calling thread's last error.
SystemError LastSystemError();

/// The system's text for an error, UTF-8, without a line end. "FormatMessage Failed" when the system has no
/// text for it, "Null message" when it gives none. Any thread.
std::string SystemErrorText(SystemError error);
/// The same for an error of the C++ library.
std::string SystemErrorText(const std::error_code& error);

/// What happened, and what to do about it, where the file at `path`, UTF-8, could not be written.
std::string WriteFailureText(const std::string& path, SystemError error);

}  // namespace platform
