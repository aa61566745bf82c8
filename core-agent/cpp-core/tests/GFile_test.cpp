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

TEST(GFile, ReadsFromAPositionWhatWasAskedForOrNothing) {
    const TemporaryFolder folder;
    const GFileSystemSpec spec(folder.Write("Ελλάδα 字体 🙂/file.bin", "0123456789"));
    GFile file;
    std::string bytes(3, ' ');
    ASSERT_EQ(file.Open(spec, GFile::eBinary | GFile::eRead), CoreErrorCodes::kSuccess);
    ASSERT_EQ(file.SetFilePosition(GFile::eBeginning, 6), CoreErrorCodes::kSuccess);
    ASSERT_EQ(file.Read(3, bytes.data()), CoreErrorCodes::kSuccess);
    EXPECT_EQ(bytes, "678");
    EXPECT_EQ(file.Read(2, bytes.data()), CoreErrorCodes::kError);
    ASSERT_EQ(file.Read(1, bytes.data()), CoreErrorCodes::kSuccess);
    EXPECT_EQ(bytes[0], '9');
    EXPECT_EQ(file.Close(), CoreErrorCodes::kSuccess);
    EXPECT_EQ(file.Read(1, bytes.data()), GFile::kFileNotOpen);
    EXPECT_EQ(file.Close(), GFile::kFileNotOpen);
}

TEST(GFile, WhatIsNoReadableFileIsRefused) {
    const TemporaryFolder folder;
    GFile file;
    uint64_t size = 42;
    EXPECT_EQ(file.Open(GFileSystemSpec(folder / "missing"), GFile::eRead), GFileSystem::kFileNotFound);
    EXPECT_EQ(GFileSystem::OSGetFileSize(GFileSystemSpec(folder / "missing"), size),
              GFileSystem::kFileNotFound);
    EXPECT_EQ(file.Open(GFileSystemSpec(folder / "."), GFile::eRead), GFile::kOpenFailed);
    EXPECT_EQ(GFileSystem::OSGetFileSize(GFileSystemSpec(folder / "."), size), GFileSystem::kInvalidPath);
    EXPECT_EQ(size, 42u);
    EXPECT_EQ(VantorixFileUtils::GetFileModificationDate(folder / "missing"), 0);
}
