#include "platform/Files.h"

#include <windows.h>
// After windows.h, which it needs.
#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

#include "FilesInternal.h"
#include "OwnedHandle.h"
#include "SecurityAttributes.h"
#include "WideText.h"
#include "WindowsFiles.h"

namespace platform {

const char kPathSeparator = '\\';
const SystemError kFileTooLarge{ERROR_FILE_TOO_LARGE};

DWORD NoImpersonation(std::wstring_view name) {
    if (name.starts_with(LR"(\\?\)"))
        name.remove_prefix(4);
    const bool isOnDrive = name.size() > 2 && name[1] == L':' && name[2] == L'\\';
    return isOnDrive ? 0 : SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
}

SystemError ErrorUnless(BOOL succeeded) {
    return succeeded ? SystemError{} : LastSystemError();
}

namespace {

/// One call reads or writes at most this much.
constexpr size_t kPieceSize = size_t{1} << 20;

OwnedHandle OpenForReading(const std::string& path) {
    const std::wstring name = ToWidePath(path);
    return OwnedHandle(name.empty() ? nullptr
                                    : CreateFileW(name.c_str(), GENERIC_READ, kShareAll, nullptr,
                                                  OPEN_EXISTING, NoImpersonation(name), nullptr));
}

/// A file that was not there before.
OwnedHandle CreateNew(const std::string& path, SECURITY_ATTRIBUTES* attributes) {
    const std::wstring name = ToWidePath(path);
    return OwnedHandle(name.empty() ? nullptr
                                    : CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ, attributes,
                                                  CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
}

SystemError ReadAttributes(const std::string& path, WIN32_FILE_ATTRIBUTE_DATA& attributes) {
    const std::wstring name = ToWidePath(path);
    return ErrorUnless(!name.empty() &&
                       GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &attributes));
}

bool IsFolder(const WIN32_FILE_ATTRIBUTE_DATA& attributes) {
    return (attributes.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

uint64_t Combine(DWORD high, DWORD low) {
    return uint64_t{high} << 32 | low;
}

/// False when the system has no random numbers to give.
bool AppendRandomDigits(std::string& text, size_t count) {
    constexpr std::string_view kDigits = "0123456789abcdefghijklmnopqrstuvwxyz";
    std::vector<unsigned char> bytes(count);
    if (BCryptGenRandom(nullptr, bytes.data(), static_cast<ULONG>(count), BCRYPT_USE_SYSTEM_PREFERRED_RNG) <
        0)
        return false;
    for (const unsigned char byte : bytes)
        text += kDigits[byte % kDigits.size()];
    return true;
}

/// Whoever may write to a folder may remove what is in it, or put something else in its place, also a file
/// that nobody is to write to. True when there was anything to clear.
bool ClearReadOnly(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0 &&
           SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
}

}  // namespace

SystemError MakeFileOfNewName(const std::string& beginning, size_t digits, const std::string& end,
                              SECURITY_ATTRIBUTES* attributes, OwnedHandle& file, std::string& path) {
    SystemError error{ERROR_FILE_EXISTS};
    while (error.IsExisting()) {
        path = beginning;
        if (!AppendRandomDigits(path, digits))
            return SystemError{ERROR_GEN_FAILURE};
        path += end;
        file = CreateNew(path, attributes);
        error = ErrorUnless(file.IsValid());
    }
    return error;
}

SystemError WriteAll(const OwnedHandle& file, std::string_view content) {
    while (!content.empty()) {
        DWORD written = 0;
        const auto size = static_cast<DWORD>(std::min(content.size(), kPieceSize));
        if (!WriteFile(file.Get(), content.data(), size, &written, nullptr))
            return LastSystemError();
        content.remove_prefix(written);
    }
    return {};
}

/// A virus scanner or an indexer may hold either file for a moment.
SystemError Rename(const std::string& from, const std::string& to, DWORD flags) {
    constexpr int kAttempts = 20;
    constexpr std::chrono::milliseconds kPause{25};
    const std::wstring target = ToWidePath(to);
    if (target.empty())
        return LastSystemError();
    for (int attempt = 1;; ++attempt) {
        const SystemError error = ErrorUnless(
            MoveFileExW(ToWidePath(from).c_str(), target.c_str(), flags | MOVEFILE_WRITE_THROUGH));
        const bool isTransient = error.code == ERROR_SHARING_VIOLATION || error.code == ERROR_ACCESS_DENIED;
        const DWORD attributes = GetFileAttributesW(target.c_str());
        const bool isFolder =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
        if (isTransient && (flags & MOVEFILE_REPLACE_EXISTING) != 0 && ClearReadOnly(target))
            continue;
        if (!isTransient || isFolder || attempt >= kAttempts)
            return error;
        std::this_thread::sleep_for(kPause);
    }
}

namespace {

SystemError WriteAndFlush(const OwnedHandle& file, std::string_view content) {
    const SystemError error = WriteAll(file, content);
    return error ? error : ErrorUnless(FlushFileBuffers(file.Get()));
}

SystemError CopyAll(ReadOnlyFile& source, const OwnedHandle& target) {
    std::vector<char> piece(kPieceSize);
    for (uint64_t offset = 0;;) {
        size_t size = 0;
        if (const SystemError error = source.ReadAt(offset, piece.data(), piece.size(), size))
            return error;
        if (size == 0)
            return ErrorUnless(FlushFileBuffers(target.Get()));
        if (const SystemError error = WriteAll(target, {piece.data(), size}))
            return error;
        offset += size;
    }
}

/// Gives the finished file its name, or takes it away.
SystemError Finish(SystemError error, OwnedHandle file, const std::string& temporary, const std::string& path,
                   DWORD flags) {
    file = OwnedHandle();  // an open file cannot be renamed
    if (!error)
        error = Rename(temporary, path, flags);
    if (error)
        DeleteFileW(ToWidePath(temporary).c_str());
    return error;
}

constexpr char kSeparators[] = "/\\";

/// How much of the path is its root, which nobody makes: a drive ("C:\"), a share ("\\server\share\"), or
/// either behind "\\?\" ("\\?\C:\", "\\?\UNC\server\share\").
size_t LengthOfRoot(const std::string& path) {
    const std::string beginning = WithSlashes(path.substr(0, 8));
    if (!beginning.starts_with("//"))
        return path.size() > 2 && path[1] == ':' ? 3 : 1;
    const bool isDevice = beginning.starts_with("//?/") || beginning.starts_with("//./");
    const bool isShare = !isDevice || _stricmp(beginning.c_str() + 4, "UNC/") == 0;
    size_t length = !isDevice ? 2 : isShare ? 8 : 4;
    for (int names = isShare ? 2 : 1; names > 0 && length < path.size(); --names)
        length = std::min(path.find_first_of(kSeparators, length), path.size() - 1) + 1;
    return length;
}

bool Exists(const std::string& path) {
    return GetFileAttributesW(ToWidePath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace

struct ReadOnlyFile::Handle {
    OwnedHandle file;
};

ReadOnlyFile::ReadOnlyFile() = default;
ReadOnlyFile::~ReadOnlyFile() = default;
ReadOnlyFile::ReadOnlyFile(ReadOnlyFile&&) noexcept = default;
ReadOnlyFile& ReadOnlyFile::operator=(ReadOnlyFile&&) noexcept = default;

SystemError ReadOnlyFile::Open(const std::string& path) {
    mHandle.reset();
    OwnedHandle file = OpenForReading(path);
    if (!file.IsValid())
        return LastSystemError();
    if (GetFileType(file.Get()) != FILE_TYPE_DISK)
        return SystemError{ERROR_INVALID_PARAMETER};
    mHandle = std::make_unique<Handle>(Handle{std::move(file)});
    return {};
}

SystemError ReadOnlyFile::ReadAt(uint64_t offset, void* buffer, size_t size, size_t& bytesRead) {
    bytesRead = 0;
    if (!mHandle)
        return SystemError{ERROR_INVALID_HANDLE};
    while (bytesRead < size) {
        OVERLAPPED position{};
        position.Offset = static_cast<DWORD>(offset + bytesRead);
        position.OffsetHigh = static_cast<DWORD>((offset + bytesRead) >> 32);
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(size - bytesRead, kPieceSize));
        if (!ReadFile(mHandle->file.Get(), static_cast<char*>(buffer) + bytesRead, wanted, &count,
                      &position)) {
            const SystemError error = LastSystemError();
            return error.code == ERROR_HANDLE_EOF ? SystemError{} : error;
        }
        if (count == 0)
            break;
        bytesRead += count;
    }
    return {};
}

SystemError ReadOnlyFile::Size(uint64_t& size) const {
    LARGE_INTEGER length{};
    if (!mHandle)
        return SystemError{ERROR_INVALID_HANDLE};
    if (!GetFileSizeEx(mHandle->file.Get(), &length))
        return LastSystemError();
    size = static_cast<uint64_t>(length.QuadPart);
    return {};
}

void ReadOnlyFile::Close() {
    mHandle.reset();
}
bool ReadOnlyFile::IsOpen() const {
    return mHandle != nullptr;
}

intptr_t ReadOnlyFile::NativeHandle() const {
    return mHandle ? reinterpret_cast<intptr_t>(mHandle->file.Get()) : -1;
}

SystemError FileSize(const std::string& path, uint64_t& size) {
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    if (const SystemError error = ReadAttributes(path, attributes))
        return error;
    if (IsFolder(attributes))
        return SystemError{ERROR_DIRECTORY};
    size = Combine(attributes.nFileSizeHigh, attributes.nFileSizeLow);
    return {};
}

SystemError FileModificationTime(const std::string& path, int64_t& seconds) {
    // FILETIME counts units of 100 ns from 1601-01-01 UTC.
    constexpr uint64_t kUnitsPerSecond = 10'000'000;
    constexpr int64_t kSecondsTo1970 = 11'644'473'600;
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    if (const SystemError error = ReadAttributes(path, attributes))
        return error;
    const uint64_t units =
        Combine(attributes.ftLastWriteTime.dwHighDateTime, attributes.ftLastWriteTime.dwLowDateTime);
    seconds = static_cast<int64_t>(units / kUnitsPerSecond) - kSecondsTo1970;
    return {};
}

SystemError WriteWholeFile(const std::string& path, std::string_view content, FileRights rights) {
    PrivateToUser userOnly;
    OwnedHandle file;
    std::string temporary;
    if (const SystemError error = MakeFileOfNewName(
            path + std::string(kTemporaryMark), kTemporaryDigits, "",
            rights == FileRights::kThisUserOnly ? userOnly.Attributes() : nullptr, file, temporary))
        return error;
    const SystemError error = WriteAndFlush(file, content);
    return Finish(error, std::move(file), temporary, path, MOVEFILE_REPLACE_EXISTING);
}

SystemError WriteTemporaryFile(const std::string& folder, const std::string& prefix,
                               const std::string& suffix, std::string_view content, std::string& path) {
    constexpr size_t kDigits = 10;
    PrivateToUser rights;
    OwnedHandle file;
    std::string name;
    if (const SystemError error = MakeFileOfNewName(folder + kPathSeparator + prefix, kDigits, suffix,
                                                    rights.Attributes(), file, name))
        return error;
    if (const SystemError error = WriteAll(file, content)) {
        file = OwnedHandle();
        DeleteFileW(ToWidePath(name).c_str());
        return error;
    }
    path = name;
    return {};
}

SystemError RemoveFile(const std::string& path) {
    const std::wstring name = ToWidePath(path);
    SystemError error = ErrorUnless(!name.empty() && DeleteFileW(name.c_str()));
    if (error.IsNotPermitted() && ClearReadOnly(name))
        error = ErrorUnless(DeleteFileW(name.c_str()));
    return error.IsNotFound() ? SystemError{} : error;
}

SystemError CopyToNewFile(const std::string& source, const std::string& target) {
    constexpr size_t kDigits = 10;
    if (Exists(target))
        return SystemError{ERROR_ALREADY_EXISTS};
    if (ToWidePath(target).empty())
        return LastSystemError();
    ReadOnlyFile file;
    if (const SystemError error = file.Open(source))
        return error;
    OwnedHandle copy;
    std::string temporary;
    const std::string folder = FolderOf(target);
    if (const SystemError error =
            MakeFileOfNewName(folder + kPathSeparator + ".copy-", kDigits, ".part", nullptr, copy, temporary))
        return error;
    const SystemError error = CopyAll(file, copy);
    return Finish(error, std::move(copy), temporary, target, 0);
}

SystemError MakeFolders(const std::string& path, bool privateToUser) {
    PrivateToUser rights(PrivateToUser::Kind::kFolder);
    for (size_t end = path.find_first_of(kSeparators, LengthOfRoot(path));;
         end = path.find_first_of(kSeparators, end + 1)) {
        const std::wstring name = ToWidePath(path.substr(0, end));
        if (!name.empty() && !CreateDirectoryW(name.c_str(), privateToUser ? rights.Attributes() : nullptr)) {
            const SystemError error = LastSystemError();
            const DWORD attributes = GetFileAttributesW(name.c_str());
            if (attributes == INVALID_FILE_ATTRIBUTES)
                return error;
            if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
                return SystemError{ERROR_DIRECTORY};
        }
        if (end == std::string::npos)
            return name.empty() ? LastSystemError() : SystemError{};
    }
}

/// The index is not given to another file; the time of creation does not matter here.
SystemError IdentityOf(const OwnedHandle& file, FileIdentity& identity) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!file.IsValid() || !GetFileInformationByHandle(file.Get(), &info))
        return LastSystemError();
    identity.volume = info.dwVolumeSerialNumber;
    identity.file = Combine(info.nFileIndexHigh, info.nFileIndexLow);
    return {};
}

bool IsLink(const std::string& path) {
    WIN32_FIND_DATAW found{};
    const std::wstring name = ToWidePath(path);
    // The search takes these for wildcards; what stands before them may be the prefix of long paths.
    const size_t wildcard = name.find_last_of(L"*?");
    if (name.empty() || (wildcard != std::wstring::npos && wildcard > 3))
        return false;
    const HANDLE search = FindFirstFileW(name.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    FindClose(search);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           IsReparseTagNameSurrogate(found.dwReserved0);
}

SystemError IdentifyFile(const std::string& path, FileIdentity& identity) {
    constexpr DWORD kItself = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
    const std::wstring name = ToWidePath(path);
    return IdentityOf(
        OwnedHandle(name.empty() ? nullptr
                                 : CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                               OPEN_EXISTING, kItself | NoImpersonation(name), nullptr)),
        identity);
}

struct AppendedFile::Handle {
    OwnedHandle file;
};

AppendedFile::AppendedFile() = default;
AppendedFile::~AppendedFile() = default;

SystemError AppendedFile::Open(const std::string& path) {
    mHandle.reset();
    PrivateToUser rights;
    const std::wstring name = ToWidePath(path);
    OwnedHandle file(name.empty()
                         ? nullptr
                         : CreateFileW(name.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES, kShareWriters,
                                       rights.Attributes(), OPEN_ALWAYS,
                                       FILE_FLAG_OPEN_REPARSE_POINT | NoImpersonation(name), nullptr));
    BY_HANDLE_FILE_INFORMATION info{};
    if (!file.IsValid())
        return LastSystemError();
    if (GetFileType(file.Get()) != FILE_TYPE_DISK || !GetFileInformationByHandle(file.Get(), &info) ||
        (info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        return SystemError{ERROR_INVALID_PARAMETER};
    mHandle = std::make_unique<Handle>(Handle{std::move(file)});
    return {};
}

SystemError AppendedFile::Append(std::string_view content) {
    return mHandle ? WriteAll(mHandle->file, content) : SystemError{ERROR_INVALID_HANDLE};
}

void AppendedFile::Close() {
    mHandle.reset();
}
bool AppendedFile::IsOpen() const {
    return mHandle != nullptr;
}

}  // namespace platform
