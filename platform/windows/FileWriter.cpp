#include "platform/FileWriter.h"

#include <windows.h>

#include <utility>

#include "FilesInternal.h"
#include "OwnedHandle.h"
#include "SecurityAttributes.h"
#include "WideText.h"
#include "WindowsFiles.h"
#include "platform/Files.h"

namespace platform {

struct FileWriter::Handle {
    OwnedHandle file;
};

FileWriter::FileWriter() = default;
FileWriter::FileWriter(FileWriter&& other) noexcept
    : mHandle(std::move(other.mHandle)), mPath(std::exchange(other.mPath, {})) {}
FileWriter& FileWriter::operator=(FileWriter&& other) noexcept {
    std::swap(mHandle, other.mHandle);
    std::swap(mPath, other.mPath);
    return *this;
}

FileWriter::~FileWriter() {
    mHandle.reset();  // an open file cannot be removed
    if (!mPath.empty())
        DeleteFileW(ToWidePath(mPath).c_str());
}

SystemError FileWriter::Open(const std::string& folder) {
    PrivateToUser rights(PrivateToUser::Kind::kFont);
    OwnedHandle file;
    std::string path;
    if (const SystemError error =
            MakeFileOfNewName(folder + kPathSeparator, kTemporaryDigits, {}, rights.Attributes(), file, path))
        return error;
    *this = FileWriter();
    mHandle = std::make_unique<Handle>(Handle{std::move(file)});
    mPath = std::move(path);
    return {};
}

SystemError FileWriter::Write(std::string_view bytes) {
    return mHandle ? WriteAll(mHandle->file, bytes) : SystemError{ERROR_INVALID_HANDLE};
}

SystemError FileWriter::Finish() {
    if (!mHandle)
        return SystemError{ERROR_INVALID_HANDLE};
    const std::unique_ptr<Handle> finished = std::move(mHandle);
    return FlushFileBuffers(finished->file.Get()) ? SystemError{} : LastSystemError();
}

SystemError FileWriter::MoveTo(const std::string& path) {
    if (const SystemError error = Rename(mPath, path, MOVEFILE_REPLACE_EXISTING))
        return error;
    mPath.clear();
    SetFileAttributesW(ToWidePath(path).c_str(), FILE_ATTRIBUTE_READONLY);
    return {};
}

}  // namespace platform
