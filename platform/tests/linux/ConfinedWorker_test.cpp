// Linux ends a worker that tries to open a file.
#include <gtest/gtest.h>

#include "platform/Worker.h"
#include "support/WorkerTestLimits.h"

namespace platform {
namespace {

TEST(ConfinedWorker, OpensNoFile) {
    SystemError error;
    const auto worker = Worker::Start(WORKER_PROGRAM, kTestWorkerLimits, error);
    ASSERT_TRUE(worker) << SystemErrorText(error);
    ReadOnlyFile file;
    ASSERT_FALSE(file.Open(WORKER_PROGRAM));
    std::string answer;
    std::string problem;
    EXPECT_EQ(worker->Exchange("read a file", file, answer, problem), Worker::Outcome::kDied);
    EXPECT_EQ(problem, "tried to do what it must not");
}

}  // namespace
}  // namespace platform
