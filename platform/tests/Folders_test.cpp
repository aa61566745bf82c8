#include "platform/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "FakePlatform.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace {

/// As this system writes it, beginning on the current drive where it has drives.
std::string Native(const char* path) {
    return platform::Utf8Text(
        (std::filesystem::current_path().root_path() / platform::Utf8Path(path)).make_preferred());
}

}  // namespace

TEST(Folders, WhatIsTypedBecomesAFullPath) {
    FakeFolders folders;
    folders.paths[platform::KnownFolder::kHome] = Native("home/ana");
    EXPECT_EQ(platform::FullPath("~"), Native("home/ana"));
    EXPECT_EQ(platform::FullPath("~/Für den Druck/"), Native("home/ana/Für den Druck"));
    EXPECT_EQ(platform::FullPath(std::string("~") + platform::kPathSeparator + "x"), Native("home/ana/x"));
    EXPECT_EQ(platform::FullPath("/a/./b/../c//"), Native("a/c"));
    EXPECT_EQ(platform::FullPath("/"), Native(""));
    const std::filesystem::path current = std::filesystem::current_path();  // may be a root
    EXPECT_EQ(platform::FullPath("."), platform::Utf8Text(current));
    EXPECT_EQ(platform::FullPath("new/folder"), platform::Utf8Text(current / "new" / "folder"));
    EXPECT_EQ(platform::FullPath("~bob"), platform::Utf8Text(current / "~bob"));
    EXPECT_EQ(platform::FullPath(""), "");
    folders.paths.clear();
    EXPECT_EQ(platform::FullPath("~/x"), "") << "nobody's home";
}
