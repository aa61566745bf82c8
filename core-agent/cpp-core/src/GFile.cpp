#include "GFile.h"

#include <new>

namespace {

ErrorCode CodeOf(platform::SystemError error, ErrorCode otherwise) {
    return error.IsNotFound() ? GFileSystem::kFileNotFound : otherwise;
}

}  // namespace

std::string GFileSystemSpec::FileName() const {
    const size_t separator = mPath.find_last_of(platform::kPathSeparator == '/' ? "/" : "/\\");
    return separator == std::string::npos ? mPath : mPath.substr(separator + 1);
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

ErrorCode GFile::Read(size_t size, std::vector<uint8_t>& bytes) {
    if (!mFile.IsOpen())
        return kFileNotOpen;
    try {
        bytes.resize(size);
    } catch (const std::bad_alloc&) {
        return CoreErrorCodes::kOutOfMemory;
    }
    size_t bytesRead = 0;
    const platform::SystemError error = mFile.ReadAt(mPosition, bytes.data(), size, bytesRead);
    bytes.resize(bytesRead);
    mPosition += bytesRead;
    return error ? CoreErrorCodes::kError : CoreErrorCodes::kSuccess;
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
