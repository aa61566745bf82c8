// Has the writes of other processes go wrong, one after the other.
#pragma once

#include <functional>
#include <string>

#include "FaultPlan.h"
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
    FaultControl(const std::string& path, std::string folder);
    ~FaultControl();
    FaultControl(const FaultControl&) = delete;
    FaultControl& operator=(const FaultControl&) = delete;

    std::unique_ptr<TestProcess> Start(const std::vector<std::string>& command) const;
    /// From now on the calls are counted, and the fault meets the one of that number; none with 0.
    void Begin(const Fault& fault, int at);
    /// The fault is gone, and no more is counted.
    void End();

    int Count() const { return mCount; }
    bool HasHappened() const { return mPlan->failedCalls != 0; }
    bool HasKeptFile() const { return mPlan->keptFile; }
    /// The call and its file.
    std::string Where() const { return mPlan->where; }

    /// Calls `attempt` once without a fault to learn how many calls there are, then for each call and each
    /// kind of fault; unless PLUGINCORE_EVERY_FAULT is set, for a sample of these. Prints how many there were.
    void MeetEvery(const std::string& name, const std::function<void(const Fault& fault, int at)>& attempt);

private:
    const std::string mPath;
    const std::string mFolder;
    FaultPlan* mPlan;
    int mCount = 0;
};
