// What is done with files in the same way on every system.
#include "platform/Files.h"

#include <algorithm>

#include "FilesInternal.h"
#include "platform/Utf8Path.h"

namespace platform {

namespace {

size_t EndOfFolder(const std::string& path) {
    return path.find_last_of(kPathSeparator == '/' ? "/" : "/\\") + 1;
}

}  // namespace

std::string FolderPart(const std::string& path) {
    return path.substr(0, EndOfFolder(path));
}

std::string NamePart(const std::string& path) {
    return path.substr(EndOfFolder(path));
}

std::string WithSlashes(std::string path) {
    std::replace(path.begin(), path.end(), kPathSeparator, '/');
    return path;
}

std::string FolderOf(const std::string& path) {
    const std::filesystem::path folder = Utf8Path(path).parent_path();
    return folder.empty() ? "." : Utf8Text(folder);
}

bool IsExistingFile(const std::string& path) {
    uint64_t size = 0;
    return !FileSize(path, size);
}

SystemError ReadWholeFile(const std::string& path, std::string& content, uint64_t sizeLimit) {
    ReadOnlyFile file;
    if (const SystemError error = file.Open(path))
        return error;
    uint64_t size = 0;
    if (const SystemError error = file.Size(size))
        return error;
    if (size > sizeLimit)
        return kFileTooLarge;
    std::string bytes(static_cast<size_t>(size), '\0');
    size_t bytesRead = 0;
    if (const SystemError error = file.ReadAt(0, bytes.data(), bytes.size(), bytesRead))
        return error;
    bytes.resize(bytesRead);
    content = std::move(bytes);
    return {};
}

void RemoveAbandonedWrites(const std::string& path) {
    const std::string beginning = Utf8Text(Utf8Path(path).filename()) + std::string(kTemporaryMark);
    std::error_code failure;
    std::filesystem::directory_iterator entry(Utf8Path(FolderOf(path)), failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        const std::string name = Utf8Text(entry->path().filename());
        std::error_code ignored;
        if (name.starts_with(beginning) && name.size() == beginning.size() + kTemporaryDigits)
            std::filesystem::remove(entry->path(), ignored);
    }
}

}  // namespace platform
