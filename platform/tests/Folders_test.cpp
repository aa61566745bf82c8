#include "platform/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "FakePlatform.h"
#include "platform/Utf8Path.h"

TEST(Folders, WhatIsTypedBecomesAFullPath) {
    FakeFolders folders;
    folders.paths[platform::KnownFolder::kHome] = "/home/ana";
    EXPECT_EQ(platform::FullPath("~"), "/home/ana");
    EXPECT_EQ(platform::FullPath("~/Für den Druck/"), "/home/ana/Für den Druck");
    EXPECT_EQ(platform::FullPath("/a/./b/../c//"), "/a/c");
    EXPECT_EQ(platform::FullPath("/"), "/");
    const std::string current = platform::Utf8Text(std::filesystem::current_path());
    EXPECT_EQ(platform::FullPath("."), current);
    EXPECT_EQ(platform::FullPath("new/folder"), current + "/new/folder");
    EXPECT_EQ(platform::FullPath("~bob"), current + "/~bob");
    EXPECT_EQ(platform::FullPath(""), "");
    folders.paths.clear();
    EXPECT_EQ(platform::FullPath("~/x"), "") << "nobody's home";
}
