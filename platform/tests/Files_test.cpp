#include "platform/Files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "TemporaryFolder.h"

namespace fs = std::filesystem;

TEST(Files, AWrittenFileReplacesTheOldOneAndLeavesNothingBeside) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("preferences 字.json", "old");
    ASSERT_FALSE(platform::WriteWholeFile(path, "new content"));
    std::string content;
    ASSERT_FALSE(platform::ReadWholeFile(path, content, 100));
    EXPECT_EQ(content, "new content");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(Files, AFailedWriteKeepsTheOldFile) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "taken/inside");
    EXPECT_TRUE(platform::WriteWholeFile(folder / "taken", "text"));  // a folder stands there
    EXPECT_TRUE(platform::WriteWholeFile(folder / "missing/file", "text"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1);
}

TEST(Files, OnlyTemporaryFilesOfTheSameFileAreSweptAway) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("file.json", "kept");
    for (const char* kept : {"file.json.backup", "file.json.writing-", "file.json.writing-mine.txt",
                             "other.json.writing-abc123", "file.json.damaged-1"})
        folder.Write(kept, "");
    folder.Write("file.json.writing-abc123", "cut");
    folder.Write("file.json.writing-XYZxyz", "");
    platform::RemoveAbandonedWrites(path);
    EXPECT_FALSE(fs::exists(folder / "file.json.writing-abc123"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 6);
    platform::RemoveAbandonedWrites(folder / "missing/file");
}

TEST(Files, OnlyRegularFilesAreOpenedAndNothingBlocks) {
    const TemporaryFolder folder;
    platform::ReadOnlyFile file;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_TRUE(file.Open(folder / "pipe"));
    EXPECT_TRUE(file.Open(folder / "."));
    EXPECT_TRUE(file.Open("/dev/null"));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(platform::IsExistingFile(folder / "pipe"));
}

TEST(Files, AFileLargerThanTheLimitIsRefused) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("file", "12345");
    std::string content = "kept";
    EXPECT_TRUE(platform::ReadWholeFile(path, content, 4));
    EXPECT_EQ(content, "kept");
    EXPECT_FALSE(platform::ReadWholeFile(path, content, 5));
    EXPECT_EQ(content, "12345");
}

TEST(Files, FoldersAreMadeWithThoseAboveThem) {
    const TemporaryFolder folder;
    EXPECT_FALSE(platform::MakeFolders(folder / "a/b/c", true));
    EXPECT_EQ(fs::status(folder / "a/b/c").permissions(), fs::perms::owner_all);
    EXPECT_FALSE(platform::MakeFolders(folder / "a/b/c", true));
    folder.Write("file", "");
    EXPECT_TRUE(platform::MakeFolders(folder / "file/below"));
    EXPECT_TRUE(platform::MakeFolders(folder / "file"));
}

TEST(Files, ALockKeepsOthersOutUntilItIsReleased) {
    const TemporaryFolder folder;
    platform::FileLock first;
    platform::FileLock second;
    ASSERT_FALSE(first.Acquire(folder / "lock", false));
    EXPECT_TRUE(second.Acquire(folder / "lock", false));
    first.Release();
    EXPECT_FALSE(second.Acquire(folder / "lock", false));
    EXPECT_TRUE(second.IsHeld());
}
