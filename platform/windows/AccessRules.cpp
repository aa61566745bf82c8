#include "AccessRules.h"

#include <sddl.h>

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

bool IsTrusted(PSID identity, UserId& user) {
    return IsWellKnownSid(identity, WinLocalSystemSid) ||
           IsWellKnownSid(identity, WinBuiltinAdministratorsSid) || IsTrustedInstaller(identity) ||
           (!user.empty() && EqualSid(identity, user.data()));
}

/// Those who own the object, who are looked at by themselves.
bool IsOwner(PSID identity) {
    return IsWellKnownSid(identity, WinCreatorOwnerSid) || IsWellKnownSid(identity, WinCreatorOwnerRightsSid);
}

/// What makes it possible to put something else in the place of a file, by way of the file or of its folder.
ACCESS_MASK RightsToReplace(Guarded kind) {
    constexpr ACCESS_MASK kAlways = WRITE_DAC | WRITE_OWNER | DELETE | GENERIC_ALL;
    switch (kind) {
        case Guarded::kFile:
            return kAlways | FILE_WRITE_DATA | FILE_APPEND_DATA | GENERIC_WRITE;
        case Guarded::kFolder:
            return kAlways | FILE_DELETE_CHILD;
        case Guarded::kProgramFolder:
            break;
    }
    return kAlways | FILE_DELETE_CHILD | FILE_ADD_FILE | FILE_ADD_SUBDIRECTORY | GENERIC_WRITE;
}

bool Denies(const ACE_HEADER& entry) {
    return entry.AceType == ACCESS_DENIED_ACE_TYPE || entry.AceType == ACCESS_DENIED_OBJECT_ACE_TYPE ||
           entry.AceType == ACCESS_DENIED_CALLBACK_ACE_TYPE ||
           entry.AceType == ACCESS_DENIED_CALLBACK_OBJECT_ACE_TYPE;
}

bool AllowsOthers(const ACE_HEADER& entry, ACCESS_MASK rights, UserId& user) {
    if (Denies(entry) || (entry.AceFlags & INHERIT_ONLY_ACE) != 0)
        return false;
    // Of the kinds that allow, these two begin alike; the condition of the second may be met.
    if (entry.AceType != ACCESS_ALLOWED_ACE_TYPE && entry.AceType != ACCESS_ALLOWED_CALLBACK_ACE_TYPE)
        return true;
    const auto& allowed = reinterpret_cast<const ACCESS_ALLOWED_ACE&>(entry);
    const PSID who = const_cast<DWORD*>(&allowed.SidStart);
    return (allowed.Mask & rights) != 0 && !IsTrusted(who, user) && !IsOwner(who);
}

bool CanBeReplacedByOthers(PACL list, Guarded kind, UserId& user) {
    if (list == nullptr)  // everybody may do everything
        return true;
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        if (!GetAce(list, index, &entry) ||
            AllowsOthers(*static_cast<const ACE_HEADER*>(entry), RightsToReplace(kind), user))
            return true;
    }
    return false;
}

}  // namespace

std::string_view FaultOf(PSECURITY_DESCRIPTOR descriptor, Guarded kind, UserId user) {
    PSID owner = nullptr;
    PACL list = nullptr;
    BOOL isPresent = FALSE;
    BOOL isDefaulted = FALSE;
    if (!GetSecurityDescriptorOwner(descriptor, &owner, &isDefaulted) ||
        !GetSecurityDescriptorDacl(descriptor, &isPresent, &list, &isDefaulted))
        return "cannot be looked at";
    if (owner == nullptr || !IsTrusted(owner, user))
        return "belongs to somebody else";
    return !isPresent || CanBeReplacedByOthers(list, kind, user) ? "can be written to by others" : "";
}

}  // namespace platform
