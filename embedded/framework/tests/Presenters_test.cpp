#include <gmock/gmock.h>

#include "CapturedTrace.h"
#include "ScopedVariable.h"
#include "TemporaryFolder.h"
#include "presenters/NativePresenter.h"
#include "presenters/Presenter.h"
#include "presenters/RecordingPresenter.h"
#include "presenters/ScriptedPresenter.h"
#include "presenters/SilentPresenter.h"
#include "presenters/TerminalPresenter.h"
#include "tests/FakeNativeDialogs.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr auto kOk = MessageBoxButtons::kOk;
constexpr auto kYesNo = MessageBoxButtons::kYesNo;

MessageBoxQuestion Question(uint32_t titleID, uint32_t textID, MessageBoxButtons buttons = kYesNo) {
    return {titleID, textID, buttons, "Title", "Text"};
}

bool Confirms(Presenter& presenter, Dialog dialog) {
    return presenter.AskDialog(dialog);
}

TEST(ScriptedPresenter, TakesTheFirstEntryThatFitsAndUsesItUpUnlessItRepeats) {
    CapturedTrace log;
    ScriptedPresenter presenter(json::parse(R"([
        {"answer": 1}, {"titleID": 5, "answer": 7},
        {"titleID": 604, "textID": 606, "answer": 1},
        {"titleID": 604, "textID": 605, "answer": 1},
        {"titleID": 604, "textID": 605, "answer": 2},
        {"titleID": 609, "answer": 1, "repeat": true},
        {"dialog": "SelectWorkgroup", "answer": {"workgroupID": 3}}])"));
    EXPECT_EQ(presenter.AskMessageBox(Question(1, 2)), 2) << "an entry without identifiers fits nothing";
    EXPECT_THAT(log.Text(), testing::Not(HasSubstr("number of a button")));
    EXPECT_EQ(presenter.AskMessageBox(Question(5, 6)), 2);
    EXPECT_THAT(log.Text(), HasSubstr("answer to message 5/6 is not the number of a button"));
    EXPECT_EQ(presenter.AskMessageBox(Question(604, 605)), 1);
    EXPECT_EQ(presenter.AskMessageBox(Question(604, 605)), 2);
    EXPECT_EQ(presenter.AskMessageBox(Question(604, 606)), 1) << "not used up by the questions before";
    EXPECT_EQ(presenter.AskMessageBox(Question(604, 606)), 2);
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(presenter.AskMessageBox(Question(609, 610)), 1);
    EXPECT_FALSE(Confirms(presenter, AboutDialog()));
    EXPECT_TRUE(Confirms(presenter, SelectWorkgroupDialog{{{3, "Print"}}, 1}));
    EXPECT_FALSE(Confirms(presenter, SelectWorkgroupDialog{{{3, "Print"}}, 3}));
}

/// The step at which a work of `total` steps is told to stop; -1 for never.
int32_t StoppedAt(Presenter& presenter, int32_t total) {
    for (int32_t done = 0; done <= total; ++done) {
        if (!presenter.ShowProgress({204, "Collect", done, total}))
            return done;
    }
    return -1;
}

TEST(ScriptedPresenter, AnEntryStopsOneWorkAtItsStep) {
    CapturedTrace log;
    ScriptedPresenter presenter(json::parse(R"([
        {"dialog": "Progress", "answer": {"stopAt": 2}}, {"dialog": "Progress", "answer": true},
        {"dialog": "Progress", "answer": false}, {"dialog": "Progress", "answer": {"stopAt": "2"}}])"));
    for (const int32_t step : {2, -1, 0})
        EXPECT_EQ(StoppedAt(presenter, 5), step);
    EXPECT_EQ(log.Text(), "");
    EXPECT_EQ(StoppedAt(presenter, 5), -1);
    EXPECT_THAT(log.Text(), HasSubstr("names no step to stop at"));
    EXPECT_EQ(StoppedAt(presenter, 5), -1) << "nothing was said about this one";
}

