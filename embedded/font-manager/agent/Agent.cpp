#include "agent/Agent.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "agent/FontManager.h"
#include "agent/Server.h"
#include "common/AgentLock.h"
#include "common/FontManagerLimits.h"
#include "common/LogFile.h"
#include "common/Protocol.h"
#include "ipc/AgentConnection.h"
#include "platform/Clock.h"
#include "platform/FileLock.h"
#include "platform/Files.h"
#include "platform/PrivateFolder.h"
#include "platform/Processes.h"

namespace pellwick {
namespace {

void LogStart(LogFile& log, const Server& server, int closed, const FontVault::Survey& survey,
              const ActiveFonts::Repairs& repairs) {
    const std::string time = platform::LocalTimeText(platform::Current<platform::Clock>().Now());
    log.WriteLine("Pellwick " + std::to_string(platform::CurrentProcessId()) + " starts at " +
                  server.Address() + ", " + time.substr(0, time.find('\n')));
    if (closed != 0)
        log.WriteLine("folders put right: " + std::to_string(closed) + " closed that others could write to");
    if (survey.removed != 0)
        log.WriteLine("vault put right: " + std::to_string(survey.removed) +
                      " removed that interrupted commands left");
    if (!survey.missing.empty())
        log.WriteLine(std::to_string(survey.missing.size()) +
                      " files are gone from the vault; \"Pellwick doctor\" names them");
    if (!survey.unknown.empty())
        log.WriteLine(std::to_string(survey.unknown.size()) +
                      " files of the vault stand in no record, and are taken back as fonts");
    if (repairs.added != 0 || repairs.removed != 0 || !repairs.missing.empty())
        log.WriteLine("active fonts put right: " + std::to_string(repairs.added) + " added, " +
                      std::to_string(repairs.removed) + " removed, " +
                      std::to_string(repairs.missing.size()) + " missing in the vault");
    if (!repairs.problem.empty())
        log.WriteLine("active fonts not put right yet: " + repairs.problem);
}

/// `closed`: how many folders were open to others.
int Serve(const Locations& locations, const platform::FileLock& lock, int closed, LogFile& log,
          std::string& problem) {
    FontManager manager(locations);
    Server server(manager, log, lock);
    // First of all: whoever connects from here on waits for an answer, and does not start another agent.
    if (!server.Listen(problem)) {
        log.WriteLine(problem);
        return 1;
    }
    manager.EndLeasesOfEarlierEra();
    manager.EndLeasesOfDeadProcesses();
    const ActiveFonts::Repairs repairs = manager.RepairActiveFonts();
    // After that: a file that is active may not be possible to remove.
    const FontVault::Survey survey = manager.LookAroundVault();
    LogStart(log, server, closed, survey, repairs);
    platform::NotifyReadyForInput();
    server.TakeBackFonts(survey.unknown);
    server.Run();
    manager.LetGoOfKeptFonts();
    manager.EndLeasesOfDeadProcesses();
    log.WriteLine("Pellwick " + std::to_string(platform::CurrentProcessId()) + " ends");
    return 0;
}

enum class Role {
    kAgent,    ///< this process holds the lock, and serves
    kStandIn,  ///< another one serves, and whoever waits for this one is served by it
    kNone      ///< another one holds the lock
};

bool DoesAgentAnswer(std::chrono::milliseconds limit) {
    AgentConnection connection(limit);
    Json status;
    return connection.Call(method::kGetStatus, Json::object(), status) == CoreErrorCodes::kSuccess;
}

/// An agent that said goodbye still holds the lock for the moment that it takes to end, and a plug-in may
/// start the next one in that moment. Two plug-ins may start one at the same moment; and one that has waited
/// in vain for an agent that does not move starts another one.
Role FindRole(platform::FileLock& lock, const std::string& path, platform::SystemError& error) {
    using std::chrono::milliseconds;
    const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
    while ((error = lock.Acquire(path, false))) {
        const auto left =
            std::chrono::duration_cast<milliseconds>(deadline - std::chrono::steady_clock::now());
        if (!error.IsHeldByOther() || left.count() <= 0)
            return Role::kNone;
        if (platform::IsReadinessAwaited() && DoesAgentAnswer(left))
            return Role::kStandIn;
        std::this_thread::sleep_for(std::min(left, milliseconds(20)));
    }
    return Role::kAgent;
}

std::string OtherAgentProblem(const Locations& locations) {
    if (DoesAgentAnswer(kAnswerLimit))
        return "an agent runs already for " + locations.dataFolder + "; see \"Pellwick status\"";
    return UnreachableAgentText(locations, FindAgentHolder(locations).value_or(AgentHolder{}));
}

/// Where there is none for this process, `problem` tells people why.
Role TakePlace(const Locations& locations, platform::FileLock& lock, std::string& problem) {
    const std::string& folder = locations.dataFolder;
    if (const auto error = platform::MakePrivateFolder(folder)) {
        problem = error.IsDiskFull()
                      ? platform::WriteFailureText(folder, error)
                      : "cannot use the data folder " + folder + " (" + platform::SystemErrorText(error) +
                            "); set XDG_DATA_HOME to a folder of yours";
        return Role::kNone;
    }
    platform::SystemError error;
    const Role role = FindRole(lock, locations.lockPath, error);
    if (role == Role::kAgent)
        error = NoteAgentHolder(lock);
    if (error)
        problem = error.IsHeldByOther() ? OtherAgentProblem(locations)
                                        : platform::WriteFailureText(locations.lockPath, error);
    return error && role == Role::kAgent ? Role::kNone : role;
}

void StandIn() {
    platform::NotifyReadyForInput();
    std::this_thread::sleep_for(kStandInTime);
}

/// The advice depends on whether the database or its disk is at fault.
std::string DatabaseProblem(const Locations& locations, const DatabaseError& error) {
    switch (error.Code()) {
        case GSqliteDatabase::kDatabaseFull:
        case GSqliteDatabase::kDatabaseIOError:
        case GSqliteDatabase::kDatabaseOpenFailed:
            return error.what();
        default:
            return locations.databasePath + ": " + error.what() +
                   "; if it cannot be mended, move it away: the fonts in " + locations.vaultFolder +
                   " are taken back";
    }
}

}  // namespace

int RunAgent(const Locations& locations, std::string& problem) {
    int closed = 0;
    for (const std::string& folder : locations.ownFolders)
        closed += platform::CloseFoldersToOthers(folder);
    platform::FileLock lock;
    const Role role = TakePlace(locations, lock, problem);
    if (role == Role::kStandIn)
        StandIn();
    if (role != Role::kAgent)
        return role == Role::kStandIn ? 0 : 1;
    platform::RemoveAbandonedWrites(locations.addressPath);
    LogFile log;
    log.Open(locations.logFolder + platform::kPathSeparator + "Pellwick.log");
    try {
        return Serve(locations, lock, closed, log, problem);
    } catch (const DatabaseError& error) {
        problem = DatabaseProblem(locations, error);
        log.WriteLine(problem);
        return 1;
    } catch (const std::exception& error) {
        problem = std::string("the agent cannot go on: ") + error.what();
        log.WriteLine(problem);
        return 1;
    }
}

}  // namespace pellwick
