// Every write, flush and rename by which a host changes the preferences fails once, or kills the host: the
// file holds the old or the new value, what was answered holds, a failure is one line, and storing goes on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "FaultRun.h"
#include "TemporaryFolder.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "tests/support/TestWorld.h"

namespace {

namespace fs = std::filesystem;
using pellwick::test::ContentOf;

const char* const kOld = R"({"plug-in": {"Unknown": {"number": 1}}})";
const char* const kDamaged = R"({"plug-in": {"Unknown": {"num)";

struct Case {
    const char* name;
    const char* before;  ///< the file's content; null for no folder
    const char* command;
    int oldNumber, newNumber;
};

void PrintTo(const Case& each, std::ostream* out) {
    *out << each.name;
}

const Case kCases[] = {{"StoreANumber", kOld, "store 2", 1, 2},
                       {"StoreTheFirstNumber", nullptr, "store 2", 0, 2},
                       {"StoreOverADamagedFile", kDamaged, "store 2", 0, 2},
                       {"AskWhetherItIsUsable", kOld, "usable", 1, 1},
                       {"AskForTheFirstTime", nullptr, "usable", 0, 0}};

class PreferenceWritesThatFail : public testing::TestWithParam<Case> {
protected:
    PreferenceWritesThatFail() {
        platform::SetEnvironment("XDG_CONFIG_HOME", mFolder / "configuration");
        platform::SetEnvironment("PLUGINCORE_DEBUG_OUTPUT", mFolder / "log");
    }

    /// As it stands in the file; 0 when there is none, or it is damaged.
    int64_t StoredNumber() const {
        const auto root = nlohmann::json::parse(ContentOf(mPath), nullptr, false);
        return root.is_object() ? root.at("plug-in").at("Unknown").value("number", int64_t{0}) : 0;
    }
    void StartHost() {
        mHost = mFaults.Start({PREFERENCES_PROGRAM, platform::FullPath(FRAMEWORK_LIBRARY), "obey"});
    }
    /// Empty when the host has died.
    std::string Ask(const std::string& command) const {
        mHost->WriteLine(command);
        return mHost->ReadLine();
    }
    void ExpectToBeSaid(const Fault& fault, bool isDone) const {
        const bool isFailure = !isDone && !fault.IsKill();
        const std::string log = ContentOf(mFolder / "log");
        EXPECT_LE(std::count(log.begin(), log.end(), '\n'),
                  isFailure + platform::IsExistingFile(mPath + ".damaged-1"))
            << log;
        if (isFailure) {
            EXPECT_THAT(log, testing::HasSubstr(mFolder / "configuration/Vantorix"));
        }
    }

    /// The host that met the fault, or the next one where that is dead.
    void ExpectToGoOn(int number) {
        EXPECT_EQ(Ask("usable"), "1");
        EXPECT_EQ(Ask("store " + std::to_string(number)), "1");
        EXPECT_EQ(Ask("read"), std::to_string(number));
        EXPECT_EQ(StoredNumber(), number);
        EXPECT_EQ(mHost->Finish().status, 0);
    }

    void ExpectNoOtherFiles() const {
        std::error_code noFolder;
        for (const auto& entry : fs::directory_iterator(fs::path(mPath).parent_path(), noFolder))
            EXPECT_THAT(
                entry.path().filename().string(),
                testing::AnyOf("Preferences.json", "Preferences.json.lock", "Preferences.json.damaged-1"));
    }

    void Attempt(const Fault& fault, int at) {
        fs::remove_all(mFolder / "configuration");
        fs::remove(mFolder / "log");
        fs::create_directory(mFolder / "configuration");
        if (GetParam().before != nullptr)
            mFolder.Write("configuration/Vantorix/Preferences.json", GetParam().before);
        StartHost();
        mFaults.Begin(fault, at);
        const std::string answer = Ask(GetParam().command);
        mFaults.End();
        EXPECT_EQ(answer.empty(), fault.IsKill());
        SCOPED_TRACE(mFaults.Where());
        const bool isDone = answer == "1";
        EXPECT_THAT(StoredNumber(), testing::AnyOf(GetParam().newNumber,
                                                   isDone ? GetParam().newNumber : GetParam().oldNumber));
        ExpectToBeSaid(fault, isDone);
        EXPECT_TRUE(GetParam().before != kDamaged || ContentOf(mPath) == kDamaged ||
                    ContentOf(mPath + ".damaged-1") == kDamaged);
        if (answer.empty())
            StartHost();
        else
            ExpectNoOtherFiles();
        ExpectToGoOn(3);
        StartHost();
        ExpectToGoOn(4);
        ExpectNoOtherFiles();
    }

    const TemporaryFolder mFolder;
    const std::string mPath = mFolder / "configuration/Vantorix/Preferences.json";
    FaultControl mFaults{mFolder / "plan", mFolder / "configuration"};
    std::unique_ptr<TestProcess> mHost;
};

TEST_P(PreferenceWritesThatFail, LeaveTheOldOrTheNewValueAndOneLine) {
    mFaults.MeetEvery(GetParam().name, [this](const Fault& fault, int at) { Attempt(fault, at); });
}

INSTANTIATE_TEST_SUITE_P(Preferences, PreferenceWritesThatFail, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<Case>& each) { return each.param.name; });

}  // namespace
