#include "UserIdentity.h"

#include <sddl.h>

#include "OwnedHandle.h"

namespace platform {
namespace {

std::wstring TextOf(PSID user) {
    wchar_t* text = nullptr;
    if (!ConvertSidToStringSidW(user, &text))
        return {};
    std::wstring copy = text;
    LocalFree(text);
    return copy;
}

}  // namespace

std::vector<unsigned char> UserOfProcess(HANDLE process) {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(process, TOKEN_QUERY, &opened))
        return {};
    const OwnedHandle token(opened);
    DWORD size = 0;
    GetTokenInformation(token.Get(), TokenUser, nullptr, 0, &size);
    std::vector<unsigned char> information(size);
    if (size == 0 || !GetTokenInformation(token.Get(), TokenUser, information.data(), size, &size))
        return {};
    const PSID user = reinterpret_cast<TOKEN_USER*>(information.data())->User.Sid;
    const auto* bytes = static_cast<const unsigned char*>(user);
    return {bytes, bytes + GetLengthSid(user)};
}

bool IsOfThisUser(HANDLE process) {
    static const std::vector<unsigned char> thisUser = UserOfProcess(GetCurrentProcess());
    return !thisUser.empty() && UserOfProcess(process) == thisUser;
}

PrivateToUser::PrivateToUser(Kind kind) {
    std::vector<unsigned char> user = UserOfProcess(GetCurrentProcess());
    const std::wstring name = user.empty() ? std::wstring() : TextOf(user.data());
    if (name.empty())
        return;
    // Security descriptor definition language: a protected list that allows everything to those named, and is
    // handed down to files and folders inside.
    const std::wstring inherited = kind == Kind::kFolder ? L"OICI" : L"";
    const std::vector<std::wstring> everyone{name, L"SY", L"BA"};
    std::wstring rights = L"D:P";
    for (size_t index = 0; index < (kind == Kind::kPipe ? 1 : everyone.size()); ++index)
        rights += L"(A;" + inherited + L";GA;;;" + everyone[index] + L")";
    ConvertStringSecurityDescriptorToSecurityDescriptorW(rights.c_str(), SDDL_REVISION_1,
                                                         &mAttributes.lpSecurityDescriptor, nullptr);
}

PrivateToUser::~PrivateToUser() {
    LocalFree(mAttributes.lpSecurityDescriptor);
}

}  // namespace platform
