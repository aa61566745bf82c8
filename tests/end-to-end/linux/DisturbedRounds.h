// Hosts that open, save and close documents while their agent is killed, restarted or stalled at random
// moments.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "HostWorld.h"

enum class Disturbance {
    kNone,
    kKill,     ///< the agent dies
    kRestart,  ///< its user ends it, or it dies, and the command line starts another one
    kStall     ///< it stands still for half a second to four
};

/// What may be drawn, and how much of it there is.
struct Plan {
    int rounds = 0;
    int hosts = 1;
    int documents = 1;
    std::vector<Disturbance> disturbances;
    bool hasIdleEvents = false;  ///< between some calls
    unsigned seed = 1;
    std::chrono::milliseconds callLimit = std::chrono::hours(1);  ///< for each call of a host
};

/// A world, hosts in it that stay for all rounds, and a count of what went wrong.
class DisturbedRounds {
public:
    explicit DisturbedRounds(const Plan& plan);

    /// Prints the counts and, for rounds that were not clean, why. How many were clean.
    int Run();

private:
    using Clock = std::chrono::steady_clock;

    struct Host {
        ScriptedHost process;
        std::map<std::string, int> held;  ///< fonts of its open documents
        std::mt19937 random;
    };

    std::unique_ptr<Host> StartHost(unsigned seed) const;
    void Disturb(Disturbance disturbance, platform::ProcessId agent, Clock::duration moment,
                 Clock::duration length);
    void WorkWithDocuments(Host& host, const std::vector<int>& documents);
    void Open(Host& host, int document);
    void Save(Host& host, int document);
    void Close(Host& host, int document);
    void Idle(Host& host);
    json Timed(Host& host, const char* call, const json& arguments);
    void Expect(bool isTrue, const std::string& otherwise);
    void ExpectNoFontsLeft();
    std::string DocumentPath(int document) const;
    bool AreLinked(const std::vector<std::string>& fonts) const;
    bool RunRound(int round);
    void ShowTrace() const;

    const Plan mPlan;
    HostWorld mWorld;
    std::mt19937 mRandom;
    std::vector<std::unique_ptr<Host>> mHosts;
    std::map<std::string, std::string> mLinks;  ///< file name below the folder of active fonts, by font
    Clock::duration mUsualLength{};             ///< of a round without disturbance
    std::mutex mFindingsLock;
    std::vector<std::string> mFindings;  ///< of this round
    Clock::duration mSlowestCall{};
    int mDisturbances = 0;
};
