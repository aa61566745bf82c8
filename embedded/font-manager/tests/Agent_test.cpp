// The agent and its command line, as programs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <list>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "FontRecordKeys.h"
#include "TestFonts.h"
#include "common/Locations.h"
#include "common/Protocol.h"
#include "ipc/AgentConnection.h"
#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/Utf8Path.h"
#include "tests/support/RawClient.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

std::vector<std::string> NamesOf(const Json& fonts) {
    std::vector<std::string> names;
    for (const Json& font : fonts)
        names.push_back(StringMember(font, kGS_PostScriptNameKey));
    return names;
}

constexpr char kVault[] = "data/Vantorix/Pellwick/vault";

TEST(CommandLine, AddsWhatItCanAndNamesWhatItCannot) {
    TestWorld world;
    world.WriteFont("Sample-Bold");
    world.Write("fonts/deep/er/collection.ttc", MakeTestFontCollection({{"One", "One"}, {"Two", "Two"}}));
    world.Write("fonts/LICENCE.txt", "Do as you please.");
    const std::string damaged = world.Write("fonts/damaged.ttf", MakeTestFont({"X", "X"}).substr(0, 300));
    const ProgramResult result = world.Run({"add", "--json", world.Path("fonts"), world.Path("absent.ttf")});
    EXPECT_EQ(result.status, 1);
    const Json answer = Json::parse(result.output);
    EXPECT_EQ(NamesOf(answer["added"]), (std::vector<std::string>{"Sample-Bold", "One", "Two"}));
    EXPECT_EQ(answer["skipped"], 1);
    ASSERT_EQ(answer["failed"].size(), 2u);
    EXPECT_EQ(answer["failed"][0], (Json{{"path", damaged}, {"reason", "damaged font file"}}));
    EXPECT_EQ(answer["failed"][1]["path"], world.Path("absent.ttf"));
    EXPECT_NE(result.errors.find(damaged + ": damaged font file"), std::string::npos);

    const Json again = world.RunForJson({"add", world.Path("fonts/Sample-Bold-1.0.ttf")});
    EXPECT_TRUE(again["added"].empty());
    EXPECT_EQ(NamesOf(again["alreadyKnown"]), std::vector<std::string>{"Sample-Bold"});
    EXPECT_EQ(world.RunForJson({"list"})["fonts"].size(), 3u);
}

/// A command line, with "|" between its words; the status, and what is said, in the output or in one line of
/// errors.
struct Step {
    const char* words;
    int status;
    const char* said;
};

