#include "common/LogFile.h"

#include <system_error>

#include "common/Limits.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {

bool LogFile::Open(const std::string& path) {
    const std::lock_guard guard(mFileLock);
    mFile.close();
    mPath = path;
    OpenForAppending();
    return mFile.is_open();
}

bool LogFile::IsOpen() {
    const std::lock_guard guard(mFileLock);
    return mFile.is_open();
}

void LogFile::Write(std::string_view text) {
    const std::lock_guard guard(mFileLock);
    if (mPath.empty())
        return;
    if (!mFile.is_open())
        OpenForAppending();
    RotateIfFull();
    mFile.clear();  // what failed while the disk was full may work again
    mFile.write(text.data(), static_cast<std::streamsize>(text.size()));
    mFile.flush();
    mSize += text.size();
}

void LogFile::OpenForAppending() {
    std::error_code failure;
    std::filesystem::create_directories(platform::Utf8Path(mPath).parent_path(), failure);
    mFile = std::ofstream(platform::Utf8Path(mPath), std::ios::binary | std::ios::app);
    uint64_t size = 0;
    mSize = platform::FileSize(mPath, size) ? 0 : size;
}

void LogFile::RotateIfFull() {
    if (mSize < kMaxLogSize)
        return;
    mFile.close();
    std::error_code failure;
    std::filesystem::rename(platform::Utf8Path(mPath), platform::Utf8Path(mPath + ".1"), failure);
    OpenForAppending();
    if (failure)  // better a log that goes on than none; the next try comes after as much text again
        mSize = 0;
}

}  // namespace pellwick
