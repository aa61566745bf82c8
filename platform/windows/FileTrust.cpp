#include "platform/FileTrust.h"

#include <windows.h>
// After windows.h, which it needs.
#include <aclapi.h>
#include <sddl.h>

#include "UserIdentity.h"
#include "WideText.h"
#include "platform/Files.h"

namespace platform {
namespace {

/// The service that owns the system's own programs, "NT SERVICE\TrustedInstaller".
constexpr wchar_t kTrustedInstaller[] = L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";

bool IsTrustedInstaller(PSID identity) {
    PSID installer = nullptr;
    if (!ConvertStringSidToSidW(kTrustedInstaller, &installer))
        return false;
    const bool isEqual = EqualSid(identity, installer) != FALSE;
    LocalFree(installer);
    return isEqual;
}

bool IsTrusted(PSID identity) {
    UserId user = ThisUser();
    return IsWellKnownSid(identity, WinLocalSystemSid) ||
           IsWellKnownSid(identity, WinBuiltinAdministratorsSid) ||
           IsWellKnownSid(identity, WinCreatorOwnerSid) || IsTrustedInstaller(identity) ||
           (!user.empty() && EqualSid(identity, user.data()));
}

/// What makes it possible to put something else in the place of a file, by way of the file or of its folder. That others
/// may make new files in the folder, as below C:\ProgramData, does not.
ACCESS_MASK RightsToReplace(bool isFolder) {
    constexpr ACCESS_MASK kAlways = WRITE_DAC | WRITE_OWNER | DELETE | GENERIC_ALL;
    return isFolder ? kAlways | FILE_DELETE_CHILD
                    : kAlways | FILE_WRITE_DATA | FILE_APPEND_DATA | GENERIC_WRITE;
}

bool CanBeReplacedByOthers(PACL list, bool isFolder) {
    if (list == nullptr)  // everybody may do everything
        return true;
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        if (!GetAce(list, index, &entry))
            return true;
        const auto* allowed = static_cast<const ACCESS_ALLOWED_ACE*>(entry);
        const bool counts = allowed->Header.AceType == ACCESS_ALLOWED_ACE_TYPE &&
                            (allowed->Header.AceFlags & INHERIT_ONLY_ACE) == 0 &&
                            (allowed->Mask & RightsToReplace(isFolder)) != 0;
        if (counts && !IsTrusted(const_cast<DWORD*>(&allowed->SidStart)))
            return true;
    }
    return false;
}

std::string FaultOf(const std::string& path, bool isFolder) {
    PSID owner = nullptr;
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetNamedSecurityInfoW(ToWidePath(path).c_str(), SE_FILE_OBJECT,
                              OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &owner, nullptr, &list,
                              nullptr, &descriptor) != ERROR_SUCCESS)
        return path + " cannot be looked at";
    std::string fault;
    if (owner == nullptr || !IsTrusted(owner))
        fault = path + " belongs to somebody else";
    else if (CanBeReplacedByOthers(list, isFolder))
        fault = path + " can be written to by others";
    LocalFree(descriptor);
    return fault;
}

}  // namespace

std::string WhyUntrusted(const std::string& path) {
    std::string fault = FaultOf(path, false);
    return fault.empty() ? FaultOf(FolderPart(path), true) : fault;
}

}  // namespace platform