constexpr Step kSteps[] = {
    {"status", 5, "no agent is running; start it with"},
    {"list|--no-start", 5, "no agent is running"},
    {"activate", 2, ""},
    {"dance", 2, ""},
    {"--help", 0, "workgroup"},
    {"workgroup|create|Project", 0, ""},
    {"workgroup|create|Project", 1, "already; choose another name"},
    {"workgroup|create|All Fonts", 1, "choose another name"},
    {"workgroup|delete|System Fonts", 1, "always stays as it is"},
    {"workgroup|use|Project", 0, ""},
    {"workgroup|list", 0, "*    3  Project\n"},
    {"add|FONTS/Sample-Bold-1.0.ttf|FONTS/Sample-Italic-1.0.ttf", 0,
     "added Sample-Bold\nadded Sample-Italic\n"},
    {"add|FONTS/Other-Regular-1.0.ttf|--workgroup|Font Library (LOCALIZE ME)", 0, "added Other-Regular\n"},
    {"add|FONTS/Other-Regular-1.0.ttf|--workgroup|System Fonts", 1, "always stays as it is"},
    {"activate|sample bold", 0, "activated Sample-Bold\n"},
    {"activate|Sample", 0, "activated Sample-Bold\nactivated Sample-Italic\n"},
    {"deactivate|2", 0, "deactivated Sample-Italic\n"},
    {"activate|Nowhere", 1, "no font is called \"Nowhere\""},
    {"list", 0, "     1  active   Sample-Bold"},
    {"list", 0, "     2  -        Sample-Italic                             Sample, Italic (TrueType)\n"},
    {"status", 0, "fonts       3, 1 files active\n"},
    {"set|create|Poster", 0, "created Poster in Project\n"},
    {"set|create|Poster", 1, "already; choose another name"},
    {"set|create| ", 1, "give the set's name"},
    {"set|create|Flyer|--workgroup|Nowhere", 1, "no workgroup \"Nowhere\""},
    {"set|create|Flyer|--workgroup|All Fonts", 1, "name one of them"},
    {"set|create|Flyer|--workgroup|System Fonts", 1, "choose another workgroup"},
    {"set|show|Poster|--workgroup|Font Library (LOCALIZE ME)", 1, "no set \"Poster\""},
    {"set|create|Poster|--workgroup|Font Library (LOCALIZE ME)", 0, ""},
    {"set|delete|Poster", 1, "choose one with --workgroup"},
    {"set|add|Poster|Sample|--workgroup|Project", 0, "added Sample-Bold\nadded Sample-Italic\n"},
    {"set|add|Poster|Sample-Bold|Nowhere|Other|--workgroup|Project", 1, "no font is called \"Nowhere\""},
    {"set|list", 0, "     0 fonts  Poster in Font Library (LOCALIZE ME)\n     3 fonts  Poster in Project\n"},
    {"set|list|--workgroup|Project|--json", 0, "\"fontCount\":3"},
    {"smartlist|create|Posters|--set|Poster", 1, "choose one with --workgroup"},
    {"set|delete|Poster|--workgroup|Font Library (LOCALIZE ME)", 0, ""},
    {"smartlist|create|Posters|--set|Poster", 0, "created Posters\n"},
    {"smartlist|create|--workgroup|Project|Work|--smartlist|Posters", 0, "created Work\n"},
    {"smartlist|create|Work", 1, "choose another name"},
    {"smartlist|create|New|--workgroup|Nowhere", 1, "no workgroup"},
    {"smartlist|fonts|Work", 0, "Other-Regular"},
    {"smartlist|fonts|Nowhere", 1, "no smart list \"Nowhere\""},
    {"smartlist|rename|Work|Posters", 1, "choose another name"},
    {"smartlist|rename|Work|Bills", 0, "renamed Work to Bills\n"},
    {"smartlist|delete|Posters", 0, "deleted Posters"},
    {"smartlist|list", 0, "Bills\n"},
    {"remove|Sample-Bold", 0, "removed Sample-Bold\n"},
    {"set|show|Poster|--json", 0, "\"fontCount\":2"},
    {"workgroup|rename|Project|Done", 0, ""},
    {"workgroup|delete|Done", 0, ""},
    {"set|list|--json", 0, "\"sets\":[]"},
    {"list|--json", 0, "\"WorkgroupName\":\"Font Library (LOCALIZE ME)\""},
    {"list|--visible", 0, ""},
    {"standalone|off", 0, ""},
    {"logout", 0, ""},
    {"set|create|Flyer", 1, "nobody is logged in"},
    {"activate|Other", 1, "nobody is logged in"},
    {"login|somebody", 0, ""},
    {"status", 0, "user        somebody\n"},
    {"status", 0, ", with a server\n"},
    {"doctor", 0, "2 fonts in 2 files, all as they should be\n"},
    {"stop", 0, ""},
};

TEST(CommandLine, DoesWhatItIsToldAndSaysInALineWhatItCannot) {
    TestWorld world;
    for (const char* name : {"Sample-Bold", "Sample-Italic", "Other-Regular"})
        world.WriteFont(name);
    for (const Step& step : kSteps) {
        std::istringstream line(step.words);
        std::vector<std::string> words;
        for (std::string word; std::getline(line, word, '|');)
            words.push_back(word.starts_with("FONTS") ? world.Path("fonts" + word.substr(5)) : word);
        const ProgramResult result = world.Run(words);
        EXPECT_EQ(result.status, step.status) << step.words << ": " << result.errors;
        EXPECT_THAT(result.output + result.errors, testing::HasSubstr(step.said)) << step.words;
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), step.status != 0 ? 1 : 0)
            << result.errors;
    }
    EXPECT_TRUE(world.ActiveFiles().empty());
    EXPECT_EQ(world.FilesBelow(kVault).size(), 2u);
}

