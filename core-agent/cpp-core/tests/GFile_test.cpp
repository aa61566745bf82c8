#include "GFile.h"

#include <gtest/gtest.h>

#include "TemporaryFolder.h"

TEST(GFileSystemSpec, TheExtensionIsWhatFollowsTheLastDotOfTheName) {
    for (const auto& [path, extension] : {std::pair("/a.b/name", ""),
                                          {"/a/name.tar.AI", "AI"},
                                          {"/a/.ai", "ai"},
                                          {"/a/name.", ""},
                                          {"name.pdf", "pdf"}})
        EXPECT_EQ(GFileSystemSpec(path).Extension(), extension) << path;
    EXPECT_EQ(GFileSystemSpec("/a/name.pdf").FileName(), "name.pdf");
}

TEST(GFile, ReadsAllThatWasAskedForOrNothing) {
    const TemporaryFolder folder;
    GFile file;
    ASSERT_EQ(file.Open(GFileSystemSpec(folder.Write("file", "0123")), GFile::eRead), 0u);
    char bytes[4];
    EXPECT_EQ(file.Read(5, bytes), CoreErrorCodes::kError);
    for (const char digit : {'0', '1'}) {
        EXPECT_EQ(file.Read(1, bytes), 0u);
        EXPECT_EQ(bytes[0], digit);
    }
    EXPECT_EQ(file.Close(), 0u);
    EXPECT_EQ(file.Read(1, bytes), GFile::kFileNotOpen);
    EXPECT_EQ(file.Close(), GFile::kFileNotOpen);
    EXPECT_EQ(file.Open(GFileSystemSpec(folder / "."), GFile::eRead), GFile::kOpenFailed);
    EXPECT_EQ(VantorixFileUtils::GetFileModificationDate(folder / "missing"), 0);
}
