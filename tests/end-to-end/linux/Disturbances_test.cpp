// Life with an agent that is killed, restarted and stalled at random, and the end of hosts with an agent in
// trouble. Here a few rounds of each. A long run, in which no call may take five seconds either:
// DISTURBED_ROUNDS=1000 [DISTURBANCE_SEED=N] end-to-end-tests --gtest_filter='Disturbances.*'

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <thread>

#include "HostWorld.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kCallLimit{5000};
constexpr size_t kTraceShown = 60000;  // bytes, of the first round that is not clean

int NumberFromEnvironment(const char* variable, int otherwise) {
    const std::string text = platform::EnvironmentVariable(variable);
    return text.empty() ? otherwise : std::atoi(text.c_str());
}

/// What a host answers to the call. In a long run it must not take long; on a machine with other work to do
/// times say little.
json Timed(ScriptedHost& host, const char* call, const json& arguments = json::object()) {
    const auto begin = Clock::now();
    json answer = host.Call(call, arguments);
    if (NumberFromEnvironment("DISTURBED_ROUNDS", 0) > 0) {
        EXPECT_LE(Clock::now() - begin, kCallLimit) << call;
    }
    return answer;
}

// Each document shares fonts with others.
const std::vector<std::string> kFonts = {"First-Bold", "Second-Bold", "Third-Bold", "Fourth-Bold"};
const std::vector<std::vector<std::string>> kFontsOfDocuments = {{"First-Bold", "Second-Bold"},
                                                                 {"Second-Bold", "Third-Bold"},
                                                                 {"Third-Bold", "Fourth-Bold"},
                                                                 {"First-Bold", "Fourth-Bold"}};

/// A world, and hosts in it that open, save and close documents while their agent is in trouble.
class DisturbedRounds {
public:
    DisturbedRounds(size_t hosts, size_t documents)
        : mDocuments(documents),
          mRandom(static_cast<unsigned>(NumberFromEnvironment("DISTURBANCE_SEED", 1))),
          mHosts(hosts) {
        mWorld.AddFonts(kFonts);
        for (size_t document = 0; document < kFontsOfDocuments.size(); ++document)
            mWorld.WriteDocument(std::to_string(document) + ".ai", kFontsOfDocuments[document]);
        for (Host& host : mHosts) {
            host.random.seed(mRandom());
            host.process.Start();
            host.process.SetPreference("CloseFontsOnDocClose", 1);
        }
        for (const std::string& font : kFonts) {  // what it looks like to be active
            mWorld.FontManager().RunForJson({"activate", font});
            mLinks[font] = platform::NamePart(mWorld.FontManager().ActiveFiles().at(0));
            mWorld.FontManager().RunForJson({"deactivate", font});
        }
    }

    /// Until one is not clean. `disturbances`: how many kinds may be drawn, see Disturb; 0 for none.
    void Run(int usualRounds, size_t disturbances) {
        const int rounds = NumberFromEnvironment("DISTURBED_ROUNDS", usualRounds);
        int round = 0;
        for (; round < rounds && !testing::Test::HasFailure(); ++round)
            RunRound(round < 5 ? 0 : disturbances);
        const std::string trace = testing::Test::HasFailure() ? mWorld.Trace() : "";
        std::printf("%s\n%zu hosts, %zu documents: %d rounds, %d starts of the agent by hosts\n",
                    trace.substr(trace.size() - std::min(trace.size(), kTraceShown)).c_str(), mHosts.size(),
                    mDocuments, round, CountOf(mWorld.Trace(), "Successfully launched Pellwick"));
    }

private:
    struct Host {
        ScriptedHost process;
        std::map<std::string, int> held;  ///< fonts of its open documents
        std::mt19937 random;
    };

