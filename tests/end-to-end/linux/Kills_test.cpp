// An agent that is killed while clients add, remove and activate fonts. Here some rounds; a long run:
// KILLED_ROUNDS=1000 [KILL_SEED=N] end-to-end-tests --gtest_filter='Kills.*'

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <set>
#include <thread>

#include "TestFonts.h"
#include "common/Protocol.h"
#include "ipc/AgentConnection.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "tests/support/TestWorld.h"
#include "tests/support/VaultFiles.h"

using pellwick::AgentConnection;
using pellwick::Json;
using pellwick::test::TestWorld;
namespace method = pellwick::method;

namespace {

void SleepAtRandom(std::mt19937& random) {
    constexpr unsigned kLatestKill = 60000;
    std::this_thread::sleep_for(std::chrono::microseconds(random() % kLatestKill));
}

/// Whether a font is active for the user, and for a document of this process.
struct FontState {
    bool isUsers = false;
    bool isLeased = false;

    bool operator==(const FontState&) const = default;
};

/// Fonts by their PostScript names, and the fonts in sets.
struct Library {
    std::map<std::string, FontState> fonts;
    std::map<std::string, std::set<std::string>> sets;

    bool operator==(const Library&) const = default;
};

/// What one client asks the agent for.
struct Request {
    const char* method;
    Json arguments;
    Library after;  ///< what is the case when it was carried out
    std::function<void(const Json& result)> learn = [](const Json&) {};
};

/// Does one thing after the other at random with fonts and sets of its own, whose names begin with its own.
class RandomClient {
public:
    RandomClient(const TestWorld& world, const std::string& name, unsigned seed)
        : mName(name), mRandom(seed) {
        for (int number = 0; number < 12; ++number) {
            const std::string family = name + std::to_string(number);
            const std::string font = MakeTestFont({family + "-Bold", family, "Bold"});
            for (const char* extension : {".ttf", ".OTF", ""})  // files of the same content
                mSources[family + "-Bold"].push_back(world.Write("fonts/" + family + extension, font));
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
            request.learn(result);
            ++done;
        }
    }
    /// Those of its own.
    Library Part(Library library) const {
        const auto isOthers = [this](const auto& each) { return !each.first.starts_with(mName); };
        std::erase_if(library.fonts, isOthers);
        std::erase_if(library.sets, isOthers);
        return library;
    }

    Library known;                   ///< by what was answered
    std::optional<Library> perhaps;  ///< the case if the last request, which got no answer, was carried out
    std::map<std::string, int64_t> ids;  ///< what the agent calls fonts and sets
    int done = 0;

private:
    size_t Random(size_t count) { return mRandom() % count; }
    template <class Map>
    std::string AnyOf(const Map& map) {
        return std::next(map.begin(), static_cast<std::ptrdiff_t>(Random(map.size())))->first;
    }
    std::set<std::string> SomeFonts() {
        std::set<std::string> fonts;
        for (size_t count = known.fonts.empty() ? 0 : 1 + Random(3); count > 0; --count)
            fonts.insert(AnyOf(known.fonts));
        return fonts;
    }
    Json IDsOf(const std::set<std::string>& names) const {
        Json numbers = Json::array();
        for (const std::string& name : names)
            numbers.push_back(ids.at(name));
        return numbers;
    }

    Request NextRequest() {
        const size_t kind = Random(8);
        if (kind < 2) {
            const std::string font = AnyOf(mSources);
            Library after = known;
            after.fonts.try_emplace(font);
            return {method::kAddFile,
                    {{"path", mSources[font][Random(3)]}},
                    after,
                    [=, this](const Json& result) { ids[font] = result["fonts"][0]["DatabaseID"]; }};
        }
        return kind < 6 ? ChangeFonts(kind) : ChangeSets();
    }
    Request ChangeFonts(size_t kind) {
        const std::set<std::string> fonts = SomeFonts();
        const bool isOn = Random(2) == 0;
        const Json arguments{{"fonts", IDsOf(fonts)}, {"document", mName}};
        Library after = known;
        for (const std::string& font : fonts) {
            if (kind == 2) {
                after.fonts.erase(font);
                for (auto& [name, members] : after.sets)
                    members.erase(font);
            } else {
                (kind == 3 ? after.fonts[font].isUsers : after.fonts[font].isLeased) = isOn;
            }
        }
        if (kind == 2)
            return {method::kRemoveFonts, arguments, after};
        if (kind == 3)
            return {isOn ? method::kActivateForUser : method::kDeactivateForUser, arguments, after};
        return {isOn ? method::kActivateFonts : method::kDeactivateFonts, arguments, after};
    }
    Request ChangeSets() {
        constexpr size_t kMostSets = 8;
        const size_t kind = known.sets.empty() ? 0 : known.sets.size() < kMostSets ? Random(5) : 2;
        Library after = known;
        if (kind < 2) {
            const std::string name = mName + " " + std::to_string(++mSetNumber);
            after.sets[name];
            return {method::kCreateSet, {{"name", name}}, after, [=, this](const Json& result) {
                        ids[name] = result[pellwick::member::kID];
                    }};
        }
        const std::string name = AnyOf(known.sets);
        if (kind == 2) {
            after.sets.erase(name);
            return {method::kDeleteSet, {{"set", ids.at(name)}}, after};
        }
        const std::set<std::string> fonts = SomeFonts();
        after.sets[name].insert(fonts.begin(), fonts.end());
        return {method::kAddFontsToSets, {{"fonts", IDsOf(fonts)}, {"sets", {ids.at(name)}}}, after};
    }

