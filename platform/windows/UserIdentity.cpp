#include "UserIdentity.h"

// After windows.h, which it needs.
#include <aclapi.h>

#include <cstdlib>
#include <utility>

#include "SecurityAttributes.h"

namespace platform {
namespace {

UserId Copy(PSID identity) {
    const auto* bytes = static_cast<const unsigned char*>(identity);
    return identity == nullptr ? UserId() : UserId(bytes, bytes + GetLengthSid(identity));
}

UserId UserOfToken(HANDLE token) {
    DWORD size = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &size);
    std::vector<unsigned char> information(size);
    if (size == 0 || !GetTokenInformation(token, TokenUser, information.data(), size, &size))
        return {};
    return Copy(reinterpret_cast<TOKEN_USER*>(information.data())->User.Sid);
}

/// Whether the process has rights of an administrator that its user confirmed, and could have been without.
bool IsElevated(HANDLE token) {
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

const UserId& ThisUser() {
    static const UserId user = UserOfProcess(GetCurrentProcess());
    return user;
}

UserId UserOfProcess(HANDLE process) {
    HANDLE token = nullptr;
    return OpenProcessToken(process, TOKEN_QUERY, &token) ? UserOfToken(OwnedHandle(token).Get()) : UserId();
}

UserId UserOfPipeClient(HANDLE pipe) {
    if (!ImpersonateNamedPipeClient(pipe))
        return {};
    HANDLE opened = nullptr;
    // The client's token is opened by this process's own rights.
    const bool isOpened = OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &opened) != FALSE;
    const OwnedHandle token(opened);
    if (!RevertToSelf())
        std::abort();  // nothing may go on in somebody else's name
    return isOpened ? UserOfToken(token.Get()) : UserId();
}

UserId OwnerOfObject(HANDLE object) {
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetSecurityInfo(object, SE_KERNEL_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr,
                        nullptr, &descriptor) != ERROR_SUCCESS)
        return {};
    UserId copy = Copy(owner);
    LocalFree(descriptor);
    return copy;
}

bool IsThisUser(const UserId& user) {
    return !user.empty() && user == ThisUser();
}

bool SetIntegrity(HANDLE token, WELL_KNOWN_SID_TYPE level) {
    unsigned char sid[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof sid;
    if (!CreateWellKnownSid(level, nullptr, sid, &size))
        return false;
    TOKEN_MANDATORY_LABEL label{{sid, SE_GROUP_INTEGRITY}};
    return SetTokenInformation(token, TokenIntegrityLevel, &label, sizeof label + size) != FALSE;
}

OwnedHandle MakeUnelevatedToken() {
    constexpr DWORD kRights = TOKEN_QUERY | TOKEN_DUPLICATE | TOKEN_ASSIGN_PRIMARY | TOKEN_ADJUST_DEFAULT;
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), kRights, &opened))
        return {};
    const OwnedHandle own(opened);
    HANDLE made = nullptr;
    if (!IsElevated(own.Get()) ||
        !CreateRestrictedToken(own.Get(), LUA_TOKEN, 0, nullptr, 0, nullptr, 0, nullptr, &made))
        return {};
    OwnedHandle token(made);
    return SetIntegrity(token.Get(), WinMediumLabelSid) && SetOwnerAndRights(token.Get()) ? std::move(token)
                                                                                          : OwnedHandle();
}

}  // namespace platform