    json DocumentPath(size_t document) const {
        return {{"path", mWorld.Path(std::to_string(document) + ".ai")}, {"hint", "12pt"}};
    }
    void Open(Host& host, size_t document) const {
        int expected = 0;
        for (const std::string& font : kFontsOfDocuments[document])
            expected += host.held[font]++ == 0 ? 1 : 0;
        const json answer = Timed(host.process, "HandleOpenExistingDocument", DocumentPath(document));
        EXPECT_EQ(answer["code"], expected > 0 ? 1 : 0) << answer;
        EXPECT_EQ(answer["out"]["numFontsActivated"], expected) << answer;
        std::set<std::string> active;
        for (const std::string& file : mWorld.FontManager().ActiveFiles())
            active.insert(platform::NamePart(file));
        for (const std::string& font : kFontsOfDocuments[document])
            EXPECT_TRUE(active.contains(mLinks.at(font))) << font << " of an open document is not to be seen";
    }
    void Close(Host& host, size_t document) const {
        EXPECT_EQ(Timed(host.process, "HandleCloseDocument", DocumentPath(document))["code"], 0);
        for (const std::string& font : kFontsOfDocuments[document])
            --host.held[font];
    }
    static void PerhapsIdle(Host& host) {
        if (host.random() % 2 == 0)
            Timed(host.process, "IdleEvent");
    }
    void WorkWithDocuments(Host& host, const std::vector<size_t>& documents) const {
        std::vector<size_t> open;
        for (const size_t document : documents) {
            Open(host, document);
            open.push_back(document);
            PerhapsIdle(host);
            if (host.random() % 2 == 0) {
                EXPECT_EQ(Timed(host.process, "HandleSaveDocument", DocumentPath(document))["code"], 0);
            }
            PerhapsIdle(host);
            if (host.random() % 2 == 0) {
                Close(host, open.front());
                open.erase(open.begin());
            }
        }
        for (const size_t document : open) {
            PerhapsIdle(host);
            Close(host, document);
        }
    }
    /// The agent dies; or its user ends it, or it dies, and the command line starts another one; or it stands
    /// still for half a second to four.
    void Disturb(size_t kind, platform::ProcessId agent, unsigned random) const {
        if (kind == 0) {
            KillProcess(agent);
        } else if (kind == 1) {
            if (random % 2 == 0)
                KillProcess(agent);
            else
                mWorld.FontManager().Run({"stop", "--no-start"});
            mWorld.FontManager().Run({"list"});
        } else {
            SuspendProcess(agent);
            std::this_thread::sleep_for(milliseconds(500 + random % 3500));
            ResumeProcess(agent);
        }
    }
    void RunRound(size_t disturbances) {
        std::vector<std::vector<size_t>> shares(mHosts.size());
        for (size_t document = 0; document < mDocuments; ++document)
            shares[mRandom() % shares.size()].push_back(document);
        const auto moment = mUsualLength * static_cast<int>(mRandom() % 1200) / 1000;
        const platform::ProcessId agent = mWorld.Agent();
        const auto begin = Clock::now();
        std::vector<std::thread> workers;
        if (disturbances > 0 && agent != 0)
            workers.emplace_back([=, this, kind = mRandom() % disturbances, random = mRandom()] {
                std::this_thread::sleep_for(moment);
                Disturb(kind, agent, static_cast<unsigned>(random));
            });
        for (size_t host = 0; host < mHosts.size(); ++host)
            workers.emplace_back([&, host] { WorkWithDocuments(mHosts[host], shares[host]); });
        for (std::thread& worker : workers)
            worker.join();
        if (disturbances == 0)
            mUsualLength = std::max(mUsualLength, Clock::now() - begin);
        EXPECT_TRUE(Eventually([&] {  // what could not be let go at once goes when the hosts are idle
            for (Host& host : mHosts)
                host.process.Call("IdleEvent");
            return mWorld.FontManager().ActiveFiles().empty();
        })) << "fonts are left after the last close";
    }

    const size_t mDocuments;
    HostWorld mWorld;
    std::mt19937 mRandom;
    std::vector<Host> mHosts;
    std::map<std::string, std::string> mLinks;  ///< file name below the folder of active fonts, by font
    Clock::duration mUsualLength{};             ///< of a round without disturbance
};

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

/// A host with a hundred documents quits while its agent is in trouble, from which `recover` helps it.
void QuitIn(const char* name, const std::function<void(HostWorld&)>& trouble,
            const std::function<void(HostWorld&)>& recover) {
    SCOPED_TRACE(name);
    HostWorld world;
    world.AddFonts({"Sample-Bold", "Sample-Italic"});
    ScriptedHost host;
    host.Start();
    host.SetPreference("CloseFontsOnDocClose", 1);
    for (int document = 0; document < 100; ++document)
        host.Open(world.WriteDocument(std::to_string(document) + ".ai",
                                      {document % 2 == 0 ? "Sample-Bold" : "Sample-Italic"}));
    EXPECT_EQ(world.FontManager().ActiveFiles().size(), 2u);
    trouble(world);
    EXPECT_EQ(Timed(host, "TerminatePluginCoreInterface")["code"], 0);
    recover(world);
    EXPECT_EQ(host.Finish().status, 0);
    EXPECT_EQ(CountOf(world.Trace(), "Nobody to show"), 0);
    EXPECT_TRUE(Eventually([&] { return world.FontManager().ActiveFiles().empty(); }));
}

}  // namespace

TEST(Disturbances, ADocumentIsOpenedSavedAndClosedWhileTheAgentIsKilled) {
    DisturbedRounds(1, 1).Run(25, 1);
}

TEST(Disturbances, HostsLiveThroughKillsRestartsAndStalls) {
    for (const size_t hosts : {2, 3})
        DisturbedRounds(hosts, 4).Run(12, 3);
}

TEST(Disturbances, QuittingWithManyDocumentsAsksNothingWhateverTheAgentDoes) {
    const auto nothing = [](HostWorld&) {};
    std::unique_ptr<SlowAgent> slow;
    platform::ProcessId frozen = 0;
    QuitIn("a healthy agent", nothing, nothing);
    QuitIn(
        "a dead agent", [](HostWorld& world) { world.KillAgent(); }, nothing);
    QuitIn(
        "a dead agent that cannot be started",
        [](HostWorld& world) {
            world.KillAgent();
            std::filesystem::remove(
                platform::Utf8Path(world.Path("data/Vantorix/com.vantorix.Pellwick-LaunchInfo.conf")));
        },
        [](HostWorld& world) {
            ASSERT_EQ(world.FontManager().Run({"list"}).status, 0);
        });  // its user starts it
    QuitIn(
        "a frozen agent", [&](HostWorld& world) { SuspendProcess(frozen = world.Agent()); },
        [&](HostWorld&) { ResumeProcess(frozen); });
    QuitIn(
        "a slow agent", [&](HostWorld& world) { slow = std::make_unique<SlowAgent>(world.Agent()); },
        [&](HostWorld&) { slow.reset(); });
}
