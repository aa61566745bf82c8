// Shared memory in which a test says which writes of a process go wrong, and reads how many there were.
#pragma once

#include <atomic>

struct FaultPlan {
    enum Kind : int { kNothing, kDiskFull, kInputOutputError, kKill };

    std::atomic<int> kind;         ///< what is to happen
    std::atomic<int> at;           ///< to the call of this number, counted from 1
    std::atomic<bool> lasts;       ///< and to every later one
    std::atomic<int> count;        ///< calls so far
    std::atomic<int> failedCalls;  ///< those that it happened to
    char where[512];               ///< the first of them, and its file
};
