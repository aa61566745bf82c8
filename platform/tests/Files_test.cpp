#include "platform/Files.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <thread>
#include <vector>

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

TEST(Files, ACopyIsAFileLikeAnyNewOneAndReplacesNothing) {
    const TemporaryFolder folder;
    const std::string content(3 << 20, 'x');
    const std::string source = folder.Write("source", content);
    const std::string fresh = folder.Write("any new one", "");
    fs::permissions(source, fs::perms::owner_read);
    ASSERT_FALSE(platform::CopyToNewFile(source, folder / "copy 字"));
    std::string copied;
    ASSERT_FALSE(platform::ReadWholeFile(folder / "copy 字", copied, content.size()));
    EXPECT_TRUE(copied == content);
    EXPECT_EQ(fs::status(folder / "copy 字").permissions(), fs::status(fresh).permissions());

    fs::create_symlink("nowhere", folder / "dangling");
    for (const char* taken : {"any new one", "dangling", "."})
        EXPECT_TRUE(platform::CopyToNewFile(source, folder / taken).IsExisting()) << taken;
    EXPECT_EQ(fs::file_size(fresh), 0u);
    EXPECT_TRUE(platform::CopyToNewFile(folder / "absent", folder / "new").IsNotFound());
    EXPECT_TRUE(platform::CopyToNewFile(source, folder / "absent/new").IsNotFound());
    EXPECT_TRUE(platform::CopyToNewFile(source, folder / std::string(256, 'x')).IsPathTooLong());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 4);
}

TEST(Files, ACopyThatIsCutOffNeverHasItsName) {
    const TemporaryFolder folder;
    const std::string source = folder.Write("source", std::string(3 << 20, 'x'));
    const auto copyWithRoomForHalf = [&](auto onTooLarge) {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit limit{1 << 20, 1 << 20};
            setrlimit(RLIMIT_FSIZE, &limit);
            signal(SIGXFSZ, onTooLarge);
            _exit(platform::CopyToNewFile(source, folder / "copy") ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    };
    EXPECT_EQ(WEXITSTATUS(copyWithRoomForHalf(SIG_IGN)), 1);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1);
    EXPECT_EQ(WTERMSIG(copyWithRoomForHalf(SIG_DFL)), SIGXFSZ);  // killed in the middle
    EXPECT_FALSE(fs::exists(folder / "copy"));
    EXPECT_FALSE(platform::CopyToNewFile(source, folder / "copy"));
}

TEST(Files, OfSeveralCopiesToOneNameTheFirstStays) {
    const TemporaryFolder folder;
    std::atomic<int> copies{0};
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        const std::string source = folder.Write(std::string(1, letter), std::string(3 << 20, letter));
        threads.emplace_back([&copies, &folder, source] {
            const auto error = platform::CopyToNewFile(source, folder / "copy");
            if (!error)
                ++copies;
            EXPECT_TRUE(!error || error.IsExisting());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(copies, 1);
    std::string content;
    ASSERT_FALSE(platform::ReadWholeFile(folder / "copy", content, 3 << 20));
    EXPECT_TRUE(content == std::string(3 << 20, content.front()));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 5);
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