TEST(ScriptedPresenter, AFileThatIsNoListOfAnswersIsReported) {
    TemporaryFolder folder;
    const std::string path = folder / "answers";
    for (const char* content : {"(missing)", "{}", "[", "[1]", ""}) {
        CapturedTrace log;
        if (*content != '(')
            WriteText(path, content);
        EXPECT_TRUE(ReadAnswersFile(path).empty());
        EXPECT_EQ(log.LineCount(), 1u) << content;
    }
}

TEST(RecordingPresenter, AppendsEachQuestionWithItsAnswerAsOneLine) {
    TemporaryFolder folder;
    WriteText(folder / "log", "before\n");
    const json answers = {{{"dialog", "About"}, {"answer", json::object()}}};
    RecordingPresenter presenter(std::make_unique<ScriptedPresenter>(answers), folder / "log");
    EXPECT_EQ(presenter.AskMessageBox({604, 605, kYesNo, "Über\n", "\xFF"}), 2);
    EXPECT_TRUE(Confirms(presenter, AboutDialog{"8"}));
    EXPECT_FALSE(Confirms(presenter, AboutDialog{"9"}));
    EXPECT_TRUE(presenter.ShowProgress({204, "Collect", 1, 3}));
    EXPECT_EQ(ContentOf(folder / "log"),
              "before\n"
              "{\"titleID\":604,\"textID\":605,\"title\":\"Über\\n\",\"text\":\"\uFFFD\",\"buttons\":2,"
              "\"answer\":2}\n"
              "{\"dialog\":\"About\",\"details\":{\"version\":\"8\"},\"answer\":true}\n"
              "{\"dialog\":\"About\",\"details\":{\"version\":\"9\"},\"answer\":false}\n"
              "{\"dialog\":\"Progress\",\"details\":{\"titleID\":204,\"title\":\"Collect\",\"done\":1,"
              "\"total\":3},\"answer\":true}\n");
}

TEST(TerminalPresenter, AMessageWithOneButtonIsNotWaitedForAndColorsAreOptional) {
    std::istringstream input("for the host\n");
    std::ostringstream plain, colored;
    EXPECT_EQ(TerminalPresenter({input, plain, false}, "en").AskMessageBox(Question(600, 601, kOk)), 1);
    EXPECT_EQ(TerminalPresenter({input, colored, true}, "en").AskMessageBox(Question(600, 601, kOk)), 1);
    EXPECT_EQ(input.tellg(), 0);
    EXPECT_EQ(plain.str(), "Title\nText\n");
    EXPECT_THAT(colored.str(), HasSubstr("\033["));
    const ScopedVariable noColor("NO_COLOR", "1");
    EXPECT_FALSE(Terminal::StandardStreams().hasColor);
}

TEST(TerminalPresenter, ProgressIsDrawnOverItselfAndLeavesAWholeLine) {
    std::istringstream input;
    std::ostringstream output;
    TerminalPresenter presenter({input, output, false}, "en");
    EXPECT_EQ(StoppedAt(presenter, 1), -1);
    EXPECT_TRUE(presenter.ShowProgress({204, "Collect...", 3, 4}));
    presenter.AskMessageBox(Question(600, 601, kOk));
    EXPECT_EQ(output.str(),
              "\rCollect  [....................] 0/1\rCollect  [####################] 1/1\n"
              "\rCollect  [###############.....] 3/4\nTitle\nText\n");
}

