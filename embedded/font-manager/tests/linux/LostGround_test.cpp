// An agent whose folders go while it runs: those for its socket, and those for its data.
#include <signal.h>

#include "TestFiles.h"
#include "platform/Environment.h"
#include "tests/support/AgentTest.h"

namespace pellwick::test {
namespace {

class LostGround : public testing::Test {
protected:
    LostGround() {
        fs::create_directory(mRuntimeFolder);
        fs::permissions(mRuntimeFolder, fs::perms::owner_all);
        platform::SetEnvironment("XDG_RUNTIME_DIR", mRuntimeFolder);
        mWorld.StartAgent();
    }

    bool IsReached() const { return mWorld.Run({"status", "--no-start"}).status == 0; }
    /// A process that holds the agent's lock and serves nobody. `note`: what it writes down of itself, "" where
    /// it is of a version that wrote nothing.
    std::unique_ptr<TestProcess> HoldLock(const std::string& note) const {
        auto holder = std::make_unique<TestProcess>(
            std::vector<std::string>{"/bin/sh", "-c",
                                     "exec 9>'" + mPlaces.lockPath + "'; flock 9; printf '" + note +
                                         "' >&9; echo ready; exec sleep 1000"});
        EXPECT_EQ(holder->ReadLine(), "ready");
        return holder;
    }

    TestWorld mWorld;  // puts the variable back as well
    const std::string mRuntimeFolder = mWorld.Path("run");
    const Locations mPlaces = Locations::OfThisUser();
};

TEST_F(LostGround, TheAgentListensAgainWhereItsSocketOrItsAddressIsGone) {
    const std::string first = mPlaces.AgentAddress();
    EXPECT_THAT(first, testing::StartsWith(mRuntimeFolder));
    GoodClient kept;
    fs::remove_all(mRuntimeFolder);  // as the end of the session does
    ASSERT_TRUE(Eventually([&] { return mPlaces.AgentAddress() != first; }));
    EXPECT_TRUE(IsReached());
    EXPECT_FALSE(fs::exists(mRuntimeFolder)) << "it is not the agent's to make";
    kept.ExpectToBeServed();

    const std::string second = mPlaces.AgentAddress();
    fs::remove(second);
    mWorld.Write("data/Vantorix/Pellwick/agent.socket", "somebody's file");
    ASSERT_TRUE(Eventually([&] { return mPlaces.AgentAddress() != second && IsReached(); }));
    EXPECT_EQ(ContentOf(second), "somebody's file");
    fs::remove(mPlaces.addressPath);
    EXPECT_TRUE(Eventually([&] { return IsReached(); }));
    platform::WriteWholeFile(mPlaces.addressPath, "/nowhere");
    EXPECT_TRUE(Eventually([&] { return IsReached(); }));
    const std::string last = mPlaces.AgentAddress();
    mWorld.StopAgent();
    EXPECT_FALSE(fs::exists(last) || fs::exists(mPlaces.addressPath));
}

TEST_F(LostGround, AnAgentWhoseDataFolderIsGoneEndsAndItsSuccessorIsSpared) {
    for (const bool isMoved : {true, false}) {
        mWorld.StopAgent();
        TestProcess old({BuiltFile(PELLWICK_PROGRAM)});
        ASSERT_TRUE(Eventually([&] { return IsReached(); }));
        if (isMoved)
            fs::rename(mPlaces.dataFolder, mWorld.Path("moved"));
        else
            fs::remove(mPlaces.lockPath);
        mWorld.StartAgent();  // at the same addresses
        EXPECT_TRUE(Eventually([&] { return platform::ProcessStartTime(old.Id()) == 0; }));
        old.Kill();
        EXPECT_EQ(old.Finish().status, 0);
        EXPECT_THAT(mWorld.AgentLog(), HasSubstr(mPlaces.lockPath + " is gone or another file"));
        EXPECT_EQ(mWorld.RunForJson({"status", "--no-start"})["process"], mWorld.AgentProcess());
    }
}

TEST_F(LostGround, WhoCannotBeReachedIsNamedByEveryCommandAndStopped) {
    mWorld.StopAgent();
    const auto holder = HoldLock("'\"$$ $(cut -d\" \" -f22 /proc/$$/stat)\"'\\n");
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"status"}, {"list", "--no-start"}, {"list"}, {"serve"}}) {
        const ProgramResult result = mWorld.Run(command);
        EXPECT_EQ(result.status, command[0] == "serve" ? 1 : 5) << command[0];
        EXPECT_THAT(result.errors, HasSubstr("process " + std::to_string(holder->Id()))) << command[0];
        EXPECT_THAT(result.errors, HasSubstr("Pellwick stop")) << command[0];
    }
    EXPECT_EQ(mWorld.RunForJson({"stop"})["process"], holder->Id());
    EXPECT_EQ(holder->Finish().status, 128 + SIGTERM);
    EXPECT_THAT(mWorld.Run({"stop"}).errors, HasSubstr("no agent is running"));
}

TEST_F(LostGround, StopEndsNoProcessThatIsNotTheLocksOwner) {
    mWorld.StopAgent();
    TestProcess innocent({"/bin/sleep", "1000"});
    const std::string id = std::to_string(innocent.Id());
    for (const std::string& note : {std::string(), id + " 1\\n", id, std::string("-1 1\\n"),
                                    std::string("x\\n"), std::string("99999999999999999999 1\\n")}) {
        const auto holder = HoldLock(note);
        const ProgramResult result = mWorld.Run({"stop"});
        EXPECT_EQ(result.status, 5) << note;
        EXPECT_THAT(result.errors, HasSubstr(mPlaces.lockPath)) << note;
    }
    EXPECT_NE(platform::ProcessStartTime(innocent.Id()), 0u);
}

}  // namespace
}  // namespace pellwick::test
