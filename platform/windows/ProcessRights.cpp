#include "ProcessRights.h"

// After windows.h, which it needs.
#include <aclapi.h>

#include <algorithm>
#include <utility>

#include "SecurityAttributes.h"
#include "UserIdentity.h"

namespace platform {
namespace {

/// The last of its numbers.
DWORD IntegrityOf(PSID label) {
    return *GetSidSubAuthority(label, *GetSidSubAuthorityCount(label) - 1u);
}

/// How far the process is trusted whose token that is.
std::optional<TrustLevel> TrustLevelOf(HANDLE token) {
    alignas(TOKEN_MANDATORY_LABEL) unsigned char label[sizeof(TOKEN_MANDATORY_LABEL) + SECURITY_MAX_SID_SIZE];
    DWORD isContainer = 0;
    DWORD size = 0;
    if (!GetTokenInformation(token, TokenIntegrityLevel, label, sizeof label, &size) ||
        !GetTokenInformation(token, TokenIsAppContainer, &isContainer, sizeof isContainer, &size))
        return std::nullopt;
    return TrustLevel{IntegrityOf(reinterpret_cast<TOKEN_MANDATORY_LABEL*>(label)->Label.Sid),
                      isContainer != 0};
}

DWORD IntegrityOfList(PACL labels) {
    void* entry = nullptr;
    for (DWORD index = 0; labels != nullptr && GetAce(labels, index, &entry); ++index) {
        auto* label = static_cast<SYSTEM_MANDATORY_LABEL_ACE*>(entry);
        if (label->Header.AceType == SYSTEM_MANDATORY_LABEL_ACE_TYPE)
            return IntegrityOf(&label->SidStart);
    }
    return SECURITY_MANDATORY_MEDIUM_RID;
}

bool IsElevatedToken(HANDLE token) {
    TOKEN_ELEVATION_TYPE type = TokenElevationTypeDefault;
    DWORD size = 0;
    return GetTokenInformation(token, TokenElevationType, &type, sizeof type, &size) &&
           type == TokenElevationTypeFull;
}

/// What a program makes belongs to the user, and not to the administrators that it no longer is one of.
bool SetOwnerAndRights(HANDLE token) {
    UserId user = ThisUser();
    if (user.empty())
        return false;
    TOKEN_OWNER owner{user.data()};
    PrivateToUser rights;
    BOOL isPresent = FALSE;
    BOOL isDefaulted = FALSE;
    TOKEN_DEFAULT_DACL list{};
    return rights.Attributes() != nullptr &&
           GetSecurityDescriptorDacl(rights.Attributes()->lpSecurityDescriptor, &isPresent, &list.DefaultDacl,
                                     &isDefaulted) &&
           SetTokenInformation(token, TokenOwner, &owner, sizeof owner) &&
           SetTokenInformation(token, TokenDefaultDacl, &list, sizeof list);
}

}  // namespace

std::optional<TrustLevel> TrustLevelOfProcess(HANDLE process) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(process, TOKEN_QUERY, &token))
        return std::nullopt;
    return TrustLevelOf(OwnedHandle(token).Get());
}

std::optional<DWORD> IntegrityOfObject(HANDLE object) {
    PACL labels = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetSecurityInfo(object, SE_KERNEL_OBJECT, LABEL_SECURITY_INFORMATION, nullptr, nullptr, nullptr,
                        &labels, &descriptor) != ERROR_SUCCESS)
        return std::nullopt;
    const DWORD integrity = IntegrityOfList(labels);
    LocalFree(descriptor);
    return integrity;
}

bool MayPassForUsers(const TrustLevel& other, DWORD own) {
    // More than the usual is not asked for: the agent has no more than that, whoever started it.
    return !other.isContainer && other.integrity >= std::min<DWORD>(own, SECURITY_MANDATORY_MEDIUM_RID);
}

bool MayPassForUsers(const TrustLevel& other) {
    static const std::optional<TrustLevel> own = TrustLevelOfProcess(GetCurrentProcess());
    return own && MayPassForUsers(other, own->integrity);
}

bool SetIntegrity(HANDLE token, WELL_KNOWN_SID_TYPE level) {
    unsigned char sid[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof sid;
    if (!CreateWellKnownSid(level, nullptr, sid, &size))
        return false;
    TOKEN_MANDATORY_LABEL label{{sid, SE_GROUP_INTEGRITY}};
    return SetTokenInformation(token, TokenIntegrityLevel, &label, sizeof label + size) != FALSE;
}

bool IsElevated() {
    HANDLE token = nullptr;
    return OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) &&
           IsElevatedToken(OwnedHandle(token).Get());
}

OwnedHandle MakeUnelevatedToken() {
    constexpr DWORD kRights = TOKEN_QUERY | TOKEN_DUPLICATE | TOKEN_ASSIGN_PRIMARY | TOKEN_ADJUST_DEFAULT;
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), kRights, &opened))
        return {};
    const OwnedHandle own(opened);
    HANDLE made = nullptr;
    if (!IsElevatedToken(own.Get()) ||
        !CreateRestrictedToken(own.Get(), LUA_TOKEN, 0, nullptr, 0, nullptr, 0, nullptr, &made))
        return {};
    OwnedHandle token(made);
    return SetIntegrity(token.Get(), WinMediumLabelSid) && SetOwnerAndRights(token.Get()) ? std::move(token)
                                                                                          : OwnedHandle();
}

}  // namespace platform
