// Dialogs of a process that does what it must not: a script, whose end of the line is descriptor 3.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>

#include "HelperDialogs.h"
#include "TemporaryFolder.h"
#include "TestProcess.h"
#include "platform/Environment.h"

namespace {

using namespace platform;
using namespace std::chrono_literals;
using testing::HasSubstr, testing::Not;

class HelperDialogsTest : public testing::Test {
protected:
    HelperDialogsTest() { SetEnvironment("DISPLAY", ":of-the-test"); }
    ~HelperDialogsTest() override {
        siginfo_t ignored{};
        EXPECT_NE(waitid(P_ALL, 0, &ignored, WEXITED | WNOHANG), 0) << "a process stayed behind";
    }

    /// The script's first lines are read from the host: the request.
    HelperDialogs With(const std::string& script, const DialogLimits& limits = {}) {
        const std::string path = mFolder / "dialogs";
        std::ofstream(path) << "#!/bin/sh\nread request <&3\n" << script << "\n";
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return {path, limits};
    }

    const TemporaryFolder mFolder;
    Form mForm{"Title",
               {FormText{"Text"}, FormCheckBox{"Box", false}, FormList{{"a", "b"}, 1},
                FormChoices{{{"Row", {"x", "y"}, 0}, {"None", {}, 0}}}},
               {{1, "OK"}, {kFormCancelled, "Cancel"}},
               1};
};

std::string Saying(const std::string& message) {
    return "echo '" + message + "' >&3; exec sleep 60";
}

TEST_F(HelperDialogsTest, AnAnswerComesBackIntoTheForm) {
    HelperDialogs dialogs = With(Saying(R"({"answer":{"button":1,"values":[null,true,0,[1,0]]}})"));
    EXPECT_EQ(dialogs.ShowForm(nullptr, mForm), 1);
    EXPECT_EQ(dialogs.TakeFailure(), "");
    EXPECT_TRUE(std::get<FormCheckBox>(mForm.controls[1]).isChecked);
    EXPECT_EQ(std::get<FormList>(mForm.controls[2]).selected, 0u);
    EXPECT_EQ(std::get<FormChoices>(mForm.controls[3]).rows[0].selected, 1u);
}

TEST_F(HelperDialogsTest, WhatIsNoAnswerCancelsWithAReasonAndChangesNothing) {
    const DialogLimits ample{60s, 60s, 4096};
    const DialogLimits quick{60s, 100ms, 4096};
    const std::tuple<std::string, DialogLimits, const char*> cases[] = {
        {"exit 0", ample, "has ended"},
        {"kill -SEGV $$", ample, "has ended"},
        {Saying("OK"), ample, "nobody understands"},
        {Saying("[]"), ample, "nobody understands"},
        {"exec head -c 99999 /dev/zero >&3", ample, "too much"},
        {"exec yes '{\"alive\":true,\"used\":true}' >&3", ample, "too much"},
        {"exec sleep 60", quick, "does not react"},
        {"while sleep 0.05; do echo '{\"alive\":true}' >&3; done",
         {300ms, 60s, 4096},
         "nobody has touched it"},
        {Saying(R"({"answer":"stop"})"), ample, "not asked"},
        {Saying(R"({"answer":{"button":7,"values":[null,true,0,[1,0]]}})"), ample, "not asked"},
        {Saying(R"({"answer":{"button":1,"values":[null,true,2,[1,0]]}})"), ample, "not asked"},
        {Saying(R"({"answer":{"button":1,"values":[null,true,-1,[1,0]]}})"), ample, "not asked"},
        {Saying(R"({"answer":{"button":1,"values":[null,true,0,[1,1]]}})"), ample, "not asked"},
        {Saying(R"({"answer":{"button":1,"values":[null,true,0,[1]]}})"), ample, "not asked"},
        {Saying(R"({"answer":{"button":1,"values":[null,true,0]}})"), ample, "not asked"},
        {Saying(R"({"answer":{"button":1,"values":[null,1,0,[1,0]]}})"), ample, "not asked"}};
    for (const auto& [script, limits, reason] : cases) {
        HelperDialogs dialogs = With(script, limits);
        EXPECT_EQ(dialogs.ShowForm(nullptr, mForm), kFormCancelled) << script;
        EXPECT_THAT(dialogs.TakeFailure(), HasSubstr(reason)) << script;
        EXPECT_EQ(dialogs.TakeFailure(), "") << "told once";
        EXPECT_FALSE(std::get<FormCheckBox>(mForm.controls[1]).isChecked) << script;
        EXPECT_TRUE(dialogs.IsAvailable()) << "the next one may work";
    }
}

TEST_F(HelperDialogsTest, WhoUsesADialogIsWaitedFor) {
    HelperDialogs dialogs = With(
        "for i in 1 2 3 4 5 6 7 8 9; do sleep 0.25; echo '{\"alive\":true,\"used\":true}' >&3; "
        "done; " +
            Saying(R"({"answer":{"button":1,"values":[null]}})"),
        {2s, 60s, 4096});
    EXPECT_TRUE(dialogs.ShowMessage(nullptr, "", "Text", {"Yes", "No"}));
    EXPECT_EQ(dialogs.TakeFailure(), "");
}

TEST_F(HelperDialogsTest, ADisplayThatCannotBeOpenedIsNotTriedAgain) {
    HelperDialogs dialogs = With(Saying(R"({"failure":"the display is closed"})"));
    EXPECT_FALSE(dialogs.ShowMessage(nullptr, "Title", "Text", {"OK", ""}));
    EXPECT_EQ(dialogs.TakeFailure(), "the display is closed");
    EXPECT_FALSE(dialogs.IsAvailable());
    EXPECT_EQ(dialogs.TakeFailure(), "");
    SetEnvironment("DISPLAY", "");
    SetEnvironment("WAYLAND_DISPLAY", "");
    EXPECT_FALSE(With("").IsAvailable());
    SetEnvironment("WAYLAND_DISPLAY", "wayland-0");
    EXPECT_TRUE(With("").IsAvailable());
    SetEnvironment("WAYLAND_DISPLAY", "");
}

TEST_F(HelperDialogsTest, AFolderIsAPathOrNone) {
    using Outcome = FolderAnswer::Outcome;
    const std::tuple<const char*, Outcome, const char*> cases[] = {
        {R"({"outcome":"chosen","path":"/tmp/ü"})", Outcome::kChosen, ""},
        {R"({"outcome":"cancelled","path":""})", Outcome::kCancelled, ""},
        {R"({"outcome":"noPath","path":""})", Outcome::kNoPath, ""},
        {R"({"outcome":"lost","path":""})", Outcome::kCancelled, "not asked"},
        {R"({"outcome":"chosen","path":7})", Outcome::kCancelled, "not asked"}};
    for (const auto& [answer, outcome, reason] : cases) {
        HelperDialogs dialogs = With(Saying("{\"answer\":" + std::string(answer) + "}"));
        const FolderAnswer folder = dialogs.ChooseFolder(nullptr, "Where?", "/tmp");
        EXPECT_EQ(folder.outcome, outcome) << answer;
        EXPECT_EQ(folder.path, outcome == Outcome::kChosen ? "/tmp/ü" : "");
        EXPECT_THAT(dialogs.TakeFailure(), HasSubstr(reason));
    }
}

TEST_F(HelperDialogsTest, TheProcessHasNothingOfTheHostsAndTheHostMayCollectIt) {
    constexpr int kDescriptorOfTheHost = 777;
    ASSERT_EQ(dup2(STDIN_FILENO, kDescriptorOfTheHost), kDescriptorOfTheHost);
    const auto previousChild = std::signal(SIGCHLD, SIG_IGN), previousTerm = std::signal(SIGTERM, SIG_IGN);
    {
        const ScopedSignalBlock block;
        HelperDialogs dialogs = With(
            "signals=$(grep -E 'Sig(Ign|Blk)' /proc/$$/status | tr -d '\\n\\t')\n"
            "echo \"{\\\"failure\\\":\\\"$signals \"$(ls /proc/$$/fd)\"\\\"}\" >&3; exec sleep 60");
        dialogs.ShowMessage(nullptr, "Title", "Text", {"OK", ""});
        EXPECT_THAT(dialogs.TakeFailure(),
                    testing::AllOf(testing::ContainsRegex("SigBlk:0{16}SigIgn:0{7}[01][08]0{7} "),
                                   Not(HasSubstr("777"))))
            << "but for the two signals that are the C library's own";
    }
    std::signal(SIGCHLD, previousChild);
    std::signal(SIGTERM, previousTerm);
    close(kDescriptorOfTheHost);
}

TEST_F(HelperDialogsTest, AWorkGoesOnWhateverItsWindowDoesUntilItIsStopped) {
    {
        HelperDialogs dialogs = With("exec cat <&3 >'" + (mFolder / "steps") + "'");
        const auto progress = dialogs.OpenProgress(nullptr, "Title", "Cancel");
        EXPECT_TRUE(progress->Show(1, 3));
        EXPECT_TRUE(Eventually([&] { return ContentOf(mFolder / "steps") == "{\"done\":1,\"total\":3}\n"; }));
    }
    HelperDialogs silent = With("exec sleep 60");
    const auto unread = silent.OpenProgress(nullptr, "Title", "Cancel");
    for (int step = 0; step < 50'000; ++step)
        ASSERT_TRUE(unread->Show(step, 50'000)) << "and never waits";
    HelperDialogs dying = With("exit 1");
    const auto lost = dying.OpenProgress(nullptr, "Title", "Cancel");
    EXPECT_TRUE(Eventually([&] { return lost->Show(1, 3) && !dying.TakeFailure().empty(); }));
    EXPECT_TRUE(lost->Show(2, 3));
    HelperDialogs stopping = With(Saying(R"({"answer":"stop"})"));
    const auto stopped = stopping.OpenProgress(nullptr, "Title", "Cancel");
    EXPECT_TRUE(Eventually([&] { return !stopped->Show(1, 3); }));
}

}  // namespace
