// Work beside the loop that answers clients.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "workers/FontWorker.h"

namespace pellwick {

/// A thread that does one job after the other, with a process of its own to read fonts. Jobs know nothing of
/// the database, which is the loop's.
class Lane {
public:
    using Job = std::function<void(FontWorker& worker)>;

    /// `workerProgram`: full path of the program that reads fonts.
    explicit Lane(const std::string& workerProgram);
    /// Drops the jobs that were not begun and waits for the one under way, which FontWorker::StopFlag tells.
    ~Lane();
    Lane(const Lane&) = delete;
    Lane& operator=(const Lane&) = delete;

    /// Any thread. The job must not throw.
    void Post(Job job);
    /// Whether there is nothing to do.
    bool IsIdle();

private:
    void Run();

    FontWorker mWorker;
    std::mutex mJobsLock;  ///< guards what follows
    std::condition_variable mChanged;
    std::deque<Job> mJobs;  ///< the first is under way
    bool mIsEnding = false;
    std::thread mThread;  ///< last: it uses all the others
};

}  // namespace pellwick
