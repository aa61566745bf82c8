// Whom the library asks when a person sits at a terminal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include "presenters/Presenter.h"
#include "tests/FrameworkTestSupport.h"

namespace {

using testing::HasSubstr;

/// Asks, in a child process with a terminal of its own, whoever the environment says; answers the child's
/// exit status, which is the answer, and what the terminal showed.
std::pair<int, std::string> AskWithTerminal(const std::string& typed) {
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0)
        _exit(ChoosePresenter("en")->AskMessageBox({609, 610, MessageBoxButtons::kYesNo, "Title", "Text"}));
    EXPECT_EQ(write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    std::string shown;
    char bytes[256];
    for (ssize_t count = 0; (count = read(terminal, bytes, sizeof bytes)) > 0;)
        shown.append(bytes, static_cast<size_t>(count));
    close(terminal);
    int status = -1;
    waitpid(child, &status, 0);
    return {WEXITSTATUS(status), shown};
}

TEST(ChoosePresenter, AsksInTheTerminalUnlessThereAreAnswers) {
    int terminal = -1;
    int user = -1;
    if (openpty(&terminal, &user, nullptr, nullptr, nullptr) != 0)
        GTEST_SKIP() << "this machine has no pseudo-terminals";
    close(terminal);
    close(user);
    TemporaryFolder folder;
    WriteText(folder / "answers", R"([{"titleID": 609, "answer": 1}])");
    const ScopedVariable noLog("PLUGINCORE_ANSWERS_LOG", "");
    const ScopedVariable unnamed("PLUGINCORE_PRESENTER", "");
    {
        const ScopedVariable noAnswers("PLUGINCORE_ANSWERS", "");
        const auto [answer, shown] = AskWithTerminal("yes\n");
        EXPECT_EQ(answer, 1);
        EXPECT_THAT(shown, HasSubstr("1: Yes"));
        EXPECT_EQ(AskWithTerminal("\004").first, 2) << "end of input";
        const ScopedVariable silent("PLUGINCORE_PRESENTER", "silent");
        EXPECT_EQ(AskWithTerminal("yes\n").first, 2) << "not asked";
    }
    const ScopedVariable answers("PLUGINCORE_ANSWERS", folder / "answers");
    const auto [answer, shown] = AskWithTerminal("no\n");
    EXPECT_EQ(answer, 1);
    EXPECT_THAT(shown, testing::Not(HasSubstr("1: Yes")));
}

}  // namespace
