// Looking at processes and starting them.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Service.h"
#include "platform/SystemError.h"

namespace platform {

using ProcessId = int64_t;

struct ProcessInfo {
    ProcessId id = 0;
    std::string executablePath;  ///< full path of the executable, UTF-8
};

/// A process that this one started. Destroying it leaves the process running; its end is always collected, so
/// that no zombie stays behind.
class ChildProcess {
public:
    virtual ~ChildProcess() = default;

    virtual ProcessId Id() const = 0;
    /// Waits until the process is ready for its first request, ends, or the time is over; true when it is
    /// ready. Linux: ready is what NotifyReadyForInput says in the child. Windows: idle for input.
    virtual bool WaitUntilIdle(std::chrono::milliseconds limit) = 0;
    /// The exit status once the process has ended (128 + N when signal N ended it), nothing while it runs.
    virtual std::optional<int> ExitStatus() = 0;
};

class Processes {
public:
    virtual ~Processes() = default;

    /// Whether a program of that file name is looked for.
    using NameFilter = std::function<bool(const std::string& fileName)>;
    /// The processes of this user that may be inspected and run a program that is looked for, in the system's
    /// order. Others are left out silently: what they run is not to be trusted. So are, on Linux, those in PID
    /// namespaces of their own (containers): their paths mean files elsewhere; on Windows those that the user
    /// confined (of less than medium integrity, unless this one is no better, or in an AppContainer). Windows: no
    /// process of another name is opened, which guards of the system's own processes would take for an attack.
    virtual SystemError List(const NameFilter& isWanted, std::vector<ProcessInfo>& processes) = 0;
    /// Starts `executablePath` with a command line that begins with the quoted path and goes on with
    /// arguments separated by blanks (double quotes group). The child gets a session of its own, no standard
    /// input, and its output goes nowhere. Windows: its current folder is the program's own, so that it does
    /// not keep ours from being removed; it leaves our job, if that lets it go, and rights of an administrator
    /// that the user confirmed for us are not handed on. Null and the reason in `error` on failure.
    virtual std::unique_ptr<ChildProcess> Launch(const std::string& executablePath,
                                                 const std::string& commandLine, SystemError& error) = 0;
    /// What this process calls itself (Linux: /proc/self/comm; Windows: base name of the program, in the
    /// letter case of its file).
    virtual std::string CurrentName() = 0;
    /// Full path of this process's executable, UTF-8.
    virtual std::string CurrentExecutablePath() = 0;
    /// Windows: whether this process has rights of an administrator that its user confirmed, and that his other
    /// programs do not have. False on Linux.
    virtual bool IsElevated() = 0;
};

template <>
Processes& SystemDefault<Processes>();

/// Keeps signals away from the calling thread, and from threads that it starts, for as long as it lives:
/// a thread of ours is not a place for a host's handlers. Those by which the system reports a fault of the
/// thread itself still arrive. Windows: does nothing. To be destroyed by the thread that made it.
class ScopedSignalBlock {
public:
    ScopedSignalBlock();
    ~ScopedSignalBlock();
    ScopedSignalBlock(const ScopedSignalBlock&) = delete;
    ScopedSignalBlock& operator=(const ScopedSignalBlock&) = delete;

private:
    struct SavedMask;
    std::unique_ptr<SavedMask> mSaved;
};

/// This process's identifier.
ProcessId CurrentProcessId();

enum class ProcessState {
    kAlive,
    kGone,          ///< also an ended one that nobody has collected
    kCannotBeTold,  ///< the system does not answer now: no descriptor is free, say
};
/// Looks at the process. `startTime`, where it is alive: a number that together with the identifier names one
/// process for as long as the system runs; 0 where this user may know no more than that it is there (Windows).
ProcessState LookAtProcess(ProcessId id, uint64_t& startTime);
/// What became of the process that had this start time.
ProcessState StateOfProcess(ProcessId id, uint64_t startTime);
/// The start time; 0 when there is no such process or it cannot be told.
uint64_t ProcessStartTime(ProcessId id);
/// Names the time in which, and the set of processes among which, identifiers with start times mean the same
/// processes. Linux: this boot and PID namespace. Empty when that cannot be told, and where it does not
/// matter (Windows: start times are those of a calendar).
std::string ProcessEra();
/// Asks the process to end in order, if it is that of the start time and this user's: its EndRequests hear of
/// it. Linux: by a signal, which also ends one that has none. Windows: only one that has EndRequests, in the
/// same session.
SystemError RequestEndOfProcess(ProcessId id, uint64_t startTime);
/// Sets what CurrentName and process listings show (Linux: at most 15 bytes are kept).
void SetCurrentProcessName(const std::string& name);
/// Whether this process was started with Processes::Launch and has not said yet that it is ready.
bool IsReadinessAwaited();
/// Tells the process that started this one with Processes::Launch that requests are welcome now. Does nothing
/// when it was started otherwise.
void NotifyReadyForInput();

}  // namespace platform