TEST(CommandLine, TellsPluginsHowToStartTheAgent) {
    TestWorld world;
    const std::string file = world.RunForJson({"launch-info"})["file"];
    std::string content;
    ASSERT_FALSE(platform::ReadWholeFile(file, content, 10000));
    EXPECT_EQ(file, world.Path("data/Vantorix/com.vantorix.Pellwick-LaunchInfo.conf"));
    EXPECT_EQ(content, std::string("pellwick.path=") + platform::FullPath(PELLWICK_PROGRAM) +
                           "\npellwick.args=serve\n");
}

TEST(Agent, RunsOncePerUserAndEndsInOrder) {
    TestWorld world;
    world.StartAgent();
    const ProgramResult second = world.Run({"serve"});
    EXPECT_EQ(second.status, 1);
    EXPECT_NE(second.errors.find("an agent runs already"), std::string::npos);
    world.StopAgent();
    EXPECT_EQ(world.Run({"status"}).status, 5);
    EXPECT_TRUE(Locations::OfThisUser().AgentAddress().empty());
    world.StartAgent();
}

TEST(Agent, IsStoppedThoughItsAddressLeadsNowhere) {
    TestWorld world;
    world.StartAgent();
    for (const char* address : {"", "nowhere"}) {
        world.Write("data/Vantorix/Pellwick/agent.address", address);
        EXPECT_EQ(world.RunForJson({"stop", "--no-start"})["process"], world.AgentProcess());
        world.WaitForAgentToEnd();
        EXPECT_THAT(world.Run({"stop"}).errors, testing::HasSubstr("no agent is running"));
        world.StartAgent();
    }
}

std::string AgentLog() {
    std::string log;
    platform::ReadWholeFile(Locations::OfThisUser().logFolder + "/Pellwick.log", log, 1 << 20);
    return log;
}

TEST(Agent, TakesBackFontsThatNoRecordKnowsAndNothingElse) {
    TestWorld world;
    world.StartAgent();
    world.WriteFont("Sample-Bold");
    world.WriteFont("Sample-Italic");
    world.RunForJson({"add", world.Path("fonts")});
    world.RunForJson({"remove", "Sample-Italic"});
    world.KillAgent();
    // What a loss of power may leave of the database's log: nothing.
    const Locations locations = Locations::OfThisUser();
    for (const char* end : {"-wal", "-shm"})
        std::filesystem::remove(platform::Utf8Path(locations.databasePath + end));
    const std::string shard = "data/Vantorix/Pellwick/vault/00/";
    const std::string damaged = world.Write(shard + std::string(64, '0') + ".ttf", "not what its name says");
    const std::string half = world.Write(shard + std::string(64, '0') + ".ttf.a1B2c3", "cut off");
    world.StartAgent();
    EXPECT_TRUE(Eventually([&] {
        return NamesOf(world.RunForJson({"list"})["fonts"]) == std::vector<std::string>{"Sample-Bold"};
    }));
    EXPECT_EQ(world.Run({"activate", "Sample-Bold"}).status, 0);
    EXPECT_TRUE(Eventually([&] { return !platform::IsExistingFile(damaged); }));
    EXPECT_EQ(world.FilesBelow("data/Vantorix/Pellwick/vault/damaged").size(), 1u);
    EXPECT_FALSE(platform::IsExistingFile(half));
    EXPECT_THAT(AgentLog(), testing::AllOf(testing::HasSubstr("2 files of the vault stand in no record"),
                                           testing::HasSubstr("damaged, and was put into")));

    // Nor does the loss of all of it lose a font.
    world.StopAgent();
    std::filesystem::remove(platform::Utf8Path(locations.databasePath));
    world.StartAgent();
    EXPECT_TRUE(Eventually([&] { return world.Run({"activate", "Sample-Bold"}).status == 0; }));
}

