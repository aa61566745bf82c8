// A log file of bounded size.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/Files.h"

namespace pellwick {

/// Appends text to a file. When the file has reached kMaxLogSize it is renamed to NAME.1, in place of an
/// earlier one, and begun anew. Any thread.
class LogFile {
public:
    /// Opens the file at `path` (UTF-8), making its folder, both for this user only; false when that fails.
    /// Ends an earlier file.
    bool Open(const std::string& path);
    bool IsOpen();
    void Write(std::string_view text);

private:
    void OpenForAppending();
    void RotateIfFull();

    std::mutex mFileLock;
    std::string mPath;
    platform::AppendedFile mFile;
    uint64_t mSize = 0;
};

}  // namespace pellwick
