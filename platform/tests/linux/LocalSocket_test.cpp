// Local sockets in folders that others get at.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "TemporaryFolder.h"
#include "platform/Files.h"
#include "platform/LocalStream.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class LocalSocketTest : public testing::Test {
protected:
    LocalSocketTest() {
        fs::create_directory(mParent);
        fs::permissions(mParent, fs::perms::owner_all);
    }

    bool IsReached() {
        const std::atomic<bool> isCancelled{false};
        return !LocalStream(mLoop).Connect(mAddress, std::chrono::steady_clock::now() + 10s, isCancelled);
    }

    const TemporaryFolder mFolder;
    const std::string mParent = mFolder / "tmp";
    const std::string mSockets = mParent + "/sockets";
    // Of a length that sockets have room for, whatever the folder for temporary files is called.
    const std::string mAddress = mSockets + "/s";
    asio::io_context mLoop;
    LocalAcceptor mAcceptor{mLoop, [](LocalStream) {}};
};

TEST_F(LocalSocketTest, TakesThePlaceOfADeadProcesssSocketAndOfNothingElse) {
    mFolder.Write("tmp/sockets/s", "somebody's file");
    EXPECT_TRUE(mAcceptor.Listen(mAddress));
    EXPECT_TRUE(IsExistingFile(mAddress));
    fs::remove(mAddress);
    fs::create_symlink(mFolder.Write("file", "precious"), mAddress);
    EXPECT_TRUE(mAcceptor.Listen(mAddress));
    EXPECT_TRUE(IsExistingFile(mFolder / "file"));
    fs::remove(mAddress);
    auto dead = std::make_unique<LocalAcceptor>(mLoop, [](LocalStream) {});
    ASSERT_FALSE(dead->Listen(mAddress));
    fs::rename(mAddress, mAddress + "2");
    dead.reset();
    fs::rename(mAddress + "2", mAddress);
    EXPECT_FALSE(mAcceptor.Listen(mAddress));
    EXPECT_TRUE(IsReached());
    EXPECT_EQ(fs::status(mAddress).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(mSockets).permissions(), fs::perms::owner_all);
    mAcceptor.Close();
    EXPECT_FALSE(fs::exists(mSockets)) << "nothing else is in it";
}

TEST_F(LocalSocketTest, ListensOnlyWhereNobodyElseCanPutAnythingInItsPlace) {
    fs::create_directory(mFolder / "elsewhere");
    fs::create_directory_symlink(mFolder / "elsewhere", mSockets);
    EXPECT_TRUE(mAcceptor.Listen(mAddress));
    fs::remove(mSockets);
    for (const fs::perms others : {fs::perms::others_write, fs::perms::group_write}) {
        fs::permissions(mParent, fs::perms::owner_all | others);
        EXPECT_TRUE(mAcceptor.Listen(mAddress));
        EXPECT_FALSE(fs::exists(mSockets));
    }
    fs::permissions(mParent, fs::perms::all | fs::perms::sticky_bit);
    EXPECT_FALSE(mAcceptor.Listen(mAddress));
    EXPECT_TRUE(LocalAcceptor(mLoop, [](LocalStream) {}).Listen(mFolder / "missing/sockets/s").IsNotFound());
}

TEST_F(LocalSocketTest, AFolderThatIsSwappedMeanwhileCostsNobodyAFile) {
    fs::permissions(mParent, fs::perms::all | fs::perms::sticky_bit);
    const std::string victim = mFolder.Write("victim/s", "precious");
    const std::string link = mParent + "/link";
    fs::create_directory(mSockets);
    fs::create_directory_symlink(mFolder / "victim", link);
    std::atomic<bool> isOver{false};
    std::thread swapping([&] {
        while (!isOver)
            renameat2(AT_FDCWD, link.c_str(), AT_FDCWD, mSockets.c_str(), RENAME_EXCHANGE);
    });
    for (int start = 0; start < 300; ++start) {
        LocalAcceptor acceptor(mLoop, [](LocalStream) {});
        [[maybe_unused]] const SystemError error = acceptor.Listen(mAddress);
    }
    isOver = true;
    swapping.join();
    EXPECT_TRUE(IsExistingFile(victim));
}

}  // namespace
}  // namespace platform
