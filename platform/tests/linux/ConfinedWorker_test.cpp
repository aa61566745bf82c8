// Linux ends a worker that tries to open a file or to start a program, and gives it no more memory than
// agreed.
#include <gtest/gtest.h>

#include "TestFiles.h"
#include "platform/Worker.h"
#include "support/WorkerTestLimits.h"

namespace platform {
namespace {

/// What a worker of its own answers; empty when it is ended instead, and `problem` says why.
std::string Ask(const std::string& request, std::string& problem) {
    SystemError error;
    ReadOnlyFile file;
    const auto worker = Worker::Start(BuiltFile(WORKER_PROGRAM), kTestWorkerLimits, error);
    EXPECT_TRUE(worker) << SystemErrorText(error);
    EXPECT_FALSE(file.Open(BuiltFile(WORKER_PROGRAM)));
    std::string answer;
    const auto outcome = worker->Exchange(request, file, answer, problem);
    return outcome == Worker::Outcome::kAnswered ? answer : std::string();
}

TEST(ConfinedWorker, IsEndedWhenItOpensAFileOrStartsAProgram) {
    for (const char* request : {"read a file", "start a program"}) {
        std::string problem;
        EXPECT_EQ(Ask(request, problem), "") << request;
        EXPECT_EQ(problem, "tried to do what it must not") << request;
    }
}

TEST(ConfinedWorker, GetsNoMoreMemoryThanItMayHave) {
    std::string problem;
    EXPECT_EQ(Ask("fill the memory", problem), "no memory") << problem;
}

}  // namespace
}  // namespace platform
