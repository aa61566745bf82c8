// An agent that is killed while clients add, remove and activate fonts. Here some rounds; a long run:
// KILLED_ROUNDS=1000 [KILL_SEED=N] end-to-end-tests --gtest_filter='Kills.*'

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
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

constexpr unsigned kLatestKill = 60000;  // microseconds
constexpr unsigned kRoundsPerKilledStart = 4;

void SleepAtRandom(std::mt19937& random) {
    std::this_thread::sleep_for(std::chrono::microseconds(random() % kLatestKill));
}

/// Whether a font is active for the user, and for a document of this process.
struct FontState {
    bool isUsers = false;
    bool isLeased = false;

    bool operator==(const FontState&) const = default;
};

/// Fonts by the checksums of their files, and the fonts in sets.
struct Library {
    std::map<std::string, FontState> fonts;
    std::map<std::string, std::set<std::string>> sets;

    bool operator==(const Library&) const = default;
};

/// What the agent calls them; of a file its first face.
struct LibraryIDs {
    std::map<std::string, uint32_t> fonts;
    std::map<std::string, int64_t> sets;
};

/// What one client asks the agent for.
struct Request {
    const char* method;
    Json arguments;
    std::function<void(Library&)> change;  ///< what is the case afterwards
    std::function<void(const Json& result)> learn = [](const Json&) {};
    bool mayBeRefused = false;
};

/// Does one thing after the other at random with fonts of its own, of which nothing else makes use, and disturbs
/// those that it shares with others.
class RandomClient {
public:
    RandomClient(const TestWorld& world, const std::string& name, unsigned seed)
        : mName(name), mRandom(seed) {
        for (int font = 0; font < 16; ++font)
            MakeSource(world, (font < 12 ? name : "Shared") + std::to_string(font), font % 4 == 0);
    }

    /// Goes on until the agent is gone.
    void Work() {
        AgentConnection connection(std::chrono::seconds(30));
        while (!connection.HasFailed()) {
            const Request request = NextRequest();
            Library after = known;
            request.change(after);
            Json result;
            const ErrorCode code = connection.Call(request.method, request.arguments, result);
            if (connection.HasFailed()) {
                perhaps = std::move(after);
            } else if (code == CoreErrorCodes::kSuccess) {
                known = std::move(after);
                request.learn(result);
                ++done;
            } else {
                EXPECT_TRUE(request.mayBeRefused) << request.method << pellwick::FailureText(code, result);
            }
        }
    }
    /// Those of its own.
    Library Part(Library library) const {
        const auto owns = [this](const auto& font) {
            return std::any_of(mSources.begin(), mSources.begin() + 12,
                               [&](const Source& source) { return source.checksum == font.first; });
        };
        std::erase_if(library.fonts, [&](const auto& font) { return !owns(font); });
        std::erase_if(library.sets, [&](const auto& set) { return !set.first.starts_with(mName); });
        return library;
    }

    Library known;                   ///< by what was answered
    std::optional<Library> perhaps;  ///< the case if the last request, which got no answer, was carried out
    LibraryIDs ids;
    int done = 0;

private:
    struct Source {
        std::string name, checksum;
        std::vector<std::string> paths;  ///< files of the same content
    };

    void MakeSource(const TestWorld& world, const std::string& name, bool isCollection) {
        const TestFontNames names{name + "-Bold", name, "Bold"};
        const std::string content = isCollection
                                        ? MakeTestFontCollection({names, {name + "-Italic", name, "Italic"}})
                                        : MakeTestFont(names);
        mSources.push_back({names.postScriptName, pellwick::test::ChecksumOf(content), {}});
        for (const char* extension : {".ttf", ".OTF", ""})
            mSources.back().paths.push_back(world.Write("fonts/" + name + extension, content));
    }
    size_t Random(size_t count) { return mRandom() % count; }
    std::vector<std::string> SomeFonts(size_t most) {
        std::vector<std::string> there;
        for (const auto& [checksum, state] : known.fonts)
            there.push_back(checksum);
        std::shuffle(there.begin(), there.end(), mRandom);
        there.resize(std::min(there.size(), 1 + Random(most)));
        return there;
    }
    Json IDsOf(const std::vector<std::string>& checksums) const {
        Json numbers = Json::array();
        for (const std::string& checksum : checksums)
            numbers.push_back(ids.fonts.at(checksum));
        return numbers;
    }

