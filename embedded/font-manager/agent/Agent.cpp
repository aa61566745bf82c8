#include "agent/Agent.h"

#include <chrono>
#include <thread>

#include "agent/FontManager.h"
#include "agent/Server.h"
#include "common/Limits.h"
#include "common/LogFile.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/PrivateFolder.h"
#include "platform/Processes.h"

namespace pellwick {
namespace {

void LogStart(LogFile& log, const Server& server, int swept, const ActiveFonts::Repairs& repairs) {
    const int64_t now = platform::Current<platform::Clock>().Now();
    log.Write("Pellwick " + std::to_string(platform::CurrentProcessId()) + " starts at " + server.Address() +
              ", " + platform::LocalTimeText(now));
    if (swept != 0)
        log.Write("vault put right: " + std::to_string(swept) + " removed that interrupted commands left\n");
    if (repairs.added != 0 || repairs.removed != 0 || !repairs.missing.empty())
        log.Write("active fonts put right: " + std::to_string(repairs.added) + " added, " +
                  std::to_string(repairs.removed) + " removed, " + std::to_string(repairs.missing.size()) +
                  " missing in the vault\n");
    if (!repairs.problem.empty())
        log.Write("active fonts not put right yet: " + repairs.problem + "\n");
}

int Serve(const Locations& locations, LogFile& log, std::string& problem) {
    FontManager manager(locations);
    manager.EndLeasesOfDeadProcesses();
    const ActiveFonts::Repairs repairs = manager.RepairActiveFonts();
    const int swept = manager.SweepVault();  // after: a file that is active may not be possible to remove
    Server server(manager, log);
    if (!server.Listen(problem)) {
        log.Write(problem + "\n");
        return 1;
    }
    LogStart(log, server, swept, repairs);
    platform::NotifyReadyForInput();
    server.Run();
    log.Write("Pellwick " + std::to_string(platform::CurrentProcessId()) + " ends\n");
    return 0;
}

/// An agent that said goodbye still holds the lock for the moment that it takes to end, and a plug-in may
/// start the next one in that moment.
platform::SystemError AcquirePatiently(platform::FileLock& lock, const std::string& path) {
    const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
    for (;;) {
        const platform::SystemError error = lock.Acquire(path, false);
        if (!error.IsHeldByOther() || std::chrono::steady_clock::now() >= deadline)
            return error;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

/// False when this agent cannot be the user's one; `problem` then tells people.
bool TakePlace(const Locations& locations, platform::FileLock& lock, std::string& problem) {
    const std::string& folder = locations.dataFolder;
    if (const auto error = platform::MakePrivateFolder(folder)) {
        problem = error.IsDiskFull()
                      ? platform::WriteFailureText(folder, error)
                      : "cannot use the data folder " + folder + " (" + platform::SystemErrorText(error) +
                            "); set XDG_DATA_HOME to a folder of yours";
        return false;
    }
    const platform::SystemError error = AcquirePatiently(lock, locations.lockPath);
    if (error)
        problem = error.IsHeldByOther() ? "an agent runs already for " + folder + "; see \"Pellwick status\""
                                        : platform::WriteFailureText(locations.lockPath, error);
    return !error;
}

/// What to do about a database depends on whether it is the database or its disk that is at fault.
std::string DatabaseProblem(const Locations& locations, const DatabaseError& error) {
    switch (error.Code()) {
        case GSqliteDatabase::kDatabaseFull:
        case GSqliteDatabase::kDatabaseIOError:
        case GSqliteDatabase::kDatabaseOpenFailed:
            return error.what();
        default:
            return locations.databasePath + ": " + error.what() +
                   "; if it cannot be mended, move it away and \"Pellwick add\" the fonts in " +
                   locations.vaultFolder;
    }
}

}  // namespace

int RunAgent(const Locations& locations, std::string& problem) {
    platform::FileLock lock;
    if (!TakePlace(locations, lock, problem))
        return 1;
    platform::RemoveAbandonedWrites(locations.addressPath);
    LogFile log;
    log.Open(locations.logFolder + platform::kPathSeparator + "Pellwick.log");
    try {
        return Serve(locations, log, problem);
    } catch (const DatabaseError& error) {
        problem = DatabaseProblem(locations, error);
        log.Write(problem + "\n");
        return 1;
    } catch (const std::exception& error) {
        problem = std::string("the agent cannot go on: ") + error.what();
        log.Write(problem + "\n");
        return 1;
    }
}

}  // namespace pellwick
