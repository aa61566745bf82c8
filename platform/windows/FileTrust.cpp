#include "platform/FileTrust.h"

#include <windows.h>
// After windows.h, which it needs.
#include <aclapi.h>

#include <utility>

#include "AccessRules.h"
#include "FilesInternal.h"
#include "OwnedHandle.h"
#include "WideText.h"
#include "WindowsFiles.h"
#include "platform/Processes.h"

namespace platform {
namespace {

/// What stands at the path itself. Only who may read or execute what is open keeps it from being renamed.
OwnedHandle OpenItself(const std::string& path, DWORD access, DWORD sharing) {
    const std::wstring name = ToWidePath(path);
    return OwnedHandle(name.empty()
                           ? nullptr
                           : CreateFileW(name.c_str(), access | READ_CONTROL | FILE_READ_ATTRIBUTES, sharing,
                                         nullptr, OPEN_EXISTING,
                                         FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

std::string_view FaultOf(const OwnedHandle& opened, Guarded kind) {
    BY_HANDLE_FILE_INFORMATION info{};
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!GetFileInformationByHandle(opened.Get(), &info) ||
        GetSecurityInfo(opened.Get(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                        nullptr, nullptr, nullptr, nullptr, &descriptor) != ERROR_SUCCESS)
        return "cannot be looked at";
    const std::string_view fault =
        FaultOf(descriptor, kind, Current<Processes>().IsElevated() ? UserId() : ThisUser());
    LocalFree(descriptor);
    return (info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ? "is a link" : fault;
}

bool IsRegular(const OwnedHandle& file) {
    BY_HANDLE_FILE_INFORMATION info{};
    return GetFileType(file.Get()) == FILE_TYPE_DISK && GetFileInformationByHandle(file.Get(), &info) &&
           (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

}  // namespace

struct JudgedFile::Handle {
    OwnedHandle folder;
    OwnedHandle file;
};

JudgedFile::JudgedFile() = default;
JudgedFile::~JudgedFile() = default;

SystemError JudgedFile::Open(const std::string& path, FileUse use, std::string& fault) {
    mHandle.reset();
    fault = path + " cannot be looked at";
    const bool isProgram = use == FileUse::kProgram;
    const std::string folderPath = FolderOf(path);
    // The folder first: while it is open, no other one can take its place.
    OwnedHandle folder = OpenItself(folderPath, FILE_LIST_DIRECTORY, kShareWriters);
    if (!folder.IsValid())
        return LastSystemError();
    OwnedHandle file = isProgram ? OpenItself(path, FILE_EXECUTE, kShareWriters)
                                 : OpenItself(path, FILE_READ_DATA, kShareWriters | FILE_SHARE_DELETE);
    if (!file.IsValid())
        return LastSystemError();
    if (!IsRegular(file))
        return SystemError{ERROR_INVALID_PARAMETER};
    const std::string_view ofFile = FaultOf(file, Guarded::kFile);
    const std::string_view ofFolder = FaultOf(folder, isProgram ? Guarded::kProgramFolder : Guarded::kFolder);
    fault.clear();
    if (!ofFile.empty())
        fault = path + " " + std::string(ofFile);
    else if (!ofFolder.empty())
        fault = folderPath + " " + std::string(ofFolder);
    mPath = path;
    mHandle = std::make_unique<Handle>(Handle{std::move(folder), std::move(file)});
    return {};
}

SystemError JudgedFile::Read(std::string& content, uint64_t sizeLimit) {
    if (!mHandle)
        return SystemError{ERROR_INVALID_HANDLE};
    std::string bytes(static_cast<size_t>(sizeLimit) + 1, '\0');
    size_t size = 0;
    for (DWORD count = 1; count != 0 && size < bytes.size(); size += count) {
        if (!ReadFile(mHandle->file.Get(), bytes.data() + size, static_cast<DWORD>(bytes.size() - size),
                      &count, nullptr))
            return LastSystemError();
    }
    if (size > sizeLimit)
        return kFileTooLarge;
    bytes.resize(size);
    content = std::move(bytes);
    return {};
}

}  // namespace platform
