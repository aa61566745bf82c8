#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "FrameworkTestSupport.h"
#include "presenters/Presenter.h"
#include "presenters/RecordingPresenter.h"
#include "presenters/ScriptedPresenter.h"
#include "presenters/SilentPresenter.h"
#include "presenters/TerminalPresenter.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr auto kOk = MessageBoxButtons::kOk;
constexpr auto kYesNo = MessageBoxButtons::kYesNo;

MessageBoxQuestion Question(uint32_t titleID, uint32_t textID, MessageBoxButtons buttons = kYesNo) {
    return {titleID, textID, buttons, "Title", "Text"};
}

TEST(SilentPresenter, GivesTheDefaultAnswerAndLogsIt) {
    CapturedTrace log;
    SilentPresenter presenter;
    EXPECT_EQ(presenter.AskMessageBox(Question(604, 605)), 2);
    EXPECT_EQ(presenter.AskMessageBox(Question(600, 601, kOk)), 1);
    EXPECT_TRUE(presenter.AskDialog({"About", {}}).is_null());
    EXPECT_EQ(log.LineCount(), 3u);
    EXPECT_THAT(log.Text(), HasSubstr("604/605"));
}

TEST(ScriptedPresenter, TakesTheFirstEntryThatFitsAndUsesItUpUnlessItRepeats) {
    ScriptedPresenter presenter(json::parse(R"([
        {"answer": 1},
        {"titleID": 604, "textID": 606, "answer": 1},
        {"titleID": 604, "textID": 605, "answer": 1},
        {"titleID": 604, "textID": 605, "answer": 2},
        {"titleID": 609, "answer": 1, "repeat": true},
        {"dialog": "SelectWorkgroup", "answer": {"workgroupID": 3}}])"));
    EXPECT_EQ(presenter.AskMessageBox(Question(1, 2)), 2) << "an entry without identifiers fits nothing";
    EXPECT_EQ(presenter.AskMessageBox(Question(604, 605)), 1);
    EXPECT_EQ(presenter.AskMessageBox(Question(604, 605)), 2);
    EXPECT_EQ(presenter.AskMessageBox(Question(604, 606)), 1) << "not used up by the questions before";
    EXPECT_EQ(presenter.AskMessageBox(Question(604, 606)), 2);
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(presenter.AskMessageBox(Question(609, 610)), 1);
    EXPECT_TRUE(presenter.AskDialog({"About", {}}).is_null());
    EXPECT_EQ(presenter.AskDialog({"SelectWorkgroup", {}}), json({{"workgroupID", 3}}));
    EXPECT_TRUE(presenter.AskDialog({"SelectWorkgroup", {}}).is_null());
}

TEST(ScriptedPresenter, AnAnswerThatIsNoButtonIsReportedAndTheDefaultServes) {
    CapturedTrace log;
    for (const json& answer : {json(3), json(0), json("1"), json(1.5), json(true), json(1ull << 32 | 1)}) {
        ScriptedPresenter presenter(json::array({{{"titleID", 609}, {"answer", answer}}}));
        EXPECT_EQ(presenter.AskMessageBox(Question(609, 610)), 2) << answer;
    }
    EXPECT_THAT(log.Text(), HasSubstr("not the number of a button"));
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
        {"dialog": "Progress", "answer": false}])"));
    EXPECT_EQ(StoppedAt(presenter, 5), 2);
    EXPECT_EQ(StoppedAt(presenter, 5), -1);
    EXPECT_EQ(StoppedAt(presenter, 5), 0);
    EXPECT_EQ(StoppedAt(presenter, 5), -1) << "nothing was said about this one";
    EXPECT_EQ(log.Text(), "");
    ScriptedPresenter wrong(json::parse(R"([{"dialog": "Progress", "answer": {"stopAt": "2"}}])"));
    EXPECT_EQ(StoppedAt(wrong, 5), -1);
    EXPECT_THAT(log.Text(), HasSubstr("names no step to stop at"));
}

TEST(ScriptedPresenter, AFileThatIsNoListOfAnswersIsReported) {
    TemporaryFolder folder;
    EXPECT_EQ(ReadAnswersFile((WriteText(folder / "good", R"([{"titleID": 1}])"), folder / "good")).size(),
              1u);
    for (const char* content : {"{}", "[", "[1]", ""}) {
        CapturedTrace log;
        WriteText(folder / "bad", content);
        EXPECT_TRUE(ReadAnswersFile(folder / "bad").empty());
        EXPECT_EQ(log.LineCount(), 1u) << content;
    }
    CapturedTrace log;
    EXPECT_TRUE(ReadAnswersFile(folder / "missing").empty());
    EXPECT_THAT(log.Text(), HasSubstr("missing"));
}

TEST(RecordingPresenter, AppendsEachQuestionWithItsAnswerAsOneLine) {
    TemporaryFolder folder;
    WriteText(folder / "log", "before\n");
    RecordingPresenter presenter(std::make_unique<SilentPresenter>(), folder / "log");
    EXPECT_EQ(presenter.AskMessageBox({604, 605, kYesNo, "Über\n", "\xFF"}), 2);
    EXPECT_TRUE(presenter.AskDialog({"About", {{"version", "8"}}}).is_null());
    EXPECT_TRUE(presenter.ShowProgress({204, "Collect", 1, 3}));
    EXPECT_EQ(ReadText(folder / "log"),
              "before\n"
              "{\"titleID\":604,\"textID\":605,\"title\":\"Über\\n\",\"text\":\"\uFFFD\",\"buttons\":2,"
              "\"answer\":2}\n"
              "{\"dialog\":\"About\",\"details\":{\"version\":\"8\"},\"answer\":null}\n"
              "{\"dialog\":\"Progress\",\"details\":{\"titleID\":204,\"title\":\"Collect\",\"done\":1,"
              "\"total\":3},\"answer\":true}\n");
}

int32_t AskInTerminal(const std::string& typed, const std::string& language, std::string* shown = nullptr) {
    std::istringstream input(typed);
    std::ostringstream output;
    TerminalPresenter presenter({input, output, false}, language);
    const int32_t answer = presenter.AskMessageBox(Question(609, 610));
    if (shown != nullptr)
        *shown = output.str();
    return answer;
}

TEST(TerminalPresenter, UnderstandsNumbersAndTheNamesOfTheButtons) {
    for (const char* yes : {"1\n", "y\n", " YES \r\n", "1", "maybe\n3\nye\n"})
        EXPECT_EQ(AskInTerminal(yes, "en"), 1) << yes;
    for (const char* no : {"2\n", "N\n", "no\n", "\n", "", "  \n", "yes!\n", "q\n1\n"})
        EXPECT_EQ(AskInTerminal(no, "en"), 2) << no;
    EXPECT_EQ(AskInTerminal("j\n", "de"), 1);
    std::istringstream input;
    std::ostringstream output;
    TerminalPresenter presenter({input, output, false}, "en");
    EXPECT_EQ(presenter.AskMessageBox(Question(609, 610)), 2);
    input.str("1\n");
    EXPECT_EQ(presenter.AskMessageBox(Question(609, 610)), 1) << "the end of input is not for ever";
    std::string shown;
    AskInTerminal("huh\n", "en", &shown);
    EXPECT_THAT(shown, HasSubstr("Title\nText\n"));
    EXPECT_THAT(shown, HasSubstr("1: Yes  2: No  [2] That is not one of the choices.\n"));
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

}  // namespace
