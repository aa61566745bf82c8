#include "platform/Worker.h"

#include <gtest/gtest.h>

#include <thread>

#include "TemporaryFolder.h"
#include "TestFiles.h"
#include "platform/Files.h"
#include "platform/System.h"
#include "platform/Utf8Path.h"
#include "support/WorkerTestLimits.h"

namespace platform {
namespace {

using Outcome = Worker::Outcome;

class WorkerTest : public testing::Test {
protected:
    WorkerTest() {
        const std::string path = Utf8Text(mFolder.Path() / "file");
        EXPECT_FALSE(WriteWholeFile(path, "content"));
        EXPECT_FALSE(mFile.Open(path));
        mWorker = Worker::Start(BuiltFile(WORKER_PROGRAM), kTestWorkerLimits, mError);
        EXPECT_TRUE(mWorker) << SystemErrorText(mError);
    }
    Outcome Ask(const std::string& request) { return mWorker->Exchange(request, mFile, mAnswer, mProblem); }

    TemporaryFolder mFolder;
    ReadOnlyFile mFile;
    SystemError mError;
    std::unique_ptr<Worker> mWorker;
    std::string mAnswer;
    std::string mProblem;
};

TEST_F(WorkerTest, AnswersOneRequestAfterTheOther) {
    for (const std::string request : {"", "first ", "second ", "sort much"}) {
        ASSERT_EQ(Ask(request), Outcome::kAnswered) << mProblem;
        EXPECT_EQ(mAnswer, request + "content");
    }
    EXPECT_EQ(Ask(std::string(60000, 'x')), Outcome::kAnswered) << mProblem;
}

TEST_F(WorkerTest, HasLetGoOfTheFileWhenItAnswers) {
    for (size_t size = 1; size < 50; ++size) {
        const std::string content(size, 'x');
        ReadOnlyFile file;
        ASSERT_FALSE(file.Open(mFolder.Write("font", content)));
        ASSERT_EQ(mWorker->Exchange("", file, mAnswer, mProblem), Outcome::kAnswered) << mProblem;
        ASSERT_EQ(mAnswer, content) << "Windows does not let a file be cut off that somebody has mapped";
    }
    const std::string large = mFolder.Write("large", "");
    std::filesystem::resize_file(Utf8Path(large), 64 << 20);
    ASSERT_FALSE(mFile.Open(large));
    for (int time = 0; time < 20; ++time) {  // more than the memory that it may have
        ASSERT_EQ(Ask("size"), Outcome::kAnswered) << mProblem;
        ASSERT_EQ(mAnswer, std::to_string(64 << 20));
    }
}

TEST_F(WorkerTest, IsEndedWhenItDoesWhatItMustNotAndNotStartedAgain) {
    const struct {
        const char *request, *problem;
        Outcome outcome;
    } cases[] = {{"loop", "took too long", Outcome::kOverLimit},
                 {"wait", "took too long", Outcome::kOverLimit},
                 {"answer with much", "answered with too much", Outcome::kOverLimit},
                 {"crash", "crashed", Outcome::kDied}};
    for (const auto& each : cases) {
        mWorker = Worker::Start(BuiltFile(WORKER_PROGRAM), kTestWorkerLimits, mError);
        EXPECT_EQ(Ask(each.request), each.outcome);
        EXPECT_NE(mProblem.find(each.problem), std::string::npos) << mProblem;
        EXPECT_EQ(Ask("hello"), Outcome::kDied);
    }
}

TEST_F(WorkerTest, OnLinuxOpensNoFileStartsNoProgramAndHasTheMemoryThatItMayHave) {
#ifdef PLUGINCORE_UNCONFINED
    GTEST_SKIP() << "sanitizers need more than a worker may have";
#endif
    if (!kIsLinux)
        GTEST_SKIP() << "the system confines it in another way";
    for (const char* request : {"read a file", "start a program"}) {
        mWorker = Worker::Start(BuiltFile(WORKER_PROGRAM), kTestWorkerLimits, mError);
        EXPECT_NE(Ask(request), Outcome::kAnswered) << request;
        EXPECT_EQ(mProblem, "tried to do what it must not") << request;
    }
    mWorker = Worker::Start(BuiltFile(WORKER_PROGRAM), kTestWorkerLimits, mError);
    EXPECT_EQ(Ask("fill the memory"), Outcome::kAnswered) << mProblem;
    EXPECT_EQ(mAnswer, "no memory");
}

TEST_F(WorkerTest, ACancellationEndsAnExchange) {
    std::thread other([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        mWorker->Cancel();
    });
    EXPECT_EQ(Ask("loop"), Outcome::kDied);
    other.join();
    EXPECT_EQ(mProblem, "was cancelled");
}

}  // namespace
}  // namespace platform
