// What becomes of the preferences when hosts are killed and store at once: seen through the real library, in
// processes of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <sstream>
#include <thread>

#include "FrameworkTestSupport.h"
#include "TestProcess.h"
#include "platform/Files.h"
#include "platform/Folders.h"

namespace {

using nlohmann::json;

/// A line that was cut by the end of the process is none.
std::optional<int64_t> NumberIn(const std::string& line) {
    return line.empty() ? std::nullopt : std::optional(std::stoll(line));
}

std::optional<int64_t> LastNumber(const std::string& output) {
    std::istringstream lines(output.substr(0, output.rfind('\n') + 1));
    std::optional<int64_t> last;
    for (std::string line; std::getline(lines, line);)
        last = NumberIn(line);
    return last;
}

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

TEST_F(DurabilityTest, AHostKilledAtAnyMomentLosesNothingThatWasStoredAndHoldsUpNobody) {
    std::minstd_rand random;
    for (int round = 0; round < 40; ++round) {
        TestProcess host(Counting("number", 200));
        int64_t acknowledged = 0;
        for (unsigned lines = 1 + random() % 8; lines > 0; --lines)
            acknowledged = NumberIn(host.ReadLine()).value_or(-1);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
        host.Kill();
        acknowledged = LastNumber(host.Finish().output).value_or(acknowledged);
        ASSERT_GT(acknowledged, 0);
        EXPECT_THAT(StoredNumber("number"), testing::AnyOf(acknowledged, acknowledged + 1)) << round;
        platform::FileLock lock;
        EXPECT_FALSE(lock.Acquire(mPath + ".lock", false)) << round;
    }
    WriteText(mPath + ".writing-killed", "{");  // as a kill between two system calls leaves it
    EXPECT_EQ(TestProcess(Counting("number", 1)).Finish().status, 0);
    EXPECT_FALSE(std::filesystem::exists(platform::Utf8Path(mPath + ".writing-killed")));
    EXPECT_EQ(ReadText(mFolder / "log"), "");
}

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

}  // namespace
