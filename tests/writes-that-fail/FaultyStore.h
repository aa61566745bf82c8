// A font manager's store whose writes go wrong: an agent in folders of its own, which can be set back to how
// they were, and what is in them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ErrorCodes.h"
#include "FaultRun.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {

class FaultyStore {
public:
    FaultyStore();

    const TestWorld& World() const { return mWorld; }
    const FaultControl& Faults() const { return mFaults; }
    FaultControl& Faults() { return mFaults; }

    /// Starts an agent whose writes go wrong as the plan says; false when it ends instead of serving, and
    /// `problem` is then what it said.
    bool StartAgent(std::string& problem);
    /// The same, when nothing goes wrong.
    void StartAgent();
    /// Whether the agent still runs.
    bool IsAgentAlive() const;
    void StopAgent();
    void KillAgent();
    /// Waits for the end of one that ends or has ended.
    ProgramResult CollectAgent();

    /// Keeps the folders as they are now, without a running agent, and brings that back.
    void Keep();
    void BringBack();

    /// Everything that users and plug-ins can see of the store, and which files there are; IDs left out.
    Json State();
    /// The same without the files.
    Json Records();
    /// How many lines of the agent's log tell of a failure.
    size_t FailureLines() const;
    /// Whether the log's last line is that of an agent that ended in order.
    bool IsEndLogged() const;
    /// What SQLite finds wrong with the database; "ok" when nothing.
    std::string CheckDatabase() const;
    /// Has the agent change a setting and change it back.
    ErrorCode TryToWrite();

private:
    Json Ask(const char* method, const Json& arguments);
    Json Fonts(const Json& filter);
    Json Files() const;

    TestWorld mWorld;
    FaultControl mFaults;
    std::unique_ptr<TestProcess> mAgent;
};

}  // namespace pellwick::test
