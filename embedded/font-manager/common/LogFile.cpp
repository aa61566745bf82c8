#include "common/LogFile.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

#include "PrintableText.h"
#include "common/FontManagerLimits.h"
#include "platform/FileLock.h"
#include "platform/Utf8Path.h"

namespace pellwick {

using platform::SystemError;

SystemError LogFile::Open(const std::string& path) {
    const std::lock_guard guard(mFileLock);
    mPath = path;
    platform::AppendedFile file;
    const SystemError error = MakeFolder();
    return error ? error : file.Open(mPath);
}

// A file that one process kept open could not be renamed by another on Windows.
SystemError LogFile::Write(std::string_view text) {
    const std::lock_guard guard(mFileLock);
    if (mPath.empty())
        return {};
    RotateIfFull();
    platform::AppendedFile file;
    SystemError error = file.Open(mPath);
    if (error.IsNotFound()) {
        error = MakeFolder();
        if (!error)
            error = file.Open(mPath);
    }
    return error ? error : file.Append(text);
}

SystemError LogFile::WriteLine(std::string_view line) {
    return Write(PrintableText(line) + "\n");
}

SystemError LogFile::MakeFolder() const {
    const std::string folder = platform::Utf8Text(platform::Utf8Path(mPath).parent_path());
    return folder.empty() ? SystemError{} : platform::MakeFolders(folder, true);
}

void LogFile::RotateIfFull() const {
    const auto isFull = [this] {
        uint64_t size = 0;
        return !platform::FileSize(mPath, size) && size >= kMaxLogSize;
    };
    if (!isFull())
        return;
    // Of several processes that find it full one puts it aside; the others would replace what that one put there.
    platform::FileLock lock;
    if (lock.Acquire(mPath + ".lock", false) || !isFull())
        return;
    std::error_code ignored;  // better a log that goes on than none; the next line tries again
    std::filesystem::rename(platform::Utf8Path(mPath), platform::Utf8Path(mPath + ".1"), ignored);
}

}  // namespace pellwick
