// A log file of bounded size.
#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "platform/Files.h"

namespace pellwick {

/// Appends text to a file, which is open only meanwhile: several processes may write it, and anybody take it away.
/// When it has reached kMaxLogSize, whoever wrote it, it is renamed to NAME.1, in place of an earlier one, and begun
/// anew. Any thread.
class LogFile {
public:
    /// Opens the file at `path` (UTF-8), making its folder, both for this user only. Ends an earlier file.
    platform::SystemError Open(const std::string& path);
    /// Does nothing before a file was opened.
    platform::SystemError Write(std::string_view text);
    /// One line, whatever characters names have brought into it.
    platform::SystemError WriteLine(std::string_view line);

private:
    platform::SystemError MakeFolder() const;
    void RotateIfFull() const;

    std::mutex mFileLock;
    std::string mPath;
};

}  // namespace pellwick
