// Paths of shares and devices.
#include <gtest/gtest.h>

#include <filesystem>

#include "TemporaryFolder.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/Utf8Path.h"

TEST(Paths, AShareIsARoot) {
    EXPECT_EQ(platform::AbsolutePath(R"(\\server\share\a\..\für)"), R"(\\server\share\für)");
    EXPECT_EQ(platform::AbsolutePath("//server/share/./x"), R"(\\server\share\x)");
    EXPECT_EQ(platform::FullPath(R"(\\server\share\x\)"), R"(\\server\share\x)");
    EXPECT_EQ(platform::AbsolutePath(R"(\\?\C:\a\x)"), R"(\\?\C:\a\x)");
}

TEST(Paths, FoldersAreMadeBehindTheRoot) {
    const TemporaryFolder folder;
    const std::string made = platform::AbsolutePath(folder / "a/字");
    EXPECT_FALSE(platform::MakeFolders(R"(\\?\)" + made));
    EXPECT_TRUE(std::filesystem::is_directory(platform::Utf8Path(made)));
    EXPECT_FALSE(platform::MakeFolders(R"(\\.\)" + platform::AbsolutePath(folder / "b/c")));
    EXPECT_TRUE(std::filesystem::is_directory(platform::Utf8Path(folder / "b/c")));
}
