#include "FaultRun.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <new>
#include <stdexcept>

#include "platform/Environment.h"
#include "platform/Files.h"

namespace {

constexpr Fault kNoFault{"none", FaultPlan::kNothing, false};
constexpr std::array<Fault, 5> kFaults = {{{"disk full once", FaultPlan::kDiskFull, false},
                                           {"disk stays full", FaultPlan::kDiskFull, true},
                                           {"I/O error once", FaultPlan::kInputOutputError, false},
                                           {"I/O errors from then on", FaultPlan::kInputOutputError, true},
                                           {"killed after it", FaultPlan::kKill, false}}};

bool MeetsEveryFault() {
    return !platform::EnvironmentVariable("PLUGINCORE_EVERY_FAULT").empty();
}

/// Every other call and one kind of fault for it, each in turn.
bool IsInSample(int at, size_t kind) {
    return at % 2 == 1 && static_cast<size_t>(at / 2) % kFaults.size() == kind;
}

}  // namespace

FaultControl::FaultControl(const std::string& path) : mPath(path) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    void* memory = file >= 0 && ftruncate(file, sizeof(FaultPlan)) == 0
                       ? mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
                       : MAP_FAILED;
    close(file);
    if (memory == MAP_FAILED)
        throw std::runtime_error("no shared memory at " + path);
    mPlan = new (memory) FaultPlan{};
}

FaultControl::~FaultControl() {
    munmap(mPlan, sizeof(FaultPlan));
}

void FaultControl::Begin(const Fault& fault, int at) {
    End();
    mPlan->at = at;
    mPlan->lasts = fault.lasts;
    mPlan->count = 0;
    mPlan->failedCalls = 0;
    mPlan->keptFile = false;
    mPlan->where[0] = '\0';
    mPlan->kind = at != 0 ? fault.kind : FaultPlan::kNothing;
}

void FaultControl::End() {
    mPlan->kind = FaultPlan::kNothing;
    mCount = mPlan->count;
}

FaultyStart::FaultyStart(const FaultControl& faults, const std::string& folder) {
    // By its name alone: blanks separate the libraries in that list, and the checkout's path may have some.
    platform::SetEnvironment("LD_PRELOAD", platform::NamePart(FAILING_WRITES_LIBRARY));
    platform::SetEnvironment("LD_LIBRARY_PATH",
                             std::filesystem::path(FAILING_WRITES_LIBRARY).parent_path().string());
    platform::SetEnvironment("FAILING_WRITES_PLAN", faults.Path());
    platform::SetEnvironment("FAILING_WRITES_BELOW", std::filesystem::weakly_canonical(folder).string());
}

FaultyStart::~FaultyStart() {
    for (const char* variable :
         {"LD_PRELOAD", "LD_LIBRARY_PATH", "FAILING_WRITES_PLAN", "FAILING_WRITES_BELOW"})
        platform::SetEnvironment(variable, "");
}

void MeetEveryFault(const std::string& name, FaultControl& faults,
                    const std::function<void(const Fault&, int)>& attempt) {
    attempt(kNoFault, 0);
    const int calls = faults.Count();
    ASSERT_GT(calls, 0) << name << ": no write was seen";
    int met = 0;
    const int first = static_cast<int>(name.size());  // not the same sample for all
    for (int at = 1; at <= calls; ++at) {
        for (size_t kind = 0; kind < kFaults.size(); ++kind) {
            if (!MeetsEveryFault() && !IsInSample(at + first, kind))
                continue;
            SCOPED_TRACE(name + ", call " + std::to_string(at) + ": " + kFaults[kind].name);
            attempt(kFaults[kind], at);
            ++met;
        }
    }
    std::printf("%s: %d writes, flushes and renames; %d faults\n", name.c_str(), calls, met);
}
