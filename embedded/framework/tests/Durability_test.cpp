// What becomes of the preferences when hosts write at once and files are cut: seen through the real library,
// in processes of their own.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "FrameworkTestSupport.h"
#include "TestProcess.h"
#include "platform/Folders.h"

namespace {

using nlohmann::json;

class DurabilityTest : public testing::Test {
protected:
    std::vector<std::string> Counting(const std::string& key, int times) const {
        return {PREFERENCES_PROGRAM, platform::FullPath(FRAMEWORK_LIBRARY), "count", key,
                std::to_string(times)};
    }
    int64_t StoredNumber(const std::string& key) const {
        const json root = json::parse(ReadText(mPath), nullptr, false);
        return root.is_object() ? root.at("plug-in").at("Unknown").value(key, int64_t{0}) : -1;
    }

    TemporaryFolder mFolder;
    const std::string mPath = mFolder / "Vantorix/Preferences.json";
    ScopedVariable mConfiguration{"XDG_CONFIG_HOME", platform::Utf8Text(mFolder.Path())};
    ScopedVariable mDebugOutput{"PLUGINCORE_DEBUG_OUTPUT", mFolder / "log"};
};

TEST_F(DurabilityTest, HostsThatStoreAtOnceLoseNothing) {
    constexpr int kChanges = 20;
    std::vector<std::unique_ptr<TestProcess>> hosts;
    for (const char* key : {"a", "b", "c"})
        hosts.push_back(std::make_unique<TestProcess>(Counting(key, kChanges)));
    for (const auto& host : hosts)
        EXPECT_EQ(host->Finish().status, 0);
    for (const char* key : {"a", "b", "c"})
        EXPECT_EQ(StoredNumber(key), kChanges) << key;
}

TEST_F(DurabilityTest, WithAFileCutAnywhereAPlugInStartsAsIfItWereTheFirstTime) {
    const std::string whole =
        R"({"plug-in": {"Unknown": {"DefaultsRegistered": true, "EnablePlugin": false}}})";
    for (size_t length = 0; length <= whole.size(); ++length) {
        const bool isWhole = length == whole.size();
        std::filesystem::remove_all(platform::Utf8Path(mPath).parent_path());
        std::filesystem::remove(platform::Utf8Path(mFolder / "log"));
        WriteText(mPath, whole.substr(0, length));
        TestProcess host({PREFERENCES_PROGRAM, platform::FullPath(FRAMEWORK_LIBRARY), "start"});
        EXPECT_EQ(host.ReadLine(), isWhole ? "usable 1, registered 1, then 1, enabled 0"
                                           : "usable 1, registered 0, then 1, enabled 1")
            << length;
        EXPECT_EQ(host.Finish().status, 0);
        const std::string log = ReadText(mFolder / "log");
        EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), isWhole ? 0 : 1) << log;
        EXPECT_EQ(ReadText(mPath + ".damaged-1"), isWhole ? "" : whole.substr(0, length));
    }
}

}  // namespace
