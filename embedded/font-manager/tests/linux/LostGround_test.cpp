// An agent whose folders go while it runs: those for its socket, and those for its data.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "common/Locations.h"
#include "ipc/AgentConnection.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

std::string TextOf(const std::string& path) {
    std::string text;
    platform::ReadWholeFile(path, text, 1 << 20);
    return text;
}

class LostGround : public testing::Test {
protected:
    LostGround() {
        fs::create_directory(mRuntimeFolder);
        fs::permissions(mRuntimeFolder, fs::perms::owner_all);
        platform::SetEnvironment("XDG_RUNTIME_DIR", mRuntimeFolder);
    }

    bool IsReached() const { return mWorld.Run({"status", "--no-start"}).status == 0; }

    TestWorld mWorld;  // puts the variable back as well
    const std::string mRuntimeFolder = mWorld.Path("run");
    const Locations mPlaces = Locations::OfThisUser();
};

TEST_F(LostGround, TheAgentListensAgainWhereItsSocketOrItsAddressIsGone) {
    mWorld.StartAgent();
    const std::string first = mPlaces.AgentAddress();
    EXPECT_THAT(first, StartsWith(mRuntimeFolder));
    AgentConnection kept(std::chrono::seconds(30));
    Json status;
    ASSERT_EQ(kept.Call("GetStatus", Json::object(), status), 0u);

    fs::remove_all(mRuntimeFolder);  // as the end of the session does
    ASSERT_TRUE(Eventually([&] { return mPlaces.AgentAddress() != first; }));
    EXPECT_TRUE(IsReached());
    EXPECT_FALSE(fs::exists(mRuntimeFolder)) << "it is not the agent's to make";
    EXPECT_EQ(kept.Call("GetStatus", Json::object(), status), 0u) << "who is connected stays so";

    const std::string second = mPlaces.AgentAddress();
    fs::remove(second);
    mWorld.Write("data/Vantorix/Pellwick/agent.socket", "somebody's file");
    ASSERT_TRUE(Eventually([&] { return mPlaces.AgentAddress() != second && IsReached(); }));
    EXPECT_EQ(TextOf(second), "somebody's file");
    fs::remove(mPlaces.addressPath);
    EXPECT_TRUE(Eventually([&] { return IsReached(); }));
    platform::WriteWholeFile(mPlaces.addressPath, "/nowhere");
    EXPECT_TRUE(Eventually([&] { return IsReached(); }));
    const std::string last = mPlaces.AgentAddress();
    mWorld.StopAgent();
    EXPECT_FALSE(fs::exists(last));
    EXPECT_FALSE(fs::exists(mPlaces.addressPath));
}

TEST_F(LostGround, AnAgentWhoseDataFolderIsGoneEndsAndItsSuccessorIsSpared) {
    const auto lose = [&](bool isMoved) {
        TestProcess old({PELLWICK_PROGRAM});
        ASSERT_TRUE(Eventually([&] { return IsReached(); }));
        if (isMoved)
            fs::rename(mPlaces.dataFolder, mWorld.Path("moved"));
        else
            fs::remove(mPlaces.lockPath);
        mWorld.StartAgent();  // at the same addresses
        EXPECT_TRUE(Eventually([&] { return platform::ProcessStartTime(old.Id()) == 0; }));
        old.Kill();
        EXPECT_EQ(old.Finish().status, 0);
        EXPECT_THAT(TextOf(mPlaces.logFolder + "/Pellwick.log"),
                    HasSubstr(mPlaces.lockPath + " is gone or another file"));
        EXPECT_EQ(mWorld.RunForJson({"status", "--no-start"})["process"], mWorld.AgentProcess());
        mWorld.StopAgent();
    };
    lose(true);
    lose(false);
}

/// A process that holds the agent's lock and serves nobody.
class DeafHolder {
public:
    /// `note`: what it writes down of itself, "" where it is of a version that wrote nothing.
    explicit DeafHolder(const Locations& places, const std::string& note)
        : mProcess({"/bin/sh", "-c",
                    "exec 9>'" + places.lockPath + "'; flock 9; printf '" + note +
                        "' >&9; echo ready; exec sleep 1000"}) {
        EXPECT_EQ(mProcess.ReadLine(), "ready");
    }
    TestProcess& Process() { return mProcess; }

private:
    TestProcess mProcess;
};

TEST_F(LostGround, WhoCannotBeReachedIsNamedByEveryCommandAndStopped) {
    mWorld.StartAgent();
    mWorld.StopAgent();
    const std::string startTime = "$(cut -d\" \" -f22 /proc/$$/stat)";
    DeafHolder holder(mPlaces, "'\"$$ " + startTime + "\"'\\n");
    const std::string id = "process " + std::to_string(holder.Process().Id());
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"status"}, {"list", "--no-start"}, {"list"}, {"serve"}}) {
        const ProgramResult result = mWorld.Run(command);
        EXPECT_EQ(result.status, command[0] == "serve" ? 1 : 5) << command[0];
        EXPECT_THAT(result.errors, HasSubstr(id)) << command[0];
        EXPECT_THAT(result.errors, HasSubstr("Pellwick stop")) << command[0];
    }
    const Json stopped = mWorld.RunForJson({"stop"});
    EXPECT_EQ(stopped["process"], holder.Process().Id());
    EXPECT_EQ(holder.Process().Finish().status, 128 + SIGTERM);
    EXPECT_THAT(mWorld.Run({"stop"}).errors, HasSubstr("no agent is running"));
}

TEST_F(LostGround, StopEndsNoProcessThatIsNotTheLocksOwner) {
    mWorld.StartAgent();
    mWorld.StopAgent();
    TestProcess innocent({"/bin/sleep", "1000"});
    const std::string id = std::to_string(innocent.Id());
    for (const std::string& note : {std::string(), id + " 1\\n", id, std::string("-1 1\\n"),
                                    std::string("x\\n"), std::string("99999999999999999999 1\\n")}) {
        const DeafHolder holder(mPlaces, note);
        const ProgramResult result = mWorld.Run({"stop"});
        EXPECT_EQ(result.status, 5) << note;
        EXPECT_THAT(result.errors, HasSubstr(mPlaces.lockPath)) << note;
    }
    EXPECT_NE(platform::ProcessStartTime(innocent.Id()), 0u);
}

}  // namespace
}  // namespace pellwick::test
