#include "KilledRounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "common/Locations.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "tests/support/VaultFiles.h"

using pellwick::AgentConnection;
using pellwick::Json;
namespace method = pellwick::method;

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr milliseconds kLatestKill{60};
constexpr int kRoundsPerLostLog = 10;
constexpr int kRoundsPerKilledStart = 4;
constexpr std::chrono::seconds kSettlingLimit{10};
constexpr char kVault[] = "data/Vantorix/Pellwick/vault";

Json Call(AgentConnection& connection, const char* method, const Json& arguments) {
    Json result;
    const ErrorCode code = connection.Call(method, arguments, result);
    EXPECT_EQ(code, CoreErrorCodes::kSuccess) << method << ": " << pellwick::FailureText(code, result);
    return result;
}

std::vector<Json> AllFonts(AgentConnection& connection, Json arguments) {
    std::vector<Json> fonts;
    for (;;) {
        arguments["after"] = fonts.empty() ? Json(0) : fonts.back()[kGS_DatabaseIDKey];
        const Json page = Call(connection, method::kListFonts, arguments);
        if (page["fonts"].empty())
            return fonts;
        fonts.insert(fonts.end(), page["fonts"].begin(), page["fonts"].end());
    }
}

void NoteFont(const Json& record, bool isLeased, Observation& seen) {
    const std::string checksum = record[kGS_ChecksumKey];
    const int state = record[kGS_ActivationStateKey];
    Observation::File& file = seen.files[checksum];
    file.isActive = file.isActive || state == kFontActivationState_ActivatedByUser ||
                    state == kFontActivationState_ActivatedByPlugin;
    if (!seen.ids.fonts.try_emplace(checksum, record[kGS_DatabaseIDKey].get<uint32_t>()).second)
        return;  // another face of the same file
    file.name = platform::NamePart(record[kGS_PathKey].get<std::string>());
    file.facts = {state == kFontActivationState_ActivatedByUser, isLeased};
    file.isMissing = state == kFontActivationState_Missing;
    seen.facts.fonts[checksum] = file.facts;
}

std::string TextOf(const LibraryFacts& facts) {
    std::ostringstream text;
    for (const auto& [checksum, font] : facts.fonts)
        text << checksum.substr(0, 6) << (font.isUsers ? "U" : "") << (font.isLeased ? "L" : "") << " ";
    for (const auto& [name, members] : facts.sets) {
        text << "{" << name << ":";
        for (const std::string& member : members)
            text << " " << member.substr(0, 6);
        text << "} ";
    }
    return text.str();
}

/// Those that are the client's.
LibraryFacts FactsOf(const RandomClient& client, const LibraryFacts& all) {
    LibraryFacts facts = all;
    std::erase_if(facts.fonts, [&](const auto& font) { return !client.Owns(font.first); });
    std::erase_if(facts.sets, [&](const auto& set) { return !client.OwnsSet(set.first); });
    return facts;
}

}  // namespace

KilledRounds::KilledRounds(int rounds, unsigned seed)
    : mRounds(rounds), mSeed(seed), mWorld("Мои шрифты 字体"), mRandom(seed) {
    const auto sources = [&](const std::string& prefix, int count) {
        std::vector<FontSource> made;
        for (int font = 0; font < count; ++font)
            made.push_back(MakeFontSource(mWorld, prefix + std::to_string(font), font % 4 == 0));
        return made;
    };
    const std::vector<FontSource> shared = sources("Shared", 4);
    for (const char* name : {"Left", "Right"})
        mClients.push_back(std::make_unique<RandomClient>(name, sources(name, 12), shared, mRandom()));
}

void KilledRounds::Expect(bool isTrue, const std::string& otherwise) {
    if (!isTrue)
        mFindings.push_back(otherwise);
}

void KilledRounds::WorkUntilKilled() {
    const auto moment = std::chrono::microseconds(Random(1000 * kLatestKill.count()));
    std::vector<std::thread> workers;
    for (auto& client : mClients)
        workers.emplace_back([&client] { client->Work(); });
    std::this_thread::sleep_for(moment);
    mWorld.KillAgent();
    for (std::thread& worker : workers)
        worker.join();
}

