// Life with an agent that is killed, restarted and stalled at random, and the end of hosts with an agent in
// trouble. Here a few rounds of each. A long run, in which no call may take five seconds either:
// DISTURBED_ROUNDS=1000 [DISTURBANCE_SEED=N] end-to-end-tests --gtest_filter='Disturbances.*'

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <thread>

#include "DisturbedRounds.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kCallLimit{5000};
constexpr int kDocuments = 100;

int NumberFromEnvironment(const char* variable, int otherwise) {
    const std::string text = platform::EnvironmentVariable(variable);
    return text.empty() ? otherwise : std::atoi(text.c_str());
}

/// On a machine with other work to do times say little.
bool AreTimesLimited() {
    return NumberFromEnvironment("DISTURBED_ROUNDS", 0) > 0;
}

void ExpectCleanRounds(Plan plan, int usualRounds) {
    plan.rounds = NumberFromEnvironment("DISTURBED_ROUNDS", usualRounds);
    plan.seed = static_cast<unsigned>(NumberFromEnvironment("DISTURBANCE_SEED", 1));
    if (AreTimesLimited())
        plan.callLimit = kCallLimit;
    EXPECT_EQ(DisturbedRounds(plan).Run(), plan.rounds);
}

const std::vector<Disturbance> kAll = {Disturbance::kKill, Disturbance::kRestart, Disturbance::kStall};

/// An agent that moves for a moment now and then.
class SlowAgent {
public:
    explicit SlowAgent(platform::ProcessId agent) : mAgent(agent), mThread([this] { Run(); }) {}
    ~SlowAgent() {
        mIsOver = true;
        mThread.join();
    }
    SlowAgent(const SlowAgent&) = delete;
    SlowAgent& operator=(const SlowAgent&) = delete;

private:
    void Run() {
        while (!mIsOver) {
            SuspendProcess(mAgent);
            std::this_thread::sleep_for(milliseconds(1700));
            ResumeProcess(mAgent);
            std::this_thread::sleep_for(milliseconds(3));
        }
    }

    const platform::ProcessId mAgent;
    std::atomic<bool> mIsOver{false};
    std::thread mThread;
};

/// A host with many documents quits while `trouble` lasts; it is told the agent.
void QuitIn(const char* name, const std::function<void(HostWorld&, ScriptedHost&)>& quit) {
    SCOPED_TRACE(name);
    HostWorld world;
    world.AddFonts({"Sample-Bold", "Sample-Italic"});
    ScriptedHost host;
    host.Start();
    host.SetPreference("CloseFontsOnDocClose", 1);
    for (int document = 0; document < kDocuments; ++document)
        host.Open(world.WriteDocument(std::to_string(document) + ".ai",
                                      {document % 2 == 0 ? "Sample-Bold" : "Sample-Italic"}));
    EXPECT_EQ(world.FontManager().ActiveFiles().size(), 2u);
    quit(world, host);
    EXPECT_EQ(host.Finish().status, 0);
    const int questions = CountOf(world.Trace(), "Nobody to show");
    EXPECT_EQ(questions, 0);
    EXPECT_TRUE(Eventually([&] { return world.FontManager().ActiveFiles().empty(); }));
    std::printf("%s: %d question(s), no fonts left\n", name, questions);
}

void Terminate(ScriptedHost& host) {
    const auto begin = Clock::now();
    EXPECT_EQ(host.Call("TerminatePluginCoreInterface")["code"], 0);
    const auto length = std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
    std::printf("quitting with %d documents took %lld ms\n", kDocuments,
                static_cast<long long>(length.count()));
    if (AreTimesLimited()) {
        EXPECT_LE(length, kCallLimit);
    }
}

}  // namespace

TEST(Disturbances, ADocumentIsOpenedSavedAndClosedWhileTheAgentIsKilled) {
    ExpectCleanRounds({.hosts = 1, .documents = 1, .disturbances = {Disturbance::kKill}}, 25);
}

TEST(Disturbances, TwoHostsShareFonts) {
    ExpectCleanRounds({.hosts = 2, .documents = 4, .disturbances = {}}, 10);
}

TEST(Disturbances, TwoHostsLiveThroughKillsRestartsAndStalls) {
    ExpectCleanRounds({.hosts = 2, .documents = 4, .disturbances = kAll, .hasIdleEvents = true}, 12);
}

TEST(Disturbances, ThreeHostsLiveThroughKillsRestartsAndStalls) {
    ExpectCleanRounds({.hosts = 3, .documents = 4, .disturbances = kAll, .hasIdleEvents = true}, 12);
}

TEST(Disturbances, QuittingWithManyDocumentsAsksNothingWhateverTheAgentDoes) {
    QuitIn("a healthy agent", [](HostWorld&, ScriptedHost& host) { Terminate(host); });
    QuitIn("a dead agent", [](HostWorld& world, ScriptedHost& host) {
        world.KillAgent();
        Terminate(host);
    });
    QuitIn("a dead agent that cannot be started", [](HostWorld& world, ScriptedHost& host) {
        world.KillAgent();
        const std::string info = world.Path("data/Vantorix/com.vantorix.Pellwick-LaunchInfo.conf");
        std::filesystem::remove(platform::Utf8Path(info));
        Terminate(host);
        ASSERT_EQ(world.FontManager().Run({"list"}).status, 0);  // its user starts it
    });
    QuitIn("a frozen agent", [](HostWorld& world, ScriptedHost& host) {
        const platform::ProcessId agent = world.Agent();
        SuspendProcess(agent);
        Terminate(host);
        ResumeProcess(agent);
    });
    QuitIn("a slow agent", [](HostWorld& world, ScriptedHost& host) {
        const SlowAgent slow(world.Agent());
        Terminate(host);
    });
}