TEST(Agent, NoticesAFontOfOtherBytesAndHealsItWhenItIsAddedAgain) {
    TestWorld world;
    world.StartAgent();
    const std::string font = world.WriteFont("Sample-Bold");
    world.RunForJson({"add", font});
    world.RunForJson({"activate", "Sample-Bold"});
    const auto damage = [&] {
        const std::string file = world.FilesBelow("data/Vantorix/Pellwick/vault").at(0);
        std::string content;
        ASSERT_FALSE(platform::ReadWholeFile(file, content, 1 << 20));
        content.back() = static_cast<char>(~content.back());
        std::filesystem::permissions(platform::Utf8Path(file), std::filesystem::perms::owner_all);
        std::ofstream(platform::Utf8Path(file), std::ios::binary | std::ios::in) << content;
    };
    const auto contentOf = [](const std::string& file) {
        std::string content;
        EXPECT_FALSE(platform::ReadWholeFile(file, content, 1 << 20));
        return content;
    };
    damage();
    EXPECT_EQ(world.RunForJson({"add", font})["alreadyKnown"].size(), 1u);
    EXPECT_EQ(contentOf(world.FilesBelow("data/Vantorix/Pellwick/vault").at(0)), contentOf(font));
    for (const std::string& active : world.ActiveFiles())
        EXPECT_EQ(contentOf(active), contentOf(font));
    EXPECT_EQ(world.Run({"doctor"}).status, 0);

    damage();
    const ProgramResult result = world.Run({"doctor"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, testing::HasSubstr("is damaged, and was put into"));
    EXPECT_TRUE(world.ActiveFiles().empty());
    EXPECT_EQ(world.Run({"activate", "Sample-Bold"}).status, 1);
    world.RunForJson({"add", font});
    EXPECT_EQ(world.Run({"activate", "Sample-Bold"}).status, 0);
}

TEST(Agent, AFontWhoseFileIsGoneIsMissingUntilItIsAddedAgain) {
    TestWorld world;
    world.StartAgent();
    const std::string font = world.WriteFont("Sample-Bold");
    world.RunForJson({"add", font});
    const auto state = [&] { return world.RunForJson({"list"})["fonts"][0]["ActivationStatus"].get<int>(); };
    world.EmptyVault();
    EXPECT_EQ(world.Run({"activate", "Sample-Bold"}).status, 1);
    EXPECT_EQ(state(), kFontActivationState_Missing);
    world.RunForJson({"add", font});
    EXPECT_EQ(state(), kFontActivationState_Inactive);
    EXPECT_EQ(world.Run({"activate", "Sample-Bold"}).status, 0);
    EXPECT_EQ(world.Run({"add", font, "--workgroup", "System Fonts"}).status, 1);
    world.StopAgent();
    world.EmptyVault();
    world.StartAgent();
    EXPECT_EQ(state(), kFontActivationState_Missing);
}

TEST(Agent, WorksInFoldersOfAnyNameAndLength) {
    TestWorld world("Ein Ordner \u0448\u0440\u0438\u0444\u0442 \u5b57\u4f53 \U0001F600 " +
                    std::string(100, 'x'));
    world.StartAgent();
    world.WriteFont("Sample-Bold");
    EXPECT_EQ(NamesOf(world.RunForJson({"add", world.Path("fonts")})["added"]),
              std::vector<std::string>{"Sample-Bold"});
    world.RunForJson({"activate", "Sample-Bold"});
    EXPECT_EQ(world.ActiveFiles().size(), 1u);
    world.StopAgent();
}

TEST(Agent, ClosesTheConnectionOfAClientThatTalksNonsenseAndNoOther) {
    TestWorld world;
    world.StartAgent();
    AgentConnection good(std::chrono::seconds(30));
    Json result;
    ASSERT_EQ(good.Call("GetStatus", Json::object(), result), CoreErrorCodes::kSuccess);
    for (const std::string& nonsense :
         {std::string("\xFF\xFF\xFF\xFF", 4), std::string("\4\0\0\0junk", 8),
          std::string("GET / HTTP/1.1\r\n\r\n"), std::string("\1\0\0\0\x90", 5)}) {
        RawClient bad;
        bad.Send(nonsense);
        EXPECT_TRUE(bad.IsClosedByAgent());
    }
    // Hundreds at once, with noise of a fixed seed. Requests of any content are tried by a fuzz target.
    std::mt19937 random{20261121};
    const std::string request = *EncodeMessage(
        {{"id", 1}, {"method", "ListFonts"}, {"args", {{"after", 0}, {"fonts", {1, "x", nullptr}}}}});
    std::list<RawClient> clients(500);
    for (RawClient& client : clients) {
        std::string burst = request + request;
        for (size_t change = 0; change < 4; ++change)
            burst[random() % burst.size()] = static_cast<char>(random());
        client.Send(burst + std::string("\x20\0\0\0ha", 6));  // and half a frame, for which it may wait long
    }
    EXPECT_EQ(good.Call("GetStatus", Json::object(), result), CoreErrorCodes::kSuccess);
    EXPECT_EQ(good.Call("Hello", {{"protocol", 999}}, result), CoreErrorCodes::kVersionMismatch);
    EXPECT_EQ(good.Call("Dance", Json::object(), result), CoreErrorCodes::kNotImplemented);
    EXPECT_EQ(good.Call("GetFont", {{"font", "x"}}, result), CoreErrorCodes::kNotFound);
}

TEST(Agent, TakesNoNumberForAnother) {
    TestWorld world;
    world.RunForJson({"add", world.WriteFont("Sample-Bold")});
    constexpr int64_t kRound = int64_t{1} << 32;
    AgentConnection client(std::chrono::seconds(30));
    Json result;
    EXPECT_EQ(client.Call("GetFont", {{"font", kRound + 1}}, result), CoreErrorCodes::kNotFound);
    for (const int64_t workgroup : {kRound, kRound + 1, int64_t{-1}}) {
        ASSERT_EQ(
            client.Call("FindByPostScriptName", {{"name", "Sample-Bold"}, {"workgroup", workgroup}}, result),
            CoreErrorCodes::kSuccess);
        EXPECT_TRUE(result["fonts"].empty()) << workgroup;
    }
    for (const auto& [after, count] : std::map<int64_t, size_t>{{-1, 1}, {kRound, 0}}) {
        ASSERT_EQ(client.Call("ListFonts", {{"after", after}}, result), CoreErrorCodes::kSuccess);
        EXPECT_EQ(result["fonts"].size(), count) << after;
    }
    // The sanitizers see the number after the largest one.
    const Json greeting = {{"protocol", int{kProtocolVersion}}, {"taken", INT64_MAX}};
    EXPECT_EQ(client.Call("Hello", greeting, result), CoreErrorCodes::kSuccess);
    EXPECT_EQ(client.Call("ActivateFonts", {{"fonts", {1}}}, result), CoreErrorCodes::kSuccess);
}

TEST(Agent, DropsASubscriberThatDoesNotRead) {
    TestWorld world;
    world.StartAgent();
    AgentConnection deaf(std::chrono::seconds(30));
    AgentConnection good(std::chrono::seconds(30));
    Json result;
    ASSERT_EQ(deaf.Call("Subscribe", Json::object(), result), CoreErrorCodes::kSuccess);
    // Answers of 1 MiB: 64 of them are more than may wait for one client.
    RawClient greedy;
    ASSERT_EQ(good.Call("WriteFontUsage", {{"path", "/d"}, {"usage", std::string(1 << 20, 'x')}}, result),
              CoreErrorCodes::kSuccess);
    std::string requests;
    for (int id = 1; id <= 64; ++id)
        requests += *EncodeMessage({{"id", id}, {"method", "GetFontUsage"}, {"args", {{"path", "/d"}}}});
    greedy.Send(requests);
    EXPECT_TRUE(Eventually(
        [&] { return AgentLog().find("dropped a client that does not read") != std::string::npos; }));
    EXPECT_EQ(good.Call("LogIn", {{"name", "me"}}, result), CoreErrorCodes::kSuccess);
}

}  // namespace
}  // namespace pellwick::test