void KilledRounds::LoseLog() {
    const std::string database = pellwick::Locations::OfThisUser().databasePath;
    for (const char* file : {"-wal", "-shm"})
        Expect(!platform::RemoveFile(database + file), "the log of the database could not be removed");
    ++mLostLogs;
}

/// Perhaps first one that dies while it puts things right.
void KilledRounds::StartAgent() {
    if (Random(kRoundsPerKilledStart) == 0) {
        ++mKilledStarts;
        TestProcess agent({PELLWICK_PROGRAM});
        std::this_thread::sleep_for(std::chrono::microseconds(Random(1000 * kLatestKill.count())));
        agent.Kill();
        agent.Finish();
    }
    mWorld.StartAgent();
}

Observation KilledRounds::Observe() {
    Observation seen;
    AgentConnection connection(std::chrono::seconds(30));
    const std::vector<Json> fonts = AllFonts(connection, Json::object());
    const Json states = Call(connection, method::kGetClientStates, {{"fonts", fonts}})["states"];
    for (size_t index = 0; index < fonts.size(); ++index)
        NoteFont(fonts[index], states[index]["isActive"], seen);
    const Json sets = Call(connection, method::kListSets, Json::object());
    for (const Json& set : sets["sets"]) {
        const std::string name = set[pellwick::member::kName];
        seen.ids.sets[name] = set[pellwick::member::kID];
        std::set<std::string>& members = seen.facts.sets[name];
        for (const Json& font : AllFonts(connection, {{"set", set[pellwick::member::kID]}}))
            members.insert(font[kGS_ChecksumKey]);
    }
    for (const std::string& path : mWorld.FilesBelow(kVault))
        seen.vault[platform::NamePart(path)] = path;
    for (const std::string& path : mWorld.ActiveFiles())
        seen.links.insert(platform::NamePart(path));
    return seen;
}

Observation KilledRounds::ObserveWhenSettled() {
    const auto deadline = std::chrono::steady_clock::now() + kSettlingLimit;
    for (;;) {
        Observation seen = Observe();
        const auto isThere = [&](const auto& record) {
            return record.second.isMissing != (seen.vault.count(record.second.name) != 0);
        };
        const size_t present =
            static_cast<size_t>(std::count_if(seen.files.begin(), seen.files.end(),
                                              [](const auto& record) { return !record.second.isMissing; }));
        if ((present == seen.vault.size() && std::all_of(seen.files.begin(), seen.files.end(), isThere)) ||
            std::chrono::steady_clock::now() > deadline)
            return seen;
        std::this_thread::sleep_for(milliseconds(5));
    }
}

void KilledRounds::CheckFiles(const Observation& seen) {
    std::set<std::string> recorded;
    std::set<std::string> active;
    for (const auto& [checksum, file] : seen.files) {
        if (!file.isMissing)
            recorded.insert(file.name);
        if (file.isActive)
            active.insert(file.name);
        const auto stored = seen.vault.find(file.name);
        std::string content;
        if (stored == seen.vault.end())
            Expect(file.isMissing, file.name + " is listed and not in the vault");
        else
            Expect(!platform::ReadWholeFile(stored->second, content, 1 << 20) &&
                       pellwick::test::ChecksumOf(content) == checksum,
                   file.name + " is damaged in the vault");
    }
    for (const auto& [name, path] : seen.vault) {
        Expect(recorded.count(name) != 0, path + " stands in the vault and in no record");
        if (recorded.count(name) == 0)  // the next round is not to suffer
            platform::RemoveFile(path);
    }
    for (const std::string& name : active)
        Expect(seen.links.count(name) != 0, name + " is active and not to be seen");
    for (const std::string& name : seen.links)
        Expect(active.count(name) != 0, name + " is to be seen and not active");
}

