// Has the writes of other processes go wrong, one after the other.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "FaultPlan.h"

/// One way in which a write may go wrong.
struct Fault {
    const char* name;
    FaultPlan::Kind kind;
    bool lasts;  ///< until the fault is ended; else the next call works again
};

/// The plan for the processes that are started while a FaultyStart lives, in a file of its own.
class FaultControl {
public:
    /// `path`: of the file, which is made.
    explicit FaultControl(const std::string& path);
    ~FaultControl();
    FaultControl(const FaultControl&) = delete;
    FaultControl& operator=(const FaultControl&) = delete;

    const std::string& Path() const { return mPath; }
    /// From now on the calls are counted, and the fault meets the one of that number; none with 0.
    void Begin(const Fault& fault, int at);
    /// The fault is gone, and no more is counted.
    void End();

    int Count() const { return mCount; }
    bool HasHappened() const { return mPlan->failedCalls != 0; }
    bool HasKeptFile() const { return mPlan->keptFile; }
    /// The call and its file.
    std::string Where() const { return mPlan->where; }

private:
    const std::string mPath;
    FaultPlan* mPlan;
    int mCount = 0;
};

/// Processes started in this scope have their writes below `folder` go wrong as the plan says.
class FaultyStart {
public:
    FaultyStart(const FaultControl& faults, const std::string& folder);
    ~FaultyStart();
    FaultyStart(const FaultyStart&) = delete;
    FaultyStart& operator=(const FaultyStart&) = delete;
};

/// Calls `attempt` once without a fault to learn how many calls there are, then for each call and each kind
/// of fault; unless PLUGINCORE_EVERY_FAULT is set, for a sample of these. Prints how many there were.
void MeetEveryFault(const std::string& name, FaultControl& faults,
                    const std::function<void(const Fault& fault, int at)>& attempt);
