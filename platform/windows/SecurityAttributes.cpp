#include "SecurityAttributes.h"

#include <sddl.h>

#include <string>
#include <utility>

#include "UserIdentity.h"

namespace platform {
namespace {

std::wstring TextOf(UserId user) {
    wchar_t* text = nullptr;
    if (user.empty() || !ConvertSidToStringSidW(user.data(), &text))
        return {};
    std::wstring copy = text;
    LocalFree(text);
    return copy;
}

/// In the security descriptor definition language: a protected list of who may do what.
std::wstring RightsText(PrivateToUser::Kind kind, const std::wstring& user) {
    using Kind = PrivateToUser::Kind;
    const auto allow = [&](const wchar_t* rights, const std::wstring& who) {
        return std::wstring(kind == Kind::kFolder ? L"(A;OICI;" : L"(A;;") + rights + L";;;" + who + L")";
    };
    std::wstring text = L"D:P" + allow(L"GA", user);
    // Made by an administrator it would belong to all of them, whom nobody else can tell from strangers; and it
    // is open to the user's programs that have no such rights. Those that he confined neither write to it nor
    // take a place at it.
    if (kind == Kind::kPipe)
        return L"O:" + user + text + L"S:(ML;;NWNR;;;ME)";
    text += allow(L"GA", L"SY") + allow(L"GA", L"BA");
    if (kind == Kind::kFont) {
        constexpr wchar_t kFontCache[] = L"LS";             // the service runs as LOCAL SERVICE
        constexpr wchar_t kConfined[] = L"AC";              // all application packages
        constexpr wchar_t kMoreConfined[] = L"S-1-15-2-2";  // all restricted ones
        for (const wchar_t* reader : {kFontCache, kConfined, kMoreConfined})
            text += allow(L"GR", reader);
    }
    return text;
}

}  // namespace

PrivateToUser::PrivateToUser(Kind kind) {
    const std::wstring user = TextOf(ThisUser());
    if (!user.empty())
        ConvertStringSecurityDescriptorToSecurityDescriptorW(RightsText(kind, user).c_str(), SDDL_REVISION_1,
                                                             &mAttributes.lpSecurityDescriptor, nullptr);
}

PrivateToUser::~PrivateToUser() {
    LocalFree(mAttributes.lpSecurityDescriptor);
}

}  // namespace platform