void KilledRounds::CheckClientWithoutLog(const RandomClient& client, const Observation& seen) {
    for (const auto& [checksum, facts] : client.Known().fonts) {
        const auto found = seen.files.find(checksum);
        const bool isThere = found != seen.files.end() && !found->second.isMissing;
        Expect(isThere || client.Perhaps().fonts.count(checksum) == 0,
               checksum + " was added, and went with the log");
    }
    for (const auto& [checksum, file] : seen.files) {
        if (client.Owns(checksum) && !file.isMissing)
            Expect(client.Known().fonts.count(checksum) != 0 || client.Perhaps().fonts.count(checksum) != 0,
                   checksum + " was removed, and came back with its file");
    }
}

void KilledRounds::CheckClient(RandomClient& client, const Observation& seen) {
    LibraryFacts facts = FactsOf(client, seen.facts);
    for (const std::string& finding : client.Findings())
        Expect(false, finding);
    if (mIsLogLost)
        CheckClientWithoutLog(client, seen);
    else
        Expect(facts == client.Known() || facts == client.Perhaps(),
               "was " + TextOf(client.Known()) +
                   (client.IsUncertain() ? "\n or " + TextOf(client.Perhaps()) : "") + "\nis  " +
                   TextOf(facts));
    mUncertain += client.IsUncertain() ? 1 : 0;
    mCarriedOut += client.IsUncertain() && facts == client.Perhaps() && facts != client.Known() ? 1 : 0;
    client.Restart(std::move(facts), seen.ids);
}

void KilledRounds::CheckByDoctor() {
    const ProgramResult result = mWorld.Run({"doctor", "--no-start"});
    std::istringstream lines(result.errors);
    bool isAboutMissing = mIsLogLost && result.status == 1;
    for (std::string line; std::getline(lines, line);)
        isAboutMissing = isAboutMissing && line.find("is gone from the vault") != std::string::npos;
    Expect(result.status == 0 || isAboutMissing, "doctor: " + result.errors);
}

/// Fonts whose removal went with the log.
void KilledRounds::RemoveMissing(const Observation& seen) {
    AgentConnection connection(std::chrono::seconds(30));
    for (const auto& [checksum, file] : seen.files) {
        if (!file.isMissing)
            continue;
        Expect(mIsLogLost, checksum + " is missing");
        ++mMissing;
        Call(connection, method::kRemoveFonts, {{"fonts", {seen.ids.fonts.at(checksum)}}});
    }
}

void KilledRounds::CheckAll() {
    Observation seen = ObserveWhenSettled();
    CheckFiles(seen);
    CheckByDoctor();
    for (const auto& client : mClients) {
        if (mIsLogLost)
            continue;
        CheckClient(*client, seen);
    }
    RemoveMissing(seen);
    if (!mIsLogLost)
        return;
    for (const auto& client : mClients)
        CheckClient(*client, seen);
    seen = Observe();
    mIsLogLost = false;
    CheckByDoctor();
    for (const auto& client : mClients)
        client->Restart(FactsOf(*client, seen.facts), seen.ids);
}

bool KilledRounds::RunRound(int round) {
    mFindings.clear();
    WorkUntilKilled();
    mIsLogLost = round % kRoundsPerLostLog == kRoundsPerLostLog - 1;
    if (mIsLogLost)
        LoseLog();
    StartAgent();
    CheckAll();
    return mFindings.empty();
}

int KilledRounds::Run() {
    int clean = 0;
    mWorld.StartAgent();
    for (int round = 0; round < mRounds; ++round) {
        if (RunRound(round))
            ++clean;
        for (const std::string& finding : mFindings)
            std::printf("round %d: %s\n", round, finding.c_str());
        std::fflush(stdout);
    }
    int done = 0;
    for (const auto& client : mClients)
        done += client->Done();
    std::printf(
        "%d of %d rounds clean; %d requests answered as done, %d under way when the agent was killed, of "
        "which %d had been carried out; %d starts killed, %d logs lost, after which %d fonts were back "
        "without their files (seed %u)\n",
        clean, mRounds, done, mUncertain, mCarriedOut, mKilledStarts, mLostLogs, mMissing, mSeed);
    return clean;
}
