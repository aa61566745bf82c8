// An agent that is killed while clients add, remove and activate fonts. Here some rounds; a long run:
// KILLED_ROUNDS=1000 [KILL_SEED=N] end-to-end-tests --gtest_filter='Kills.*'

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

/// What one client asks the agent for.
struct Request {
    const char* method;
    Json arguments;
    Library after;  ///< what is the case when it was carried out
};

/// Does one thing after the other at random with fonts of its own, whose names begin with its own.
class RandomClient {
public:
    RandomClient(const TestWorld& world, const std::string& name, unsigned seed)
        : mName(name), mRandom(seed) {
        for (int number = 0; number < 12; ++number) {
            const std::string family = name + std::to_string(number);
            mFiles[family + "-Bold"] = world.WriteFont(family + "-Bold");
        }
    }

    /// Goes on until the agent is gone.
    void Work() {
        AgentConnection connection(std::chrono::seconds(30));
        while (!connection.HasFailed()) {
            Request request = NextRequest();
            Json result;
            const ErrorCode code = connection.Call(request.method, request.arguments, result);
            if (connection.HasFailed()) {
                perhaps = std::move(request.after);
                return;
            }
            EXPECT_EQ(code, 0u) << request.method << pellwick::FailureText(code, result);
            known = std::move(request.after);
            if (request.method == method::kAddFile)
                ids[result["fonts"][0][kGS_PostScriptNameKey]] = result["fonts"][0][kGS_DatabaseIDKey];
            ++done;
        }
    }
    /// Those of its own.
    Library Part(Library library) const {
        std::erase_if(library, [this](const auto& font) { return !font.first.starts_with(mName); });
        return library;
    }

    Library known;                   ///< by what was answered
    std::optional<Library> perhaps;  ///< the case if the last request, which got no answer, was carried out
    std::map<std::string, int64_t> ids;  ///< what the agent calls the fonts
    int done = 0;

private:
    template <class Map>
    std::string AnyOf(const Map& map) {
        return std::next(map.begin(), static_cast<std::ptrdiff_t>(mRandom() % map.size()))->first;
    }
    Request NextRequest() {
        Library after = known;
        const size_t kind = mRandom() % 8;
        if (kind < 3 || known.empty()) {
            const std::string font = AnyOf(mFiles);
            after.try_emplace(font);
            return {method::kAddFile, {{"path", mFiles[font]}}, after};
        }
        std::set<std::string> fonts;
        for (size_t count = 1 + mRandom() % 3; count > 0; --count)
            fonts.insert(AnyOf(known));
        Json numbers = Json::array();
        for (const std::string& font : fonts) {
            numbers.push_back(ids.at(font));
            if (kind == 3)
                after.erase(font);
            else
                after[font] = kind < 6;
        }
        const char* const changed = kind == 3  ? method::kRemoveFonts
                                    : kind < 6 ? method::kActivateForUser
                                               : method::kDeactivateForUser;
        return {changed, {{"fonts", numbers}}, after};
    }

    const std::string mName;
    std::map<std::string, std::string> mFiles;
    std::mt19937 mRandom;
};

/// What the agent and its folders hold, seen from outside. Files go by their names.
struct Observation {
    Library library;
    std::map<std::string, int64_t> ids;
    std::set<std::string> recorded, vault, active, links;
};

Observation Observe(const TestWorld& world) {
    Observation seen;
    Json result;
    EXPECT_EQ(AgentConnection(std::chrono::seconds(30)).Call(method::kListFonts, {{"after", 0}}, result), 0u);
    for (const Json& font : result["fonts"]) {
        const std::string name = font[kGS_PostScriptNameKey];
        const std::string file = platform::NamePart(font[kGS_PathKey].get<std::string>());
        seen.ids[name] = font[kGS_DatabaseIDKey];
        seen.library[name] = font[kGS_ActivationStateKey] == int{kFontActivationState_ActivatedByUser};
        seen.recorded.insert(file);
        if (seen.library[name])
            seen.active.insert(file);
    }
    for (const std::string& path : world.VaultFiles())
        seen.vault.insert(platform::NamePart(path));
    for (const std::string& path : world.ActiveFiles())
        seen.links.insert(platform::NamePart(path));
    return seen;
}

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

/// That all is as it was answered to be, and records, vault and active files agree, whose contents doctor compares;
/// the clients go on from it.
void Check(const TestWorld& world, std::vector<RandomClient>& clients) {
    Observation seen;
    EXPECT_TRUE(Eventually([&] { return (seen = Observe(world)).recorded == seen.vault; }));
    EXPECT_EQ(seen.active, seen.links);
    const ProgramResult doctor = world.Run({"doctor", "--no-start"});
    EXPECT_EQ(doctor.status, 0) << doctor.errors;
    for (RandomClient& client : clients) {
        const Library part = client.Part(seen.library);
        EXPECT_TRUE(part == client.known || part == client.perhaps)
            << testing::PrintToString(part) << "; was " << testing::PrintToString(client.known);
        client.known = part;
        client.perhaps.reset();
        client.ids = seen.ids;
    }
}

}  // namespace

TEST(Kills, NothingThatWasAnsweredAsDoneIsLostAndNothingIsLeftBehind) {
    const int rounds = NumberFromEnvironment("KILLED_ROUNDS", 20);
    const auto seed = static_cast<unsigned>(NumberFromEnvironment("KILL_SEED", 1));
    TestWorld world("Мои шрифты 字体");
    std::mt19937 random(seed);
    std::vector<RandomClient> clients;
    for (const char* name : {"Left", "Right"})
        clients.emplace_back(world, name, random());
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
