#include "platform/Files.h"
#include "platform/FileLock.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "TemporaryFolder.h"
#include "platform/Utf8Path.h"

namespace fs = std::filesystem;

namespace {

class Files : public testing::Test {
protected:
    /// What the file holds; "none" when it cannot be read.
    static std::string Content(const std::string& path) {
        std::string content;
        return platform::ReadWholeFile(path, content, 4 << 20) ? "none" : content;
    }
    long Count() const {
        return std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator());
    }

    const TemporaryFolder folder;
};

}  // namespace

TEST_F(Files, AWrittenFileReplacesTheOldOneAndLeavesNothingBeside) {
    const std::string path = folder.Write("preferences 字.json", "old");
    ASSERT_FALSE(platform::WriteWholeFile(path, "new content"));
    fs::create_directories(platform::Utf8Path(folder / "taken/inside"));
    EXPECT_TRUE(platform::WriteWholeFile(folder / "taken", "text"));  // a folder stands there
    EXPECT_TRUE(platform::WriteWholeFile(folder / "missing/file", "text"));
    EXPECT_EQ(Content(path), "new content");
    EXPECT_EQ(Count(), 2);
}

TEST_F(Files, ACopyReplacesNothing) {
    const std::string content(3 << 20, 'x');
    const std::string source = folder.Write("source", content);
    const std::string taken = folder.Write("taken", "");
    ASSERT_FALSE(platform::CopyToNewFile(source, folder / "copy 字"));
    EXPECT_TRUE(Content(folder / "copy 字") == content);
    for (const char* name : {"taken", "."})
        EXPECT_TRUE(platform::CopyToNewFile(source, folder / name).IsExisting()) << name;
    EXPECT_EQ(platform::IsExistingFile(taken) ? fs::file_size(platform::Utf8Path(taken)) : 1, 0u);
    const platform::SystemError absent = platform::CopyToNewFile(folder / "absent", folder / "new");
    EXPECT_TRUE(absent.IsNotFound());
    EXPECT_NE(platform::SystemErrorText(absent), platform::SystemErrorText({987654}));
    EXPECT_NE(platform::SystemErrorText(absent), "Null message");
    EXPECT_FALSE(absent.IsNotPermitted() || absent.IsExisting() || absent.IsDiskFull());
    EXPECT_TRUE(platform::CopyToNewFile(source, folder / "absent/new").IsNotFound());
    EXPECT_TRUE(platform::CopyToNewFile(source, folder / std::string(256, 'x')).IsPathTooLong());
    EXPECT_EQ(Count(), 3);
}

TEST_F(Files, OnlyTemporaryFilesOfTheSameFileAreSweptAway) {
    const std::string path = folder.Write("file.json", "kept");
    for (const char* kept : {"file.json.backup", "file.json.writing-", "file.json.writing-mine.txt",
                             "other.json.writing-abc123", "file.json.damaged-1"})
        folder.Write(kept, "");
    folder.Write("file.json.writing-abc123", "cut");
    folder.Write("file.json.writing-XYZxyz", "");
    platform::RemoveAbandonedWrites(path);
    EXPECT_FALSE(fs::exists(platform::Utf8Path(folder / "file.json.writing-abc123")));
    EXPECT_EQ(Count(), 6);
    platform::RemoveAbandonedWrites(folder / "missing/file");
}

TEST_F(Files, ALockKeepsOthersOutUntilItIsReleasedAndTellsThemWhoHoldsIt) {
    const std::string path = folder / "lock";
    EXPECT_FALSE(platform::FileLock::IsHeldByAnyone(path));
    EXPECT_EQ(Count(), 0);
    platform::FileLock lock, second;
    EXPECT_TRUE(lock.Write("x"));
    ASSERT_FALSE(lock.Acquire(path, false));
    EXPECT_TRUE(second.Acquire(path, false));
    EXPECT_TRUE(platform::FileLock::IsHeldByAnyone(path));
    EXPECT_FALSE(lock.Write("somewhat longer"));
    EXPECT_FALSE(lock.Write("short"));
    EXPECT_EQ(Content(path), "short");
    lock.Release();
    EXPECT_FALSE(platform::FileLock::IsHeldByAnyone(path));
    EXPECT_FALSE(lock.IsInPlace());
    EXPECT_FALSE(second.Acquire(path, false));
    EXPECT_TRUE(second.IsHeld());
}

TEST_F(Files, ALockKnowsWhetherItsFileIsStillTheOneAtItsPath) {
    const std::string path = folder / "lock";
    for (const bool isReplaced : {false, true}) {
        platform::FileLock lock;
        ASSERT_FALSE(lock.Acquire(path, false));
        EXPECT_TRUE(lock.IsInPlace());
        fs::rename(platform::Utf8Path(path), platform::Utf8Path(folder / "moved"));
        if (isReplaced)
            folder.Write("lock", "x");
        EXPECT_FALSE(lock.IsInPlace());
        EXPECT_FALSE(platform::FileLock().Acquire(path, false)) << "it is another lock";
    }
}

TEST_F(Files, APathMayBeLong) {
    std::string name = "x";
    for (int depth = 0; depth < 12; ++depth)
        name = std::string(40, 'y') + "/" + name;
    const std::string path = folder / name;
    EXPECT_FALSE(platform::MakeFolders(platform::FolderPart(path)));
    EXPECT_FALSE(platform::WriteWholeFile(path, "deep"));
    EXPECT_FALSE(platform::CopyToNewFile(path, path + "2"));
    EXPECT_EQ(Content(path + "2"), "deep");
    EXPECT_FALSE(platform::RemoveFile(path));
    EXPECT_FALSE(platform::IsExistingFile(path));
    EXPECT_TRUE(fs::is_regular_file(platform::Utf8Path(path + "2"))) << "for the standard library, too";
    EXPECT_EQ(platform::WithSlashes(platform::Utf8Text(platform::Utf8Path(path))),
              platform::WithSlashes(path));
    EXPECT_FALSE(platform::IsLink(path + "2"));
}
