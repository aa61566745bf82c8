#include "platform/PrivateFolder.h"

#include <windows.h>
// After windows.h, which it needs.
#include <aclapi.h>

#include "SecurityAttributes.h"
#include "UserIdentity.h"
#include "WideText.h"
#include "platform/Files.h"

namespace platform {
namespace {

/// Who owns a folder and who gets at it, as the system keeps it.
class FolderSecurity {
public:
    explicit FolderSecurity(const std::wstring& folder) {
        constexpr SECURITY_INFORMATION kWanted = OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
        GetNamedSecurityInfoW(folder.c_str(), SE_FILE_OBJECT, kWanted, &mOwner, nullptr, nullptr, nullptr,
                              &mDescriptor);
    }
    ~FolderSecurity() { LocalFree(mDescriptor); }
    FolderSecurity(const FolderSecurity&) = delete;
    FolderSecurity& operator=(const FolderSecurity&) = delete;

    /// An administrator's folders may belong to the group of administrators.
    bool IsOwnedByThisUser() const {
        UserId user = ThisUser();
        return mOwner != nullptr && !user.empty() &&
               (EqualSid(mOwner, user.data()) || IsWellKnownSid(mOwner, WinBuiltinAdministratorsSid));
    }
    /// Whether nothing is handed down to it from above, as in a folder that was closed once.
    bool IsProtected() const {
        SECURITY_DESCRIPTOR_CONTROL control = 0;
        DWORD revision = 0;
        return mDescriptor != nullptr && GetSecurityDescriptorControl(mDescriptor, &control, &revision) &&
               (control & SE_DACL_PROTECTED) != 0;
    }

private:
    PSID mOwner = nullptr;
    PSECURITY_DESCRIPTOR mDescriptor = nullptr;
};

/// Also to what is in the folder already: its full path is enough to reach it.
SystemError CloseToOthers(std::wstring folder) {
    PrivateToUser rights(PrivateToUser::Kind::kFolder);
    if (rights.Attributes() == nullptr)
        return SystemError{ERROR_ACCESS_DENIED};
    BOOL isPresent = FALSE;
    BOOL isDefaulted = FALSE;
    PACL list = nullptr;
    GetSecurityDescriptorDacl(rights.Attributes()->lpSecurityDescriptor, &isPresent, &list, &isDefaulted);
    const DWORD error = SetNamedSecurityInfoW(folder.data(), SE_FILE_OBJECT,
                                              DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
                                              nullptr, nullptr, list, nullptr);
    return SystemError{static_cast<int>(error)};
}

SystemError CloseFolder(const std::string& path, bool& wasOpen) {
    const std::wstring folder = ToWidePath(path);
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return LastSystemError();
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        return SystemError{ERROR_DIRECTORY};
    const FolderSecurity security(folder);
    if (!security.IsOwnedByThisUser())
        return SystemError{ERROR_ACCESS_DENIED};
    wasOpen = !security.IsProtected();
    return wasOpen ? CloseToOthers(folder) : SystemError{};
}

}  // namespace

SystemError MakePrivateFolder(const std::string& path) {
    if (const SystemError error = MakeFolders(path, true))
        return error;
    bool wasOpen = false;
    return CloseFolder(path, wasOpen);
}

int CloseFoldersToOthers(const std::string& path) {
    bool wasOpen = false;
    return !CloseFolder(path, wasOpen) && wasOpen ? 1 : 0;
}

std::string LockedOutOwner(const std::string&, std::string&) {
    return {};
}

void KeepNewFilesPrivate() {}

}  // namespace platform
