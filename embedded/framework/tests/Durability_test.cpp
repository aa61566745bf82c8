// What becomes of the preferences when hosts are killed and files are cut: seen through the real library, in
// processes of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>
#include <thread>

#include "FrameworkTestSupport.h"
#include "platform/Files.h"

namespace {

using nlohmann::json;

class DurabilityTest : public testing::Test {
protected:
    std::vector<std::string> Counting(const std::string& key, int times) const {
        return {PREFERENCES_PROGRAM, FRAMEWORK_LIBRARY, "count", key, std::to_string(times)};
    }
    int64_t StoredNumber(const std::string& key) const {
        const json root = json::parse(ReadText(mPath), nullptr, false);
        return root.is_object() ? root.at("plug-in").at("Unknown").value(key, int64_t{0}) : -1;
    }
    std::vector<std::string> FilesBeside() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(platform::Utf8Path(mPath).parent_path()))
            names.push_back(platform::Utf8Text(entry.path().filename()));
        return names;
    }

    TemporaryFolder mFolder;
    const std::string mPath = mFolder / "Vantorix/Preferences.json";
    ScopedVariable mConfiguration{"XDG_CONFIG_HOME", mFolder.Path()};
    ScopedVariable mDebugOutput{"PLUGINCORE_DEBUG_OUTPUT", mFolder / "log"};
};

TEST_F(DurabilityTest, AHostKilledAtAnyMomentLosesNothingThatWasStoredAndHoldsUpNobody) {
    std::minstd_rand random;
    for (int round = 0; round < 40; ++round) {
        int64_t acknowledged = 0;
        {
            RunningProgram host(Counting("number", 200));
            for (unsigned lines = 1 + random() % 8; lines > 0; --lines)
                acknowledged = std::stoll(host.ReadLine().value_or("-1"));
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
            host.Kill();
            while (const auto line = host.ReadLine())
                acknowledged = std::stoll(*line);
        }
        ASSERT_GT(acknowledged, 0);
        EXPECT_THAT(StoredNumber("number"), testing::AnyOf(acknowledged, acknowledged + 1)) << round;
        platform::FileLock lock;
        EXPECT_FALSE(lock.Acquire(mPath + ".lock", false)) << round;
    }
    WriteText(mPath + ".writing-killed", "{");  // as a kill between two system calls leaves it
    EXPECT_EQ(RunningProgram(Counting("number", 1)).Wait(), 0);
    EXPECT_THAT(FilesBeside(), testing::UnorderedElementsAre("Preferences.json", "Preferences.json.lock"));
    EXPECT_EQ(ReadText(mFolder / "log"), "");
}

TEST_F(DurabilityTest, WithAFileCutAnywhereAPlugInStartsAsIfItWereTheFirstTime) {
    const std::string whole =
        R"({"plug-in": {"Unknown": {"DefaultsRegistered": true, "EnablePlugin": false}}})";
    for (size_t length = 0; length <= whole.size(); ++length) {
        const bool isWhole = length == whole.size();
        std::filesystem::remove_all(platform::Utf8Path(mPath).parent_path());
        std::filesystem::remove(platform::Utf8Path(mFolder / "log"));
        WriteText(mPath, whole.substr(0, length));
        RunningProgram host({PREFERENCES_PROGRAM, FRAMEWORK_LIBRARY, "start"});
        EXPECT_EQ(host.ReadLine().value_or(""), isWhole ? "usable 1, registered 1, then 1, enabled 0"
                                                        : "usable 1, registered 0, then 1, enabled 1")
            << length;
        EXPECT_EQ(host.Wait(), 0);
        const std::string log = ReadText(mFolder / "log");
        EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), isWhole ? 0 : 1) << log;
        EXPECT_EQ(ReadText(mPath + ".damaged-1"), isWhole ? "" : whole.substr(0, length));
    }
}

}  // namespace