    Request NextRequest() {
        const size_t kind = Random(10);
        if (kind < 2)
            return Add(mSources[Random(12)], false);
        if (kind < 6)
            return ChangeFonts(kind);
        return kind < 8 ? ChangeSets() : DisturbShared();
    }
    Request Add(const Source& source, bool isShared) {
        return {
            method::kAddFile,
            {{"path", source.paths[Random(source.paths.size())]}},
            [=](Library& library) {
                if (!isShared)
                    library.fonts.try_emplace(source.checksum);
            },
            [=, this](const Json& result) { ids.fonts[source.checksum] = result["fonts"][0]["DatabaseID"]; },
            isShared};
    }
    Request ChangeFonts(size_t kind) {
        const std::vector<std::string> fonts = SomeFonts(3);
        const bool isOn = Random(2) == 0;
        Json arguments{{"fonts", IDsOf(fonts)}};
        if (kind == 2)
            return {method::kRemoveFonts, arguments, [=](Library& library) {
                        for (const std::string& font : fonts) {
                            library.fonts.erase(font);
                            for (auto& [name, members] : library.sets)
                                members.erase(font);
                        }
                    }};
        if (kind == 3)
            return {isOn ? method::kActivateForUser : method::kDeactivateForUser, arguments,
                    [=](Library& library) {
                        for (const std::string& font : fonts)
                            library.fonts[font].isUsers = isOn;
                    },
                    [=](const Json& result) { EXPECT_TRUE(!isOn || result["failed"].empty()); }};
        const bool isByName = isOn && fonts.size() == 1;
        arguments["document"] = mName;
        if (isByName)
            arguments["fonts"] = {std::find_if(mSources.begin(), mSources.end(), [&](const Source& source) {
                                      return source.checksum == fonts[0];
                                  })->name};
        return {isByName ? method::kActivateDocumentFonts
                : isOn   ? method::kActivateFonts
                         : method::kDeactivateFonts,
                arguments,
                [=](Library& library) {
                    for (const std::string& font : fonts)
                        library.fonts[font].isLeased = isOn;
                },
                [=](const Json& result) { EXPECT_TRUE(!isByName || result["matched"].size() == 1); }};
    }
    Request ChangeSets() {
        constexpr size_t kMostSets = 8;
        const size_t kind = known.sets.empty() ? 0 : known.sets.size() < kMostSets ? Random(5) : 2;
        if (kind < 2) {
            const std::string name = mName + " " + std::to_string(++mSetNumber);
            return {method::kCreateSet,
                    {{"name", name}},
                    [=](Library& library) { library.sets[name]; },
                    [=, this](const Json& result) { ids.sets[name] = result[pellwick::member::kID]; }};
        }
        const auto set =
            std::next(known.sets.begin(), static_cast<std::ptrdiff_t>(Random(known.sets.size())));
        const std::string name = set->first;
        if (kind == 2)
            return {method::kDeleteSet, {{"set", ids.sets.at(name)}}, [=](Library& library) {
                        library.sets.erase(name);
                    }};
        const std::vector<std::string> fonts = SomeFonts(5);
        return {method::kAddFontsToSets,
                {{"fonts", IDsOf(fonts)}, {"sets", {ids.sets.at(name)}}},
                [=](Library& library) { library.sets[name].insert(fonts.begin(), fonts.end()); }};
    }
    /// What becomes of it depends on the others.
    Request DisturbShared() {
        const Source& source = mSources[12 + Random(4)];
        const auto id = ids.fonts.find(source.checksum);
        if (id == ids.fonts.end() || Random(2) == 0)
            return Add(source, true);
        const char* const methods[] = {method::kRemoveFonts, method::kActivateForUser, method::kActivateFonts,
                                       method::kDeactivateForUser};
        const char* const chosen = methods[Random(4)];
        const Json arguments{{"fonts", {id->second}}, {"document", "shared"}};
        if (chosen == method::kRemoveFonts)
            ids.fonts.erase(id);
        return {chosen, arguments, [](Library&) {}, [](const Json&) {}, true};
    }

