#include "ProcessRights.h"

#include <utility>

#include "SecurityAttributes.h"
#include "UserIdentity.h"

namespace platform {
namespace {

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
