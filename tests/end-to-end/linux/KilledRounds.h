// An agent that is killed again and again at random moments, and what must be the case each time it is back.
#pragma once

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "RandomClient.h"

/// What the agent and its folders hold, seen from outside.
struct Observation {
    struct File {
        std::string name;  ///< in the vault and among the active ones
        FontFacts facts;
        bool isActive = false;
        bool isMissing = false;
    };
    std::map<std::string, File> files;  ///< that have a record, by checksum
    LibraryFacts facts;                 ///< of those and of all sets
    LibraryIDs ids;
    std::map<std::string, std::string> vault;  ///< paths of the files in it, by their names
    std::set<std::string> links;               ///< names of the active files
};

/// A world, two clients in it that stay for all rounds, and a count of what went wrong.
class KilledRounds {
public:
    KilledRounds(int rounds, unsigned seed);

    /// Prints the counts and, for rounds that were not clean, why. How many were clean.
    int Run();

private:
    void WorkUntilKilled();
    void LoseLog();
    void StartAgent();
    bool RunRound(int round);
    Observation Observe();
    /// Looks again until what the agent takes back is there.
    Observation ObserveWhenSettled();
    void Expect(bool isTrue, const std::string& otherwise);
    void CheckFiles(const Observation& seen);
    void CheckClient(RandomClient& client, const Observation& seen);
    void CheckClientWithoutLog(const RandomClient& client, const Observation& seen);
    void CheckByDoctor();
    void RemoveMissing(const Observation& seen);
    void CheckAll();
    unsigned Random(unsigned count) { return static_cast<unsigned>(mRandom()) % count; }

    const int mRounds;
    const unsigned mSeed;
    pellwick::test::TestWorld mWorld;
    std::mt19937 mRandom;
    std::vector<std::unique_ptr<RandomClient>> mClients;
    bool mIsLogLost = false;  ///< before the agent was started last
    std::vector<std::string> mFindings;
    int mUncertain = 0;
    int mCarriedOut = 0;  ///< of the uncertain ones
    int mLostLogs = 0;
    int mKilledStarts = 0;
    int mMissing = 0;
};
