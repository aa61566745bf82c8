// Files by UTF-8 path.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/SystemError.h"

namespace platform {

/// '/' or '\\'.
extern const char kPathSeparator;

/// A path up to and with its last separator (Windows takes '/' for one as well); empty when it has none.
std::string FolderPart(const std::string& path);
/// What stands behind that.
std::string NamePart(const std::string& path);
/// The path with '/' for every separator, as URLs have it.
std::string WithSlashes(std::string path);

/// The path from a root on, relative to the current folder when it begins without one, and without "." and
/// ".." in between; it need not exist. Empty when there is none.
std::string AbsolutePath(const std::string& path);
/// True for a path that names the same file whatever the current folder and drive are.
bool IsFullPath(const std::string& path);

/// A file opened for reading; closes itself.
class ReadOnlyFile {
public:
    ReadOnlyFile();
    ~ReadOnlyFile();
    ReadOnlyFile(ReadOnlyFile&&) noexcept;
    ReadOnlyFile& operator=(ReadOnlyFile&&) noexcept;

    /// Opens an existing regular file, shared with readers, writers and deleters. A folder, a pipe or a
    /// device is refused without waiting for it.
    SystemError Open(const std::string& path);
    /// Reads up to `size` bytes at `offset` (bytes from the beginning); `bytesRead` is less only at the end
    /// of the file.
    SystemError ReadAt(uint64_t offset, void* buffer, size_t size, size_t& bytesRead);
    /// Size in bytes.
    SystemError Size(uint64_t& size) const;
    void Close();
    bool IsOpen() const;
    /// The descriptor or handle, which stays this object's, for others of this library; -1 when none is open.
    intptr_t NativeHandle() const;

private:
    struct Handle;
    std::unique_ptr<Handle> mHandle;
};

/// Size in bytes of the regular file at `path`.
SystemError FileSize(const std::string& path, uint64_t& size);
/// Time of last modification in whole seconds since 1970-01-01 UTC.
SystemError FileModificationTime(const std::string& path, int64_t& seconds);
/// True when a regular file can be found at `path`.
bool IsExistingFile(const std::string& path);

/// Whether what stands at the path itself is a link, to whatever. Windows: also a junction; not a file that its folder's
/// provider fetches when it is read.
bool IsLink(const std::string& path);

/// What stands at a path, told apart from all that ever stood there. All zero: nothing.
struct FileIdentity {
    uint64_t volume = 0;
    uint64_t file = 0;
    uint64_t birth = 0;  ///< when it was made; 0 where the file system does not say

    bool operator==(const FileIdentity&) const = default;
};
/// Of whatever is there, a link itself included.
SystemError IdentifyFile(const std::string& path, FileIdentity& identity);

/// Who may read a file that is made.
enum class FileRights {
    kThisUserOnly,
    kOfNewFiles  ///< as the user has it for any new file
};

/// The whole file. `sizeLimit` in bytes guards against surprises: a larger file is refused.
SystemError ReadWholeFile(const std::string& path, std::string& content, uint64_t sizeLimit);
/// Replaces the file's content so that a reader, or a system that stops half-way, finds the old or the new
/// one: temporary name, flush, rename, flush of the folder. Where that last flush fails, a reader finds the
/// new content, but the system may yet lose it.
SystemError WriteWholeFile(const std::string& path, std::string_view content,
                           FileRights rights = FileRights::kThisUserOnly);
/// Copies the regular file `source` to a name that is free. A reader, or a system that stops half-way, finds
/// the whole copy or none: temporary name in the same folder, flush, rename, flush of the folder. What stands
/// at `target` is never replaced: SystemError::IsExisting, at once. The copy has the rights of any new file.
SystemError CopyToNewFile(const std::string& source, const std::string& target);
/// Makes a new file of that content in the folder, for this user only and under a name that nobody can
/// foresee between `prefix` and `suffix`; nothing is left when it fails. `path`: its full path.
SystemError WriteTemporaryFile(const std::string& folder, const std::string& prefix,
                               const std::string& suffix, std::string_view content, std::string& path);
/// Removes the file; what is not there is no failure.
SystemError RemoveFile(const std::string& path);
/// Removes the temporary files that WriteWholeFile(path) left in processes that were killed. Only where a
/// lock keeps all others from writing that file meanwhile.
void RemoveAbandonedWrites(const std::string& path);
/// Makes the folder and those above it; succeeds when it is there already. With `privateToUser` a folder that
/// is made is closed to others, those above it included.
SystemError MakeFolders(const std::string& path, bool privateToUser = false);

/// A regular file that text is added to at its end, also by several processes at once, and that no process which is
/// started inherits; closes itself. Windows: while it is open, nobody can rename or remove it. One thread.
class AppendedFile {
public:
    AppendedFile();
    ~AppendedFile();
    AppendedFile(const AppendedFile&) = delete;
    AppendedFile& operator=(const AppendedFile&) = delete;

    /// Opens the file, or makes one that is for this user only. One that others may write to is closed to
    /// them. What is not a file, a link included, is refused without waiting for it.
    SystemError Open(const std::string& path);
    SystemError Append(std::string_view content);
    void Close();
    bool IsOpen() const;

private:
    struct Handle;
    std::unique_ptr<Handle> mHandle;
};

}  // namespace platform
