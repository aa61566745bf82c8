// Life with an agent that is killed, restarted and stalled at random, and the end of hosts with an agent in
// trouble. Here a few rounds of each. A long run:
// DISTURBED_ROUNDS=1000 [DISTURBANCE_SEED=N]
//   scripts/isolated build/dev/tests/end-to-end-tests --gtest_filter='Disturbances.*'

#include <cstdio>
#include <random>
#include <thread>

#include "HostWorld.h"

namespace {

using std::chrono::milliseconds;

// Each document shares fonts with others.
const std::vector<std::string> kFonts = {"First-Bold", "Second-Bold", "Third-Bold", "Fourth-Bold"};
const std::vector<std::vector<std::string>> kFontsOfDocuments = {{"First-Bold", "Second-Bold"},
                                                                 {"Second-Bold", "Third-Bold"},
                                                                 {"Third-Bold", "Fourth-Bold"},
                                                                 {"First-Bold", "Fourth-Bold"}};

/// A world, and hosts in it that open and close documents while their agent is in trouble.
class DisturbedRounds {
public:
    explicit DisturbedRounds(size_t hosts)
        : mRandom(static_cast<unsigned>(NumberFromEnvironment("DISTURBANCE_SEED", 1))), mHosts(hosts) {
        mWorld.AddFonts(kFonts);
        for (size_t document = 0; document < kFontsOfDocuments.size(); ++document)
            mWorld.WriteDocument(std::to_string(document) + ".ai", kFontsOfDocuments[document]);
        for (Host& host : mHosts) {
            host.random.seed(mRandom());
            host.process.Start();
            host.process.SetPreference("CloseFontsOnDocClose", 1);
        }
    }

    /// Until one is not clean.
    void Run() {
        const int rounds = NumberFromEnvironment("DISTURBED_ROUNDS", 8);
        int round = 0;
        for (; round < rounds && !testing::Test::HasFailure(); ++round)
            RunRound();
        std::printf("%zu hosts: %d rounds, %d starts of the agent by hosts\n%s", mHosts.size(), round,
                    CountOf(mWorld.Trace(), "Successfully launched Pellwick"),
                    testing::Test::HasFailure() ? mWorld.Trace().c_str() : "");
    }

private:
    struct Host {
        ScriptedHost process;
        std::map<std::string, int> held;  ///< fonts of its open documents
        std::mt19937 random;
    };

    std::string DocumentPath(size_t document) const { return mWorld.Path(std::to_string(document) + ".ai"); }
    void Open(Host& host, size_t document) const {
        int expected = 0;
        for (const std::string& font : kFontsOfDocuments[document])
            expected += host.held[font]++ == 0 ? 1 : 0;
        const json answer =
            host.process.Call("HandleOpenExistingDocument", {{"path", DocumentPath(document)}});
        EXPECT_EQ(answer["code"], expected > 0 ? 1 : 0) << answer;
        EXPECT_EQ(answer["out"]["numFontsActivated"], expected) << answer;
        EXPECT_GE(mWorld.FontManager().ActiveFiles().size(), kFontsOfDocuments[document].size())
            << "fonts of an open document are not to be seen";
    }
    void Close(Host& host, size_t document) const {
        EXPECT_EQ(host.process.Close(DocumentPath(document)), 0u);
        for (const std::string& font : kFontsOfDocuments[document])
            --host.held[font];
    }
    void WorkWithDocuments(Host& host, const std::vector<size_t>& documents) const {
        const auto perhaps = [&host] { return host.random() % 2 == 0; };
        std::vector<size_t> open;
        for (const size_t document : documents) {
            Open(host, document);
            open.push_back(document);
            if (perhaps())
                host.process.Call("IdleEvent");
            if (perhaps()) {
                Close(host, open.front());
                open.erase(open.begin());
            }
        }
        for (const size_t document : open) {
            if (perhaps())
                host.process.Call("IdleEvent");
            Close(host, document);
        }
    }
    /// The agent dies; or its user ends it, or it dies, and the command line starts another one; or it stands
    /// still for half a second to four.
    void Disturb(platform::ProcessId agent, unsigned random) const {
        const unsigned kind = random % 6;
        if (kind >= 4) {
            SuspendProcess(agent);
            std::this_thread::sleep_for(milliseconds(500 + random % 3500));
            return ResumeProcess(agent);
        }
        if (kind == 3)
            mWorld.Pellwick("stop --no-start");
        else
            KillProcess(agent);
        if (kind >= 2)
            mWorld.Pellwick("list");
    }
    void RunRound() {
        std::vector<std::vector<size_t>> shares(mHosts.size());
        for (size_t document = 0; document < kFontsOfDocuments.size(); ++document)
            shares[mRandom() % shares.size()].push_back(document);
        std::vector<std::thread> workers;
        if (const platform::ProcessId agent = mWorld.Agent())
            workers.emplace_back([=, this, random = static_cast<unsigned>(mRandom())] {
                std::this_thread::sleep_for(milliseconds(random % 100));
                Disturb(agent, random / 100);
            });
        for (size_t host = 0; host < mHosts.size(); ++host)
            workers.emplace_back([&, host] { WorkWithDocuments(mHosts[host], shares[host]); });
        for (std::thread& worker : workers)
            worker.join();
        EXPECT_TRUE(Eventually([&] {  // what could not be let go at once goes when the hosts are idle
            for (Host& host : mHosts)
                host.process.Call("IdleEvent");
            return mWorld.FontManager().ActiveFiles().empty();
        })) << "fonts are left after the last close";
    }

    HostWorld mWorld;
    std::mt19937 mRandom;
    std::vector<Host> mHosts;
};

}  // namespace

TEST(Disturbances, HostsLiveThroughKillsRestartsAndStalls) {
    for (const size_t hosts : {1, 2, 3})
        DisturbedRounds(hosts).Run();
}

TEST(Disturbances, QuittingWithManyDocumentsAsksNothingWhateverTheAgentDoes) {
    for (const char* trouble : {"none", "dead", "dead and not to be started", "frozen"}) {
        SCOPED_TRACE(trouble);
        HostWorld world;
        world.AddFonts({"Sample-Bold", "Sample-Italic"});
        ScriptedHost host;
        host.Start();
        host.SetPreference("CloseFontsOnDocClose", 1);
        for (int document = 0; document < 100; ++document)
            host.Open(world.WriteDocument(std::to_string(document) + ".ai",
                                          {document % 2 == 0 ? "Sample-Bold" : "Sample-Italic"}));
        EXPECT_EQ(world.FontManager().ActiveFiles().size(), 2u);
        const platform::ProcessId agent = world.Agent();
        if (*trouble == 'f')
            SuspendProcess(agent);
        else if (*trouble == 'd')
            world.KillAgent();
        if (std::string(trouble).ends_with("started"))
            world.RemoveLaunchInformation();
        EXPECT_EQ(host.Call("TerminatePluginCoreInterface")["code"], 0);
        if (*trouble == 'f')
            ResumeProcess(agent);
        EXPECT_EQ(host.Finish().status, 0);
        EXPECT_EQ(CountOf(world.Trace(), "Nobody to show"), 0);
        EXPECT_EQ(world.Pellwick("list"), 0) << "its user starts it where nobody did";
        EXPECT_TRUE(Eventually([&] { return world.FontManager().ActiveFiles().empty(); }));
    }
}
