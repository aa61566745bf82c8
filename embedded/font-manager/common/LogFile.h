// A log file of bounded size.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/Files.h"

namespace pellwick {

/// Appends text to a file. When the file has reached kMaxLogSize it is renamed to NAME.1, in place of an
/// earlier one, and begun anew. After a failure, and where somebody has taken the file away, the next write
/// begins with opening it again. Any thread.
class LogFile {
public:
    /// Opens the file at `path` (UTF-8), making its folder, both for this user only. Ends an earlier file.
    platform::SystemError Open(const std::string& path);
    /// Does nothing before a file was opened.
    platform::SystemError Write(std::string_view text);
    /// One line, whatever characters names have brought into it.
    platform::SystemError WriteLine(std::string_view line);

private:
    platform::SystemError OpenForAppending();
    platform::SystemError RotateIfFull();
    bool IsInPlace() const;

    std::mutex mFileLock;
    std::string mPath;
    platform::AppendedFile mFile;
    platform::FileIdentity mIdentity;
    uint64_t mSize = 0;
};

}  // namespace pellwick
