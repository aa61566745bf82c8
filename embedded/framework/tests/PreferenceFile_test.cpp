#include "preferences/PreferenceFile.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <thread>

#include "CapturedTrace.h"
#include "TemporaryFolder.h"
#include "platform/Utf8Path.h"

namespace {

using nlohmann::json;

class PreferenceFileTest : public testing::Test {
protected:
    TemporaryFolder mTemporary;
    const std::string mFolder = mTemporary / "Vantorix";
    const std::string mPath = mFolder + "/Preferences.json";
    CapturedTrace mLog;
};

bool SetMember(PreferenceFile& file, const std::string& name, const json& value) {
    return file.Change([&](json& root) { root[name] = value; });
}

json Parsed(const std::string& path) {
    return json::parse(ContentOf(path), nullptr, false);
}

TEST_F(PreferenceFileTest, TwoInstancesSeeEachOthersChangesAtOnceAndLoseNone) {
    PreferenceFile one(mFolder), other(mFolder);
    EXPECT_TRUE(one.Read()->empty());
    EXPECT_FALSE(std::filesystem::exists(platform::Utf8Path(mFolder))) << "reading makes nothing";
    EXPECT_TRUE(one.IsUsable());
    for (int round = 0; round < 10; ++round) {  // as long as the one before, and written in the same instant
        ASSERT_TRUE(SetMember(one, "one", round));
        EXPECT_EQ((*other.Read())["one"], round);
        ASSERT_TRUE(SetMember(other, "other", 9 - round));
        EXPECT_EQ(*one.Read(), json({{"one", round}, {"other", 9 - round}}));
    }
    std::filesystem::remove(platform::Utf8Path(mPath));
    EXPECT_TRUE(one.Read()->empty());
    EXPECT_EQ(mLog.Text(), "");
}

TEST_F(PreferenceFileTest, WhatIsNoPreferenceFileIsSetAsideWithOneLineAndStoringGoesOn) {
    PreferenceFile writer(mFolder);
    ASSERT_TRUE(
        SetMember(writer, "plug-in", {{"host", {{"text", "ü\n"}, {"number", -1.5}, {"flag", true}}}}));
    const std::string whole = ContentOf(mPath);
    std::vector<std::string> contents = {
        "[]", "{\"a\":\"\xFF\"}", "{\"a\":\"" + std::string((1 << 20) - 7, 'x') + "\"}",
        "{\"a\":" + std::string(100000, '[') + std::string(100000, ']') + "}"};
    for (size_t length = 0; length + 1 < whole.size(); ++length)  // the last byte is a line feed
        contents.push_back(whole.substr(0, length));
    int number = 0;
    for (const std::string& content : contents) {
        const bool isReadFirst = ++number % 2 == 0;  // else found on writing
        mLog.Clear();
        WriteText(mPath, content);
        PreferenceFile file(mFolder);
        EXPECT_TRUE(!isReadFirst || (file.Read()->empty() && file.Read()->empty()));
        ASSERT_TRUE(SetMember(file, "kept", number));
        EXPECT_EQ(Parsed(mPath), json({{"kept", number}}));
        const std::string aside = mPath + ".damaged-" + std::to_string(number);
        EXPECT_EQ(ContentOf(aside), content);
        EXPECT_THAT(mLog.Text(), testing::HasSubstr("Preferences.json.damaged-" + std::to_string(number)));
        EXPECT_EQ(mLog.LineCount(), 1u);
    }
}

TEST_F(PreferenceFileTest, HostsThatStoreAtOnceLoseNothing) {
    constexpr int kChanges = 20;
    std::vector<std::jthread> hosts;
    for (const char* key : {"a", "b", "c"})
        hosts.emplace_back([this, key] {
            PreferenceFile file(mFolder);
            for (int number = 1; number <= kChanges; ++number)
                EXPECT_TRUE(SetMember(file, key, number));
        });
    hosts.clear();
    EXPECT_EQ(Parsed(mPath), json({{"a", kChanges}, {"b", kChanges}, {"c", kChanges}}));
}

TEST_F(PreferenceFileTest, ADamagedFileStaysWhereItIsWhileAnotherProcessHoldsTheLock) {
    WriteText(mPath, "{");
    platform::FileLock lock;
    ASSERT_FALSE(lock.Acquire(mPath + ".lock", true));
    WriteText(mPath + ".writing-killed", "{");  // as a kill between two system calls leaves it
    PreferenceFile file(mFolder);
    EXPECT_TRUE(file.Read()->empty());
    EXPECT_EQ(ContentOf(mPath), "{");
    lock.Release();
    EXPECT_TRUE(SetMember(file, "a", 1));
    EXPECT_EQ(ContentOf(mPath + ".damaged-1"), "{");
    EXPECT_FALSE(std::filesystem::exists(platform::Utf8Path(mPath + ".writing-killed")));
}

TEST_F(PreferenceFileTest, WhereNothingCanBeWrittenTheStoreIsNotUsableAndSaysSoOnce) {
    WriteText(mTemporary / "file", "precious");
    std::filesystem::create_directories(platform::Utf8Path(mPath));
    for (const std::string& folder :
         {std::string(), mTemporary / "file", mTemporary / "file/below", mFolder}) {
        PreferenceFile file(folder);
        EXPECT_FALSE(file.IsUsable()) << folder;
        EXPECT_FALSE(SetMember(file, "a", 1)) << folder;
        EXPECT_TRUE(file.Read()->empty()) << folder;
        const size_t lines = mLog.LineCount();
        EXPECT_EQ(lines == 0, folder.empty());
        EXPECT_TRUE(file.Read()->empty()) << folder;
        EXPECT_EQ(mLog.LineCount(), lines) << "a failure that lasts is told once";
    }
    EXPECT_EQ(ContentOf(mTemporary / "file"), "precious");
}

TEST_F(PreferenceFileTest, LinksThatWerePlantedCostNobodyTheirFiles) {
    std::filesystem::create_directories(platform::Utf8Path(mFolder));
    WriteText(mTemporary / "target", "precious");
    std::error_code failure;
    std::filesystem::create_symlink(platform::Utf8Path(mTemporary / "target"),
                                    platform::Utf8Path(mPath + ".lock"), failure);
    if (failure)
        GTEST_SKIP() << "this user may not make symbolic links here";
    PreferenceFile file(mFolder);
    EXPECT_TRUE(file.IsUsable());
    EXPECT_FALSE(SetMember(file, "a", 1)) << "the lock is to be a file of its own";
    EXPECT_THAT(mLog.Text(), testing::HasSubstr("Preferences.json"));
    std::filesystem::remove(platform::Utf8Path(mPath + ".lock"));
    std::filesystem::create_symlink(platform::Utf8Path(mTemporary / "target"), platform::Utf8Path(mPath));
    EXPECT_TRUE(file.IsUsable());
    EXPECT_TRUE(SetMember(file, "a", 1));
    EXPECT_EQ(ContentOf(mTemporary / "target"), "precious");
}

TEST_F(PreferenceFileTest, AChangeThatFailsLeavesTheFileAndTheLockAsTheyWere) {
    PreferenceFile file(mFolder);
    ASSERT_TRUE(SetMember(file, "a", 1));
    EXPECT_THROW(file.Change([](json&) { throw std::runtime_error("no"); }), std::runtime_error);
    EXPECT_THROW(SetMember(file, "a", "\xFF"), json::exception);
    constexpr size_t kLargest = (1 << 20) - std::char_traits<char>::length("{\n  \"a\": \"\"\n}\n");
    EXPECT_FALSE(SetMember(file, "a", std::string(kLargest + 1, 'x')));
    EXPECT_EQ(Parsed(mPath), json({{"a", 1}}));
    EXPECT_EQ(*file.Read(), json({{"a", 1}}));
    EXPECT_TRUE(SetMember(file, "a", std::string(kLargest, 'x')));
    EXPECT_EQ(PreferenceFile(mFolder).Read()->size(), 1u);
}

}  // namespace
