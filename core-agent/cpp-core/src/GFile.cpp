#include "GFile.h"

namespace {

ErrorCode CodeOf(platform::SystemError error, ErrorCode otherwise) {
    return error.IsNotFound() ? GFileSystem::kFileNotFound : otherwise;
}

}  // namespace

std::string GFileSystemSpec::FileName() const {
    return platform::NamePart(mPath);
}

std::string GFileSystemSpec::Extension() const {
    const std::string name = FileName();
    const size_t dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

ErrorCode GFile::Open(const GFileSystemSpec& spec, unsigned) {
    mPosition = 0;
    if (const platform::SystemError error = mFile.Open(spec.Path()))
        return CodeOf(error, kOpenFailed);
    return CoreErrorCodes::kSuccess;
}

ErrorCode GFile::SetFilePosition(Origin origin, uint64_t offset) {
    if (!mFile.IsOpen())
        return kFileNotOpen;
    mPosition = origin == eBeginning ? offset : mPosition + offset;
    return CoreErrorCodes::kSuccess;
}

ErrorCode GFile::Read(size_t size, void* buffer) {
    if (!mFile.IsOpen())
        return kFileNotOpen;
    size_t bytesRead = 0;
    if (mFile.ReadAt(mPosition, buffer, size, bytesRead) || bytesRead < size)
        return CoreErrorCodes::kError;
    mPosition += size;
    return CoreErrorCodes::kSuccess;
}

ErrorCode GFile::Close() {
    if (!mFile.IsOpen())
        return kFileNotOpen;
    mFile.Close();
    return CoreErrorCodes::kSuccess;
}

ErrorCode GFileSystem::OSGetFileSize(const GFileSystemSpec& spec, uint64_t& size) {
    if (const platform::SystemError error = platform::FileSize(spec.Path(), size))
        return CodeOf(error, kInvalidPath);
    return CoreErrorCodes::kSuccess;
}

int64_t VantorixFileUtils::GetFileModificationDate(const std::string& path) {
    int64_t seconds = 0;
    return platform::FileModificationTime(path, seconds) ? 0 : seconds;
}
