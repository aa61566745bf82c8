#include "AgentLauncher.h"

#include <gmock/gmock.h>

#include "CapturedTrace.h"
#include "FakePlatform.h"
#include "TemporaryFolder.h"
#include "platform/Utf8Path.h"

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty;

namespace {

constexpr char kInfoFile[] = "Vantorix/com.vantorix.Pellwick-LaunchInfo.conf";

class AgentLauncherTest : public testing::Test {
protected:
    AgentLauncherTest() {
        folders.paths = {{platform::KnownFolder::kAllUsersApplicationData, allUsers / "."},
                         {platform::KnownFolder::kLocalApplicationData, local / "."}};
        agent = local.Write("agent 字/Pellwick", "");
    }
    void WriteInfo(const TemporaryFolder& folder, const std::string& agentPath,
                   const std::string& arguments = "") {
        folder.Write(kInfoFile, "pellwick.path=" + agentPath + "\npellwick.args=" + arguments + "\n");
    }

    CapturedTrace trace;
    FakeProcesses processes;
    FakeFolders folders;
    TemporaryFolder allUsers;
    TemporaryFolder local;
    std::string agent;
    std::string found;
};

}  // namespace

TEST_F(AgentLauncherTest, ARunningProcessIsFoundByItsNameInAnyCase) {
    processes.running = {{1, "/a/PellwickHelper"}, {2, "/b/pellwick.EXE"}, {3, "/c/Pellwick"}};
    EXPECT_EQ(AgentLauncher::GetPathToRunningProcessExe("Pellwick", found), 0u);
    EXPECT_EQ(found, "/b/");
    EXPECT_EQ(AgentLauncher::GetPathToRunningProcessExe("pellwick.exe", found), 0u);
    EXPECT_EQ(AgentLauncher::GetPathToRunningProcessExe("Pell.wick", found), CoreErrorCodes::kUnknownError)
        << "a name with a dot is taken as it is";
    processes.listError.code = 5;
    EXPECT_EQ(AgentLauncher::GetPathToRunningProcessExe("Pellwick", found), 5u) << "nobody can tell";
}

TEST_F(AgentLauncherTest, LaunchInfoLinesHaveAKeyAndAValue) {
    const auto path = [](const std::string& text) {
        return AgentLauncher::LaunchInfoValue(text, "pellwick.path");
    };
    for (const char* text : {"pellwick.args=-x\r\npellwick.path=/a=b c\r\n", "pellwick.path=/a=b c",
                             "junk\n=\n\rpellwick.path=/a=b c\rpellwick.path=/second"})
        EXPECT_EQ(path(text), "/a=b c") << text;
    for (const char* text : {"pellwick.path\n=/no", "Pellwick.path=/case\n pellwick.path=/blank", ""})
        EXPECT_EQ(path(text), "") << text;
}

TEST_F(AgentLauncherTest, TheAgentIsStartedWithItsArgumentsFromTheUsersOwnFolderIfNeedBe) {
    WriteInfo(allUsers, "/no/such/Pellwick");
    WriteInfo(local, agent, "--quiet");
    EXPECT_EQ(AgentLauncher::FindAndLaunchPellwick(&found), 0u);
    EXPECT_EQ(found, local / "agent 字/");
    EXPECT_THAT(trace.Text(),
                HasSubstr("but the Pellwick.exe was not found at the specified path (/no/such/Pellwick)\n"));
    WriteInfo(allUsers, agent);
    EXPECT_EQ(AgentLauncher::FindAndLaunchPellwick(nullptr), 0u);
    EXPECT_THAT(processes.launchedCommandLines,
                ElementsAre("\"" + agent + "\" --quiet", "\"" + agent + "\" "));
}

TEST_F(AgentLauncherTest, WhatOthersMayHaveWrittenForAllUsersIsLeftAlone) {
    const std::string library = platform::LibraryFileName("TarnwickPluginInterfaceX64");
    for (const std::string& open :
         {allUsers / "Vantorix", allUsers / "tools", allUsers / ("tools/" + library)}) {
        WriteInfo(allUsers, allUsers.Write("tools/Pellwick", ""), "--planted");
        allUsers.Write("tools/" + library, "");
        WriteInfo(local, agent);
        const auto before = std::filesystem::status(platform::Utf8Path(open)).permissions();
        std::filesystem::permissions(platform::Utf8Path(open), std::filesystem::perms::all);
        processes.launchedCommandLines.clear();
        trace.Clear();
        EXPECT_EQ(AgentLauncher::FindAndLaunchPellwick(&found), 0u);
        std::filesystem::permissions(platform::Utf8Path(open), before);
        if (platform::kPathSeparator == '\\')
            GTEST_SKIP() << "rights are not given like that here";
        EXPECT_THAT(processes.launchedCommandLines, ElementsAre("\"" + agent + "\" ")) << open;
        EXPECT_THAT(trace.Text(),
                    HasSubstr("is left alone, since " + open + " can be written to by others\n"));
    }
}

TEST_F(AgentLauncherTest, ValuesThatMeanAnotherFileElsewhereNameNoAgent) {
    using namespace std::string_literals;
    std::filesystem::current_path(local.Path());
    for (const std::string& text :
         {"pellwick.path=" + agent + "\0.old\n"s, "pellwick.path=" + agent + "\npellwick.args=serve\0--x\n"s,
          "pellwick.path=agent 字/Pellwick\n"s, "pellwick.path=./agent 字/Pellwick\n"s}) {
        local.Write(kInfoFile, text);
        trace.Clear();
        EXPECT_EQ(AgentLauncher::FindAndLaunchPellwick(&found), GZephyrinConfig::kAgentNotFound) << text;
        EXPECT_THAT(trace.Text(), HasSubstr("but the Pellwick.exe was not found at the specified path ("));
    }
    EXPECT_THAT(processes.launchedCommandLines, IsEmpty());
    std::filesystem::current_path("/");
}

TEST_F(AgentLauncherTest, EachWayToFailEndsInAgentNotFound) {
    allUsers.Write("Vantorix/other", "");
    EXPECT_EQ(AgentLauncher::FindAndLaunchPellwick(&found), GZephyrinConfig::kAgentNotFound);
    EXPECT_THAT(trace.Text(), HasSubstr("Error 2 on attempt to open launch info file at: "));
    EXPECT_THAT(processes.launchedCommandLines, IsEmpty());
    WriteInfo(local, agent);
    processes.launchErrors = {13};
    EXPECT_EQ(AgentLauncher::FindAndLaunchPellwick(&found), GZephyrinConfig::kAgentNotFound);
    EXPECT_THAT(trace.Text(), HasSubstr("Error 13 on call to CreateProcess('\"" + agent + "\" ')\n"));
    processes.childExitStatus = 9;
    EXPECT_EQ(AgentLauncher::FindAndLaunchPellwick(&found), GZephyrinConfig::kAgentNotFound);
    EXPECT_THAT(trace.Text(), HasSubstr("'\"" + agent + "\" ' already exited with error 9\n"));
    EXPECT_EQ(found, "");
}
