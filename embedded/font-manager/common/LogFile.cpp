#include "common/LogFile.h"

#include <system_error>

#include "PrintableText.h"
#include "common/FontManagerLimits.h"
#include "platform/Utf8Path.h"

namespace pellwick {

using platform::SystemError;

SystemError LogFile::Open(const std::string& path) {
    const std::lock_guard guard(mFileLock);
    mPath = path;
    return OpenForAppending();
}

SystemError LogFile::Write(std::string_view text) {
    const std::lock_guard guard(mFileLock);
    if (mPath.empty())
        return {};
    SystemError error = IsInPlace() ? SystemError{} : OpenForAppending();
    if (!error)
        error = RotateIfFull();
    if (!error)
        error = mFile.Append(text);
    if (error)
        mFile.Close();
    mSize += text.size();
    return error;
}

SystemError LogFile::WriteLine(std::string_view line) {
    return Write(PrintableText(line) + "\n");
}

bool LogFile::IsInPlace() const {
    platform::FileIdentity found;
    return mFile.IsOpen() && !platform::IdentifyFile(mPath, found) && found == mIdentity;
}

SystemError LogFile::OpenForAppending() {
    const std::string folder = platform::Utf8Text(platform::Utf8Path(mPath).parent_path());
    SystemError error = folder.empty() ? SystemError{} : platform::MakeFolders(folder, true);
    if (!error)
        error = mFile.Open(mPath);
    if (!error)
        error = platform::IdentifyFile(mPath, mIdentity);
    return error ? error : platform::FileSize(mPath, mSize);
}

SystemError LogFile::RotateIfFull() {
    if (mSize < kMaxLogSize)
        return {};
    mFile.Close();
    std::error_code failure;
    std::filesystem::rename(platform::Utf8Path(mPath), platform::Utf8Path(mPath + ".1"), failure);
    const SystemError error = OpenForAppending();
    if (failure)  // better a log that goes on than none; the next try comes after as much text again
        mSize = 0;
    return error;
}

}  // namespace pellwick
