#include "common/LogFile.h"

#include <system_error>

#include "common/FontManagerLimits.h"
#include "platform/Utf8Path.h"

namespace pellwick {

bool LogFile::Open(const std::string& path) {
    const std::lock_guard guard(mFileLock);
    mPath = path;
    OpenForAppending();
    return mFile.IsOpen();
}

bool LogFile::IsOpen() {
    const std::lock_guard guard(mFileLock);
    return mFile.IsOpen();
}

void LogFile::Write(std::string_view text) {
    const std::lock_guard guard(mFileLock);
    if (mPath.empty())
        return;
    if (!mFile.IsOpen())
        OpenForAppending();
    RotateIfFull();
    mFile.Append(text);
    mSize += text.size();
}

void LogFile::OpenForAppending() {
    const std::string folder = platform::Utf8Text(platform::Utf8Path(mPath).parent_path());
    if (!folder.empty())
        platform::MakeFolders(folder, true);
    mFile.Open(mPath);
    uint64_t size = 0;
    mSize = platform::FileSize(mPath, size) ? 0 : size;
}

void LogFile::RotateIfFull() {
    if (mSize < kMaxLogSize)
        return;
    mFile.Close();
    std::error_code failure;
    std::filesystem::rename(platform::Utf8Path(mPath), platform::Utf8Path(mPath + ".1"), failure);
    OpenForAppending();
    if (failure)  // better a log that goes on than none; the next try comes after as much text again
        mSize = 0;
}

}  // namespace pellwick
