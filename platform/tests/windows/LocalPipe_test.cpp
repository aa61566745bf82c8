// Named pipes against others who know the name.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it needs.
#include <aclapi.h>
#include <sddl.h>

#include "ProcessRights.h"
#include "TemporaryFolder.h"
#include "UserIdentity.h"
#include "platform/LocalStream.h"
#include "platform/Utf8Path.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

constexpr DWORD kBothWays = GENERIC_READ | GENERIC_WRITE;

class LocalPipeTest : public testing::Test {
protected:
    TemporaryFolder mFolder;
    const std::string mAddress = LocalStreamAddresses("Test", "Pipes", mFolder / "data").front();
    std::atomic<bool> mIsCancelled{false};
    asio::io_context mLoop;
    LocalAcceptor mAcceptor{mLoop, [](LocalStream) {}};
};

TEST_F(LocalPipeTest, SomebodyElsesPipeOfTheNameIsNotListenedAt) {
    const HANDLE foreign = CreateNamedPipeW(Utf8Path(mAddress).c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1,
                                            4096, 4096, 0, nullptr);
    ASSERT_NE(foreign, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(mAcceptor.Listen(mAddress).code);
    EXPECT_FALSE(mAcceptor.Listen(LocalStreamAddresses("Test", "Pipes", mFolder / "data").back()).code);
    CloseHandle(foreign);
}

TEST_F(LocalPipeTest, IsThisUsersAndOpenToNobodyElse) {
    ASSERT_FALSE(mAcceptor.Listen(mAddress).code);
    const HANDLE pipe = CreateFileW(Utf8Path(mAddress).c_str(), kBothWays | READ_CONTROL, 0, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_EQ(GetSecurityInfo(pipe, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                              nullptr, &descriptor),
              ERROR_SUCCESS);
    ASSERT_NE(list, nullptr) << "no list lets everybody in";
    ASSERT_EQ(list->AceCount, 1);
    void* entry = nullptr;
    ASSERT_TRUE(GetAce(list, 0, &entry));
    const auto* allowed = static_cast<const ACCESS_ALLOWED_ACE*>(entry);
    EXPECT_EQ(allowed->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    EXPECT_TRUE(IsThisUser(OwnerOfObject(pipe))) << "an administrator's would belong to all of them";
    EXPECT_EQ(IntegrityOfObject(pipe), DWORD{SECURITY_MANDATORY_MEDIUM_RID}) << "whatever this process has";
    UserId user = ThisUser();
    EXPECT_TRUE(EqualSid(const_cast<DWORD*>(&allowed->SidStart), user.data()));
    LocalFree(descriptor);
    CloseHandle(pipe);
}

TEST_F(LocalPipeTest, WhatTheUserConfinedIsNotTakenForHisAgent) {
    UserId user = ThisUser();
    char* owner = nullptr;
    ASSERT_TRUE(ConvertSidToStringSidA(user.data(), &owner));
    for (const char* level : {"LW", "ME"}) {
        const std::string text = std::string("O:") + owner + "S:(ML;;NW;;;" + level + ")";
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA(text.c_str(), SDDL_REVISION_1,
                                                                         &descriptor, nullptr));
        SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor, FALSE};
        const HANDLE pipe = CreateNamedPipeW(Utf8Path(mAddress).c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE,
                                             1, 4096, 4096, 0, &attributes);
        LocalStream stream(mLoop);
        PeerIdentity peer;
        ASSERT_FALSE(stream.Connect(mAddress, std::chrono::steady_clock::now() + 1s, mIsCancelled));
        ASSERT_FALSE(stream.IdentifyPeer(peer));
        EXPECT_EQ(peer.isSameUser, level[0] == 'M') << level;
        LocalFree(descriptor);
        CloseHandle(pipe);
    }
    LocalFree(owner);
    EXPECT_FALSE(MayPassForUsers({SECURITY_MANDATORY_LOW_RID}, SECURITY_MANDATORY_MEDIUM_RID));
    EXPECT_FALSE(MayPassForUsers({SECURITY_MANDATORY_LOW_RID}, SECURITY_MANDATORY_HIGH_RID));
    EXPECT_TRUE(MayPassForUsers({SECURITY_MANDATORY_MEDIUM_RID}, SECURITY_MANDATORY_HIGH_RID))
        << "the agent is not";
    EXPECT_TRUE(MayPassForUsers({SECURITY_MANDATORY_LOW_RID}, SECURITY_MANDATORY_LOW_RID));
    EXPECT_FALSE(MayPassForUsers({SECURITY_MANDATORY_LOW_RID, true}, SECURITY_MANDATORY_LOW_RID));
}

TEST_F(LocalPipeTest, ConnectsToPipesOfThisMachineAlone) {
    for (const char* address : {"", "C:\\Windows\\win.ini", R"(\\server\pipe\name)", R"(\\.\C:)"}) {
        LocalStream stream(mLoop);
        EXPECT_TRUE(stream.Connect(address, std::chrono::steady_clock::now() + 1s, mIsCancelled)) << address;
    }
}

}  // namespace
}  // namespace platform
