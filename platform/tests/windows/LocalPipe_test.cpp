// Named pipes against others who know the name.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it needs.
#include <aclapi.h>

#include <thread>

#include "TemporaryFolder.h"
#include "UserIdentity.h"
#include "platform/LocalStream.h"
#include "platform/Utf8Path.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

constexpr DWORD kBothWays = GENERIC_READ | GENERIC_WRITE;

/// A pipe of one place, made by somebody who knows nothing of us.
class ForeignPipe {
public:
    explicit ForeignPipe(const std::string& address)
        : mName(Utf8Path(address).wstring()),
          mHandle(CreateNamedPipeW(mName.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1, 4096, 4096, 0,
                                   nullptr)) {}
    ~ForeignPipe() { CloseHandle(mHandle); }
    ForeignPipe(const ForeignPipe&) = delete;
    ForeignPipe& operator=(const ForeignPipe&) = delete;

    HANDLE Connect() { return CreateFileW(mName.c_str(), kBothWays, 0, nullptr, OPEN_EXISTING, 0, nullptr); }
    void FreePlace() {
        DisconnectNamedPipe(mHandle);
        ConnectNamedPipe(mHandle, nullptr);
    }

private:
    const std::wstring mName;
    const HANDLE mHandle;
};

class LocalPipeTest : public testing::Test {
protected:
    asio::error_code Connect(std::chrono::milliseconds limit) {
        return LocalStream(mLoop).Connect(mAddress, std::chrono::steady_clock::now() + limit, mIsCancelled);
    }

    TemporaryFolder mFolder;
    const std::string mAddress = LocalStreamAddresses("Test", "Pipes", mFolder / "data").front();
    std::atomic<bool> mIsCancelled{false};
    asio::io_context mLoop;
    LocalAcceptor mAcceptor{mLoop, [](LocalStream) {}};
};

TEST_F(LocalPipeTest, SomebodyElsesPipeOfTheNameIsNotListenedAt) {
    const ForeignPipe foreign(mAddress);
    EXPECT_TRUE(mAcceptor.Listen(mAddress).code);
    EXPECT_FALSE(mAcceptor.Listen(LocalStreamAddresses("Test", "Pipes", mFolder / "data").back()).code);
}

TEST_F(LocalPipeTest, IsOpenToThisUserAlone) {
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
    std::vector<unsigned char> user = UserOfProcess(GetCurrentProcess());
    EXPECT_TRUE(EqualSid(const_cast<DWORD*>(&allowed->SidStart), user.data()));
    LocalFree(descriptor);
    CloseHandle(pipe);
}

TEST_F(LocalPipeTest, WaitsForAPlaceUntilTheDeadlineOrACancellation) {
    ForeignPipe busy(mAddress);
    const HANDLE first = busy.Connect();
    ASSERT_NE(first, INVALID_HANDLE_VALUE);
    EXPECT_EQ(Connect(200ms), asio::error::timed_out);
    const auto connectWhile = [&](const std::function<void()>& change) {
        std::thread changing([&] {
            std::this_thread::sleep_for(100ms);
            change();
        });
        const asio::error_code result = Connect(1h);
        changing.join();
        return result;
    };
    EXPECT_EQ(connectWhile([&] { mIsCancelled = true; }), asio::error::operation_aborted);
    mIsCancelled = false;
    EXPECT_FALSE(connectWhile([&] {
        CloseHandle(first);
        busy.FreePlace();
    }));
}

TEST_F(LocalPipeTest, ConnectsToPipesOfThisMachineAlone) {
    for (const char* address : {"", "C:\\Windows\\win.ini", R"(\\server\pipe\name)", R"(\\.\C:)"}) {
        LocalStream stream(mLoop);
        EXPECT_TRUE(stream.Connect(address, std::chrono::steady_clock::now() + 1s, mIsCancelled)) << address;
    }
}

}  // namespace
}  // namespace platform
