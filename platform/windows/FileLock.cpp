#include "platform/FileLock.h"

#include "SecurityAttributes.h"
#include "WideText.h"
#include "WindowsFiles.h"

namespace platform {

struct FileLock::Handle {
    OwnedHandle file;
    std::string path;
};

FileLock::FileLock() = default;
FileLock::~FileLock() = default;
FileLock::FileLock(FileLock&&) noexcept = default;
FileLock& FileLock::operator=(FileLock&&) noexcept = default;

namespace {

OwnedHandle OpenLock(const std::string& path, DWORD access, DWORD disposition) {
    PrivateToUser rights;
    const std::wstring name = ToWidePath(path);
    return OwnedHandle(name.empty()
                           ? nullptr
                           : CreateFileW(name.c_str(), access, kShareAll, rights.Attributes(), disposition,
                                         FILE_FLAG_OPEN_REPARSE_POINT | NoImpersonation(name), nullptr));
}

/// A byte far behind what stands in the file: nobody reads what is locked. Earlier versions locked all of it.
SystemError Lock(const OwnedHandle& file, DWORD flags) {
    OVERLAPPED place{};
    place.OffsetHigh = MAXLONG;
    return ErrorUnless(LockFileEx(file.Get(), flags, 0, 1, 0, &place));
}

/// True also where that cannot be told.
bool StandsAt(const std::string& path, const OwnedHandle& file) {
    FileIdentity held;
    FileIdentity found;
    if (IdentityOf(file, held))
        return true;
    const SystemError error = IdentifyFile(path, found);
    return error ? !error.IsNotFound() : found == held;
}

}  // namespace

SystemError FileLock::Acquire(const std::string& path, bool wait) {
    mHandle.reset();
    OwnedHandle file;
    do {  // once more where the file was taken away before it was locked
        file = OpenLock(path, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS);
        if (!file.IsValid())
            return LastSystemError();
        if (const SystemError error =
                Lock(file, LOCKFILE_EXCLUSIVE_LOCK | (wait ? 0 : LOCKFILE_FAIL_IMMEDIATELY)))
            return error;
    } while (!StandsAt(path, file));
    mHandle = std::make_unique<Handle>(Handle{std::move(file), path});
    return {};
}

bool FileLock::IsHeldByAnyone(const std::string& path) {
    const OwnedHandle file = OpenLock(path, GENERIC_READ, OPEN_EXISTING);
    return file.IsValid() && Lock(file, LOCKFILE_FAIL_IMMEDIATELY).IsHeldByOther();
}

bool FileLock::IsInPlace() const {
    return mHandle && StandsAt(mHandle->path, mHandle->file);
}

SystemError FileLock::Write(std::string_view content) {
    if (!mHandle)
        return SystemError{ERROR_INVALID_HANDLE};
    const HANDLE file = mHandle->file.Get();
    if (!SetFilePointerEx(file, LARGE_INTEGER{}, nullptr, FILE_BEGIN) || !SetEndOfFile(file))
        return LastSystemError();
    return WriteAll(mHandle->file, content);
}

bool FileLock::IsHeld() const {
    return mHandle != nullptr;
}
void FileLock::Release() {
    mHandle.reset();  // a closed file is unlocked
}

}  // namespace platform
