#include "UserIdentity.h"

// After windows.h, which it needs.
#include <aclapi.h>

#include <cstdlib>

#include "OwnedHandle.h"

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

}  // namespace platform
