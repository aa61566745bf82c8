// Has the writes of other processes go wrong, one after the other.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <new>
#include <stdexcept>

#include "FaultPlan.h"
#include "ScopedVariable.h"
#include "TestFiles.h"
#include "TestProcess.h"

/// One way in which a write may go wrong.
struct Fault {
    const char* name;
    FaultPlan::Kind kind;
    bool lasts;  ///< until the fault is ended; else the next call works again

    bool IsKill() const { return kind == FaultPlan::kKill; }
};

/// The plan for the processes that it starts, in a file of its own. They have their writes below `folder` go
/// wrong as it says.
class FaultControl {
public:
    /// `path`: of the file, which is made.
    FaultControl(const std::string& path, std::string folder) : mPath(path), mFolder(std::move(folder)) {
        const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        void* memory = file >= 0 && ftruncate(file, sizeof(FaultPlan)) == 0
                           ? mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
                           : MAP_FAILED;
        close(file);
        if (memory == MAP_FAILED)
            throw std::runtime_error("no shared memory at " + path);
        mPlan = new (memory) FaultPlan{};
    }
    ~FaultControl() { munmap(mPlan, sizeof(FaultPlan)); }
    FaultControl(const FaultControl&) = delete;
    FaultControl& operator=(const FaultControl&) = delete;

    std::unique_ptr<TestProcess> Start(const std::vector<std::string>& command) const {
        const std::filesystem::path library = BuiltFile(FAILING_WRITES_LIBRARY);
        // By its name alone: blanks separate the libraries in that list, and the checkout's path may have some.
        const ScopedVariable variables[] = {
            {"LD_PRELOAD", library.filename()},
            {"LD_LIBRARY_PATH", library.parent_path()},
            {"FAILING_WRITES_PLAN", mPath},
            {"FAILING_WRITES_BELOW", std::filesystem::weakly_canonical(mFolder)}};
        return std::make_unique<TestProcess>(command);
    }
    /// From now on the calls are counted, and the fault meets the one of that number; none with 0.
    void Begin(const Fault& fault, int at) {
        End();
        mPlan->at = at;
        mPlan->lasts = fault.lasts;
        mPlan->count = 0;
        mPlan->failedCalls = 0;
        mPlan->where[0] = '\0';
        mPlan->kind = at != 0 ? fault.kind : FaultPlan::kNothing;
    }
    /// The fault is gone, and no more is counted.
    void End() {
        mPlan->kind = FaultPlan::kNothing;
        mCount = mPlan->count;
    }

    int Count() const { return mCount; }
    bool HasHappened() const { return mPlan->failedCalls != 0; }
    /// The call and its file.
    std::string Where() const { return mPlan->where; }

    /// Calls `attempt` once without a fault to learn how many calls there are, then for each call and each
    /// kind of fault; unless PLUGINCORE_EVERY_FAULT is set, for a sample of these. Prints how many there were.
    void MeetEvery(const std::string& name, const std::function<void(const Fault&, int)>& attempt) {
        static constexpr Fault kFaults[] = {{"disk full once", FaultPlan::kDiskFull, false},
                                            {"disk stays full", FaultPlan::kDiskFull, true},
                                            {"I/O error once", FaultPlan::kInputOutputError, false},
                                            {"I/O errors from then on", FaultPlan::kInputOutputError, true},
                                            {"killed after it", FaultPlan::kKill, false}};
        const bool isEvery = !platform::EnvironmentVariable("PLUGINCORE_EVERY_FAULT").empty();
        attempt({"none", FaultPlan::kNothing, false}, 0);
        const int calls = mCount;
        ASSERT_GT(calls, 0) << name << ": no write was seen";
        int met = 0;
        for (int at = 1; at <= calls; ++at) {
            // Every other call and one kind of fault for it, each in turn; not the same sample for all.
            const size_t turn = static_cast<size_t>(at) + name.size();
            for (size_t kind = 0; kind < std::size(kFaults); ++kind) {
                if (!isEvery && (turn % 2 == 0 || turn / 2 % std::size(kFaults) != kind))
                    continue;
                SCOPED_TRACE(name + ", call " + std::to_string(at) + ": " + kFaults[kind].name);
                attempt(kFaults[kind], at);
                EXPECT_GE(mCount, at) << "it takes fewer writes than it did";
                ++met;
            }
        }
        std::printf("%s: %d writes, flushes and renames; %d faults\n", name.c_str(), calls, met);
    }

private:
    const std::string mPath;
    const std::string mFolder;
    FaultPlan* mPlan;
    int mCount = 0;
};