    const std::string mName;
    std::map<std::string, std::vector<std::string>> mSources;  ///< paths of the font's files, by its name
    std::mt19937 mRandom;
    int mSetNumber = 0;
};

/// What the agent and its folders hold, seen from outside. Files go by their names.
struct Observation {
    Library library;
    std::map<std::string, int64_t> ids;
    std::map<std::string, std::string> recorded, vault;  ///< checksums
    std::set<std::string> active, links;
};

Json Ask(AgentConnection& connection, const char* method, const Json& arguments) {
    Json result;
    EXPECT_EQ(connection.Call(method, arguments, result), CoreErrorCodes::kSuccess) << method;
    return result;
}

Observation Observe(const TestWorld& world) {
    Observation seen;
    AgentConnection connection(std::chrono::seconds(30));
    const Json fonts = Ask(connection, method::kListFonts, {{"after", 0}})["fonts"];
    const Json states = Ask(connection, method::kGetClientStates, {{"fonts", fonts}})["states"];
    for (size_t index = 0; index < fonts.size(); ++index) {
        const Json& font = fonts[index];
        const int state = font[kGS_ActivationStateKey];
        const std::string file = platform::NamePart(font[kGS_PathKey].get<std::string>());
        seen.recorded[file] = font[kGS_ChecksumKey];
        if (state == kFontActivationState_ActivatedByUser || state == kFontActivationState_ActivatedByPlugin)
            seen.active.insert(file);
        seen.ids[font[kGS_PostScriptNameKey]] = font[kGS_DatabaseIDKey];
        seen.library.fonts[font[kGS_PostScriptNameKey]] = {state == kFontActivationState_ActivatedByUser,
                                                           states[index]["isActive"]};
    }
    const Json sets = Ask(connection, method::kListSets, Json::object())["sets"];
    for (const Json& set : sets) {
        const std::string name = set[pellwick::member::kName];
        seen.ids[name] = set[pellwick::member::kID];
        seen.library.sets[name];
        const Json members =
            Ask(connection, method::kListFonts, {{"after", 0}, {"set", seen.ids[name]}})["fonts"];
        for (const Json& font : members)
            seen.library.sets[name].insert(font[kGS_PostScriptNameKey]);
    }
    for (const std::string& path : world.VaultFiles())
        seen.vault[platform::NamePart(path)] = pellwick::test::ChecksumOf(pellwick::test::ContentOf(path));
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
        TestProcess agent({PELLWICK_PROGRAM});
        SleepAtRandom(random);
        agent.Kill();
        agent.Finish();
    }
    world.StartAgent();
}

/// That all is as it was answered to be, and records, vault and active files agree; the clients go on from it.
void Check(const TestWorld& world, std::vector<RandomClient>& clients) {
    Observation seen;
    EXPECT_TRUE(Eventually([&] { return (seen = Observe(world)).recorded == seen.vault; }));
    EXPECT_EQ(seen.active, seen.links);
    const ProgramResult doctor = world.Run({"doctor", "--no-start"});
    EXPECT_EQ(doctor.status, 0) << doctor.errors;
    for (RandomClient& client : clients) {
        const Library part = client.Part(seen.library);
        EXPECT_TRUE(part == client.known || part == client.perhaps)
            << testing::PrintToString(part.sets) << part.fonts.size() << " fonts; was "
            << testing::PrintToString(client.known.sets) << client.known.fonts.size();
        client.known = part;
        client.perhaps.reset();
        client.ids = seen.ids;
    }
}

unsigned NumberFromEnvironment(const char* variable, unsigned otherwise) {
    const std::string text = platform::EnvironmentVariable(variable);
    return text.empty() ? otherwise : static_cast<unsigned>(std::stoul(text));
}

}  // namespace

TEST(Kills, NothingThatWasAnsweredAsDoneIsLostAndNothingIsLeftBehind) {
    const unsigned rounds = NumberFromEnvironment("KILLED_ROUNDS", 20);
    const unsigned seed = NumberFromEnvironment("KILL_SEED", 1);
    TestWorld world("Мои шрифты 字体");
    std::mt19937 random(seed);
    std::vector<RandomClient> clients;
    for (const char* name : {"Left", "Right"})
        clients.emplace_back(world, name, random());
    world.StartAgent();
    unsigned round = 0;
    for (; round < rounds && !testing::Test::HasFailure(); ++round) {
        WorkUntilKilled(world, clients, random);
        StartAgent(world, random);
        Check(world, clients);
    }
    std::printf("%u rounds, %d requests answered as done (seed %u)\n", round,
                clients[0].done + clients[1].done, seed);
}
