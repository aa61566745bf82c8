// An agent that is killed while clients add, remove and activate fonts. Here some rounds; a long run:
// KILLED_ROUNDS=1000 [KILL_SEED=N]
//   scripts/isolated build/dev/tests/end-to-end-tests --gtest_filter='Kills.*'

#include <algorithm>
#include <cstdio>
#include <random>
#include <thread>

#include "HostWorld.h"
#include "ipc/AgentConnection.h"
#include "platform/Files.h"

using pellwick::AgentConnection;
using pellwick::Json;
using pellwick::test::TestWorld;
namespace method = pellwick::method;

namespace {

void SleepAtRandom(std::mt19937& random) {
    constexpr unsigned kLatestKill = 60000;
    std::this_thread::sleep_for(std::chrono::microseconds(random() % kLatestKill));
}

/// Which fonts there are, by their PostScript names, and whether they are active for the user.
using Library = std::map<std::string, bool>;

/// Does one thing after the other at random with fonts of its own.
struct RandomClient {
    /// Goes on until the agent is gone.
    void Work() {
        AgentConnection connection(std::chrono::seconds(30));
        for (;; ++done) {
            const std::string font =
                std::next(files.begin(), static_cast<long>(random() % files.size()))->first;
            const char* const kinds[] = {method::kAddFile, method::kRemoveFonts, method::kActivateForUser,
                                         method::kActivateForUser, method::kDeactivateForUser};
            const char* const kind = kinds[known.contains(font) ? random() % std::size(kinds) : 0];
            Library after = known;
            Json arguments;
            if (kind == method::kAddFile) {
                after.try_emplace(font);
                arguments = {{"path", files[font]}};
            } else {
                std::set<std::string> fonts{font};  // all of them or none
                for (size_t more = random() % 3; more > 0; --more)
                    fonts.insert(std::next(known.begin(), static_cast<long>(random() % known.size()))->first);
                for (const std::string& each : fonts) {
                    arguments["fonts"].push_back(ids.at(each));
                    after[each] = kind == method::kActivateForUser;
                    if (kind == method::kRemoveFonts)
                        after.erase(each);
                }
            }
            Json result;
            const ErrorCode code = connection.Call(kind, arguments, result);
            if (connection.HasFailed()) {
                perhaps = std::move(after);
                return;
            }
            EXPECT_EQ(code, 0u) << kind << pellwick::FailureText(code, result);
            known = std::move(after);
            if (kind == method::kAddFile)
                ids[font] = result["fonts"][0][kGS_DatabaseIDKey];
        }
    }

    std::mt19937 random;
    std::map<std::string, std::string> files = {};  ///< their paths, by PostScript names
    Library known = {};                             ///< by what was answered
    Library perhaps = {};  ///< the case if the last request, which got no answer, was carried out
    std::map<std::string, int64_t> ids = {};  ///< what the agent calls the fonts
    int done = 0;
};

void WorkUntilKilled(TestWorld& world, std::vector<RandomClient>& clients, std::mt19937& random) {
    std::vector<std::thread> workers;
    for (RandomClient& client : clients)
        workers.emplace_back([&client] { client.Work(); });
    SleepAtRandom(random);
    world.KillAgent();
    for (std::thread& worker : workers)
        worker.join();
}

/// Perhaps first one that dies while it puts things right.
void StartAgent(TestWorld& world, std::mt19937& random) {
    if (random() % 4 == 0) {
        TestProcess agent({BuiltFile(PELLWICK_PROGRAM)});
        SleepAtRandom(random);
        agent.Kill();
        agent.Finish();
    }
    world.StartAgent();
}

std::set<std::string> FileNamesOf(const std::vector<std::string>& paths) {
    std::set<std::string> names;
    std::transform(paths.begin(), paths.end(), std::inserter(names, names.end()), platform::NamePart);
    return names;
}

/// That all is as it was answered to be, and records, vault and active files agree, whose contents doctor compares;
/// the clients go on from it.
void Check(const TestWorld& world, std::vector<RandomClient>& clients) {
    Json fonts;
    EXPECT_TRUE(Eventually([&] {  // what the vault held when the agent died is taken back
        fonts = world.RunForJson({"list", "--no-start"})["fonts"];
        std::vector<std::string> recorded;
        for (const Json& font : fonts)
            recorded.push_back(font[kGS_PathKey]);
        return FileNamesOf(recorded) == FileNamesOf(world.VaultFiles());
    }));
    std::vector<std::string> active;
    for (RandomClient& client : clients) {
        Library library;
        for (const Json& font : fonts) {
            const std::string name = font[kGS_PostScriptNameKey];
            if (!client.files.contains(name))
                continue;
            client.ids[name] = font[kGS_DatabaseIDKey];
            library[name] = font[kGS_ActivationStateKey] == int{kFontActivationState_ActivatedByUser};
            if (library[name])
                active.push_back(font[kGS_PathKey]);
        }
        EXPECT_TRUE(library == client.known || library == client.perhaps)
            << testing::PrintToString(library) << "; was " << testing::PrintToString(client.known);
        client.known = std::move(library);
    }
    EXPECT_EQ(FileNamesOf(world.ActiveFiles()), FileNamesOf(active));
    const ProgramResult doctor = world.Run({"doctor", "--no-start"});
    EXPECT_EQ(doctor.status, 0) << doctor.errors;
}

}  // namespace

TEST(Kills, NothingThatWasAnsweredAsDoneIsLostAndNothingIsLeftBehind) {
    const int rounds = NumberFromEnvironment("KILLED_ROUNDS", 20);
    const auto seed = static_cast<unsigned>(NumberFromEnvironment("KILL_SEED", 1));
    TestWorld world("Мои шрифты 字体");
    std::mt19937 random(seed);
    std::vector<RandomClient> clients;
    for (const std::string name : {"Left", "Right"}) {
        RandomClient& client = clients.emplace_back(RandomClient{std::mt19937(random())});
        for (int number = 0; number < 12; ++number) {
            const std::string font = name + std::to_string(number) + "-Bold";
            client.files[font] = world.WriteFont(font);
        }
    }
    world.StartAgent();
    int round = 0;
    for (; round < rounds && !testing::Test::HasFailure(); ++round) {
        WorkUntilKilled(world, clients, random);
        StartAgent(world, random);
        Check(world, clients);
    }
    std::printf("%d rounds, %d requests answered as done (seed %u)\n", round,
                clients[0].done + clients[1].done, seed);
}
