// Files and paths of the foundation library.
#pragma once

#include <cstdint>
#include <string>

#include "ErrorCodes.h"
#include "platform/Files.h"

/// Names a file by its full path, UTF-8.
class GFileSystemSpec {
public:
    explicit GFileSystemSpec(std::string path) : mPath(std::move(path)) {}

    const std::string& Path() const { return mPath; }
    /// What follows the last dot of the last path component, as it stands; empty when there is none.
    std::string Extension() const;
    /// The last path component.
    std::string FileName() const;

private:
    std::string mPath;
};

/// A file opened for reading. Closes itself.
class GFile : public error_codes::GFile {
public:
    enum OpenMode : unsigned { eRead = 1, eBinary = 2 };
    enum Origin { eBeginning, eCurrent };

    /// GFileSystem::kFileNotFound when nothing is there; kOpenFailed when it is not a regular file or may not
    /// be read.
    [[nodiscard]] ErrorCode Open(const GFileSystemSpec& spec, unsigned mode);
    /// Moves the read position; `offset` in bytes from `origin`.
    [[nodiscard]] ErrorCode SetFilePosition(Origin origin, uint64_t offset);
    /// Reads `size` bytes into `buffer`, all or none that count: CoreErrorCodes::kError when the file ends
    /// before them or cannot be read.
    [[nodiscard]] ErrorCode Read(size_t size, void* buffer);
    [[nodiscard]] ErrorCode Close();

private:
    platform::ReadOnlyFile mFile;
    uint64_t mPosition = 0;
};

class GFileSystem : public error_codes::GFileSystem {
public:
    /// Size of a regular file in bytes. kFileNotFound, kInvalidPath for a folder or a device.
    [[nodiscard]] static ErrorCode OSGetFileSize(const GFileSystemSpec& spec, uint64_t& size);
};

/// File properties that the document events go by.
class VantorixFileUtils {
public:
    /// Seconds since 1970-01-01 UTC; 0 when there is no such file.
    static int64_t GetFileModificationDate(const std::string& path);
};
