#include "FontListFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <vector>

#include "CapturedTrace.h"
#include "FakePlatform.h"
#include "FileURL.h"
#include "TemporaryFolder.h"
#include "platform/Utf8Path.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

class FontListFilesTest : public testing::Test {
protected:
    FontListFilesTest() { folders.paths[platform::KnownFolder::kTemporary] = folder / ""; }

    std::string Create(const std::string& content) {
        std::string url;
        EXPECT_EQ(files.Create(content, url), 0u);
        return url;
    }
    static std::filesystem::path PathOf(const std::string& url) {
        return platform::Utf8Path(PathOfFileURL(url)).make_preferred();
    }
    size_t FileCount() const {
        const std::filesystem::directory_iterator entries(folder.Path());
        return static_cast<size_t>(std::distance(begin(entries), end(entries)));
    }

    CapturedTrace trace;
    TemporaryFolder folder;
    FakeFolders folders;
    FontListFiles files;
};

}  // namespace

TEST_F(FontListFilesTest, AFileIsThereUntilItIsReleased) {
    const std::string url = Create("1\tSample\n");
    EXPECT_THAT(url, StartsWith("file:///"));
    const std::filesystem::path path = PathOf(url);
    std::stringstream content;
    content << std::ifstream(path).rdbuf();
    EXPECT_EQ(content.str(), "1\tSample\n");
    const std::string other = Create("");
    EXPECT_NE(other, url);
    EXPECT_EQ(files.Release(url), 0u);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(files.Release(url), CoreErrorCodes::kNotFound) << "once";
    const std::string otherPath = platform::Utf8Text(PathOf(other));
    EXPECT_EQ(files.Release("http://elsewhere" + otherPath), CoreErrorCodes::kNotFound);
    EXPECT_EQ(files.Release(otherPath), 0u) << "by path as well";
    EXPECT_EQ(FileCount(), 0u);
}

TEST_F(FontListFilesTest, WhatOthersMadeIsNotTouched) {
    const std::string document = folder.Write("font-list-mine.txt", "precious");
    FontListFiles othersFiles;
    std::string othersURL;
    EXPECT_EQ(othersFiles.Create("theirs", othersURL), 0u);
    for (const std::string& name : {document, "file://" + document, othersURL, std::string()})
        EXPECT_EQ(files.Release(name), CoreErrorCodes::kNotFound) << name;
    files.ReleaseAll();
    EXPECT_EQ(FileCount(), 2u);
}

TEST_F(FontListFilesTest, NothingIsLeftInTheEnd) {
    std::string url;
    EXPECT_EQ(FontListFiles().Create("x", url), 0u);
    EXPECT_EQ(FileCount(), 0u);
    url = Create("x");
    std::filesystem::remove(PathOf(url));
    EXPECT_EQ(files.Release(url), 0u) << "somebody tidied up before";
}

TEST_F(FontListFilesTest, APanelThatReleasesNothingDoesNotFillTheDisk) {
    const std::string first = Create("");
    for (int count = 1; count < 250; ++count)
        Create("");
    EXPECT_EQ(FileCount(), 100u);
    EXPECT_EQ(files.Release(first), CoreErrorCodes::kNotFound) << "the oldest went first";
    EXPECT_TRUE(std::filesystem::exists(PathOf(Create(""))));
}

TEST_F(FontListFilesTest, AFolderThatCannotBeWrittenToIsReported) {
    std::string url = "untouched";
    for (const std::string& unusable : {folder / "missing", folder.Write("file", ""), std::string()}) {
        folders.paths[platform::KnownFolder::kTemporary] = unusable;
        EXPECT_NE(files.Create("x", url), 0u) << unusable;
    }
    EXPECT_EQ(url, "untouched");
    EXPECT_THAT(trace.Text(), HasSubstr("WriteTemporaryFile("));
}
