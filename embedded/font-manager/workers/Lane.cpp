#include "workers/Lane.h"

#include "common/FontManagerLimits.h"
#include "platform/Processes.h"

namespace pellwick {

Lane::Lane(const std::string& workerProgram) : mWorker(workerProgram) {
    const platform::ScopedSignalBlock block;
    mThread = std::thread([this] { Run(); });
}

Lane::~Lane() {
    {
        const std::lock_guard guard(mJobsLock);
        mIsEnding = true;
    }
    mWorker.Stop();
    mChanged.notify_all();
    mThread.join();
}

void Lane::Post(Job job) {
    const std::lock_guard guard(mJobsLock);
    mJobs.push_back(std::move(job));
    mChanged.notify_all();
}

bool Lane::IsIdle() {
    const std::lock_guard guard(mJobsLock);
    return mJobs.empty();
}

void Lane::Run() {
    const auto isCalled = [this] { return mIsEnding || !mJobs.empty(); };
    std::unique_lock guard(mJobsLock);
    while (!mIsEnding) {
        if (!mChanged.wait_for(guard, kWorkerIdleTime, isCalled)) {
            guard.unlock();
            mWorker.Rest();
            guard.lock();
            mChanged.wait(guard, isCalled);
            continue;
        }
        if (mIsEnding)
            return;
        const Job job = std::move(mJobs.front());
        guard.unlock();
        job(mWorker);
        guard.lock();
        mJobs.pop_front();
    }
}

}  // namespace pellwick