TEST(NativePresenter, AWorkHasAWindowUntilItEndsOrIsStoppedOrSomethingElseIsShown) {
    FakeNativeDialogs dialogs;
    NativePresenter presenter(dialogs, "en");
    EXPECT_EQ(StoppedAt(presenter, 2), -1);
    dialogs.stopAt = 1;
    EXPECT_EQ(StoppedAt(presenter, 2), 1);
    presenter.ShowProgress({204, "Collect...", 0, 2});
    presenter.AskMessageBox(Question(600, 601, kOk));
    EXPECT_TRUE(presenter.ShowProgress({204, "Collect...", 1, 2})) << "a step of a work whose window is gone";
    EXPECT_EQ(dialogs.shown,
              "open Collect <Cancel>\n0/2\n1/2\n2/2\nclose\n"
              "open Collect <Cancel>\n0/2\n1/2\nclose\n"
              "open Collect <Cancel>\n0/2\nclose\nTitle\nText\n<OK>\n");
}

TEST(NativePresenter, WhatNobodyAnswersGetsTheDefaultAnswerAndIsLoggedWithItsReason) {
    FakeNativeDialogs dialogs;
    NativePresenter presenter(dialogs, "en");
    dialogs.clicks = "Yes";
    for (const bool isAvailable : {true, false}) {
        CapturedTrace log;
        dialogs.isAvailable = isAvailable;
        dialogs.failure = isAvailable ? "no sign of life" : "";
        EXPECT_EQ(presenter.AskMessageBox(Question(609, 610)), 2);
        EXPECT_THAT(log.Text(), HasSubstr("answered with button 2"));
        EXPECT_EQ(log.Text().find("no sign of life") != std::string::npos, isAvailable);
        dialogs.failure = isAvailable ? "no sign of life" : "";
        EXPECT_FALSE(Confirms(presenter, AboutDialog())) << "however it is closed, nobody did";
        EXPECT_THAT(log.Text(), HasSubstr("About"));
    }
    EXPECT_EQ(dialogs.owners.size(), 2u) << "where nothing can be shown, nothing is tried";
}

/// Whom the environment chooses where the system can show dialogs, told by who answers.
TEST(ChoosePresenter, AnswersComeBeforeTheOneThatIsNamedAndWindowsBeforeAllElse) {
    TemporaryFolder folder;
    FakeNativeDialogs dialogs;
    dialogs.clicks = "Yes";
    const platform::ScopedOverride<platform::NativeDialogs> override(dialogs);
    const ScopedVariable answersLog("PLUGINCORE_ANSWERS_LOG", folder / "log");
    WriteText(folder / "answers", R"([{"titleID": 609, "answer": 2}])");
    // What is named, the file of answers, whether dialogs can be shown; the answer, and what is reported.
    const std::tuple<const char*, std::string, bool, int, std::string> cases[] = {
        {"", "", true, 1, ""},
        {"native", "answers", true, 2, ""},
        {"silent", "", true, 2, "button 2"},
        {"native", "", true, 1, ""},
        {"native", "", false, 2, "No dialogs can be shown here"},
        {"Native", "", true, 1, "'Native'"}};
    for (const auto& [name, file, isAvailable, answer, reported] : cases) {
        CapturedTrace log;
        dialogs.isAvailable = isAvailable;
        dialogs.owners.clear();
        const ScopedVariable named("PLUGINCORE_PRESENTER", name);
        const ScopedVariable answers("PLUGINCORE_ANSWERS", file.empty() ? "" : folder / file);
        EXPECT_EQ(ChoosePresenter("en")->AskMessageBox(Question(609, 610)), answer) << name;
        EXPECT_EQ(dialogs.owners.size(), answer == 1 ? 1u : 0u) << name;
        EXPECT_EQ(log.Text().empty(), reported.empty());
        EXPECT_THAT(log.Text(), HasSubstr(reported));
    }
    EXPECT_THAT(ContentOf(folder / "log"), HasSubstr("\"answer\":1}\n{"));
    const ScopedVariable terminal("PLUGINCORE_PRESENTER", "terminal"), noAnswers("PLUGINCORE_ANSWERS", "");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(Confirms(*ChoosePresenter("en"), AboutDialog()));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("Quillon Type Client"));
}

}  // namespace