    const std::string mName;
    std::vector<Source> mSources;  ///< twelve of its own, then those that it shares
    std::mt19937 mRandom;
    int mSetNumber = 0;
};

/// What the agent and its folders hold, seen from outside. Files go by their names.
struct Observation {
    Library library;
    LibraryIDs ids;
    std::map<std::string, std::string> recorded;  ///< checksums
    std::map<std::string, std::string> vault;     ///< paths
    std::set<std::string> active, links;

    bool IsVaultAsRecorded() const {
        return std::equal(recorded.begin(), recorded.end(), vault.begin(), vault.end(),
                          [](const auto& left, const auto& right) { return left.first == right.first; });
    }
};

std::vector<Json> AllFonts(AgentConnection& connection, Json arguments) {
    std::vector<Json> fonts;
    for (Json page; fonts.empty() || !page["fonts"].empty();) {
        arguments["after"] = fonts.empty() ? Json(0) : fonts.back()[kGS_DatabaseIDKey];
        EXPECT_EQ(connection.Call(method::kListFonts, arguments, page), CoreErrorCodes::kSuccess);
        if (page["fonts"].empty())
            break;
        fonts.insert(fonts.end(), page["fonts"].begin(), page["fonts"].end());
    }
    return fonts;
}

Observation Observe(const TestWorld& world) {
    Observation seen;
    AgentConnection connection(std::chrono::seconds(30));
    const std::vector<Json> fonts = AllFonts(connection, Json::object());
    Json states, sets;
    EXPECT_EQ(connection.Call(method::kGetClientStates, {{"fonts", fonts}}, states),
              CoreErrorCodes::kSuccess);
    EXPECT_EQ(connection.Call(method::kListSets, Json::object(), sets), CoreErrorCodes::kSuccess);
    for (size_t index = 0; index < fonts.size(); ++index) {
        const std::string checksum = fonts[index][kGS_ChecksumKey];
        const int state = fonts[index][kGS_ActivationStateKey];
        const std::string name = platform::NamePart(fonts[index][kGS_PathKey].get<std::string>());
        EXPECT_NE(state, kFontActivationState_Missing) << name;
        seen.recorded[name] = checksum;
        if (state == kFontActivationState_ActivatedByUser || state == kFontActivationState_ActivatedByPlugin)
            seen.active.insert(name);
        if (seen.ids.fonts.try_emplace(checksum, fonts[index][kGS_DatabaseIDKey].get<uint32_t>()).second)
            seen.library.fonts[checksum] = {state == kFontActivationState_ActivatedByUser,
                                            states["states"][index]["isActive"]};
    }
    for (const Json& set : sets["sets"]) {
        const std::string name = set[pellwick::member::kName];
        seen.ids.sets[name] = set[pellwick::member::kID];
        seen.library.sets[name];
        for (const Json& font : AllFonts(connection, {{"set", set[pellwick::member::kID]}}))
            seen.library.sets[name].insert(font[kGS_ChecksumKey]);
    }
    for (const std::string& path : world.FilesBelow("data/Vantorix/Pellwick/vault"))
        seen.vault[platform::NamePart(path)] = path;
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
    if (random() % kRoundsPerKilledStart == 0) {
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
    EXPECT_TRUE(Eventually([&] { return (seen = Observe(world)).IsVaultAsRecorded(); }));
    for (const auto& [name, path] : seen.vault) {
        std::string content;
        EXPECT_FALSE(platform::ReadWholeFile(path, content, 1 << 20));
        EXPECT_EQ(pellwick::test::ChecksumOf(content), seen.recorded[name]) << name;
    }
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
