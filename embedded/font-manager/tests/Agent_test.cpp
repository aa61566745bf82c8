// The agent and its command line, as programs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

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

TEST(CommandLine, ActivatesAndRemovesByAnyName) {
    TestWorld world;
    world.WriteFont("Sample-Bold");
    world.WriteFont("Sample-Italic");
    world.RunForJson({"add", world.Path("fonts")});
    EXPECT_EQ(world.RunForJson({"activate", "sample bold"})["fonts"].size(), 1u);
    EXPECT_EQ(world.ActiveFiles().size(), 1u);
    EXPECT_EQ(world.RunForJson({"activate", "Sample"})["fonts"].size(), 2u);
    EXPECT_EQ(world.ActiveFiles().size(), 2u);
    world.RunForJson({"deactivate", "Sample-Italic"});
    EXPECT_EQ(world.ActiveFiles().size(), 1u);
    EXPECT_EQ(world.RunForJson({"status"})["activeFiles"], 1);
    EXPECT_EQ(world.FilesBelow(kVault).size(), 2u);
    const ProgramResult unknown = world.Run({"activate", "Nowhere"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_NE(unknown.errors.find("no font is called \"Nowhere\""), std::string::npos);
    world.RunForJson({"remove", "Sample-Bold"});
    EXPECT_TRUE(world.ActiveFiles().empty());
    EXPECT_EQ(NamesOf(world.RunForJson({"list"})["fonts"]), std::vector<std::string>{"Sample-Italic"});
    EXPECT_EQ(world.FilesBelow(kVault).size(), 1u);
}

TEST(CommandLine, SaysWhatToDoWhenThereIsNoAgent) {
    TestWorld world;
    const ProgramResult result = world.Run({"status"});
    EXPECT_EQ(result.status, 5);
    EXPECT_NE(result.errors.find("no agent is running; start it with"), std::string::npos);
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1);
    EXPECT_EQ(world.Run({"list", "--no-start"}).status, 5);
    EXPECT_EQ(world.Run({"activate"}).status, 2);
    EXPECT_EQ(world.Run({"dance"}).status, 2);
    EXPECT_EQ(world.Run({"--help"}).status, 0);
}

TEST(CommandLine, ManagesWorkgroups) {
    TestWorld world;
    world.RunForJson({"workgroup", "create", "Project"});
    EXPECT_EQ(world.Run({"workgroup", "create", "Project"}).status, 1);
    world.RunForJson({"workgroup", "use", "Project"});
    world.WriteFont("Sample-Bold");
    const Json added = world.RunForJson({"add", world.Path("fonts")});
    EXPECT_EQ(added["added"][0][kGS_WorkgroupNameKey], "Project");
    world.RunForJson({"workgroup", "rename", "Project", "Done"});
    world.RunForJson({"workgroup", "delete", "Done"});
    EXPECT_EQ(world.RunForJson({"list"})["fonts"][0][kGS_WorkgroupNameKey], "Font Library (LOCALIZE ME)");
    EXPECT_EQ(world.Run({"workgroup", "delete", "System Fonts"}).status, 1);
}

int SetSize(const Json& answer) {
    return static_cast<int>(IntegerMember(answer["set"], "fontCount"));
}

TEST(CommandLine, ManagesSets) {
    TestWorld world;
    world.WriteFont("Sample-Bold");
    world.WriteFont("Sample-Italic");
    world.WriteFont("Other-Regular");
    world.RunForJson({"add", world.Path("fonts")});
    EXPECT_EQ(world.RunForJson({"set", "create", "Poster"})["set"][kGS_WorkgroupNameKey],
              "Font Library (LOCALIZE ME)");
    world.RunForJson({"workgroup", "create", "Project"});
    world.RunForJson({"set", "create", "Poster", "--workgroup", "Project"});
    EXPECT_EQ(world.RunForJson({"set", "add", "Poster", "Sample", "--workgroup", "Project"})["added"], 2);
    const ProgramResult partly = world.Run(
        {"set", "add", "Poster", "Sample-Bold", "Nowhere", "Other-Regular", "--workgroup", "Project"});
    EXPECT_EQ(partly.status, 1);
    EXPECT_NE(partly.errors.find("no font is called \"Nowhere\""), std::string::npos);
    const Json shown = world.RunForJson({"set", "show", "Poster", "--workgroup", "Project"});
    EXPECT_EQ(SetSize(shown), 3);
    EXPECT_EQ(shown["fonts"].size(), 3u);
    EXPECT_EQ(world.Run({"set", "list"}).output,
              "     0 fonts  Poster in Font Library (LOCALIZE ME)\n     3 fonts  Poster in Project\n");
    EXPECT_EQ(world.RunForJson({"set", "list", "--workgroup", "Project"})["sets"].size(), 1u);

    world.RunForJson({"remove", "Sample-Bold"});
    EXPECT_EQ(SetSize(world.RunForJson({"set", "show", "Poster", "--workgroup", "Project"})), 2);
    world.RunForJson({"workgroup", "delete", "Project"});
    EXPECT_EQ(SetSize(world.RunForJson({"set", "show", "Poster"})), 0);
    EXPECT_EQ(world.RunForJson({"list"})["fonts"].size(), 2u);
    world.RunForJson({"set", "delete", "Poster"});
    EXPECT_TRUE(world.RunForJson({"set", "list"})["sets"].empty());
}

TEST(CommandLine, SaysWhatIsWrongAboutASet) {
    TestWorld world;
    world.RunForJson({"workgroup", "create", "Project"});
    world.RunForJson({"set", "create", "Poster"});
    const auto refusal = [&](const std::vector<std::string>& arguments) {
        const ProgramResult result = world.Run(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
        return result.errors;
    };
    EXPECT_THAT(refusal({"set", "create", "Poster"}), testing::HasSubstr("already; choose another name"));
    EXPECT_THAT(refusal({"set", "create", " "}), testing::HasSubstr("give the set's name"));
    EXPECT_THAT(refusal({"set", "create", "Flyer", "--workgroup", "Nowhere"}),
                testing::HasSubstr("no workgroup \"Nowhere\""));
    EXPECT_THAT(refusal({"set", "create", "Flyer", "--workgroup", "All Fonts"}),
                testing::HasSubstr("name one of them"));
    EXPECT_THAT(refusal({"set", "create", "Flyer", "--workgroup", "System Fonts"}),
                testing::HasSubstr("choose another workgroup"));
    EXPECT_THAT(refusal({"workgroup", "create", "All Fonts"}), testing::HasSubstr("choose another name"));
    EXPECT_THAT(refusal({"set", "show", "Poster", "--workgroup", "Project"}),
                testing::HasSubstr("no set \"Poster\""));
    world.RunForJson({"set", "create", "Poster", "--workgroup", "Project"});
    EXPECT_THAT(refusal({"set", "delete", "Poster"}), testing::HasSubstr("choose one with --workgroup"));
    world.RunForJson({"logout"});
    EXPECT_THAT(refusal({"set", "create", "Flyer"}), testing::HasSubstr("nobody is logged in"));
    EXPECT_EQ(world.RunForJson({"set", "list"})["sets"].size(), 2u);
}

TEST(CommandLine, ManagesSmartLists) {
    TestWorld world;
    for (const char* name : {"Alpha-Regular", "Beta-Regular", "Gamma-Regular"})
        world.WriteFont(name);
    world.RunForJson({"add", world.Path("fonts")});
    world.RunForJson({"workgroup", "create", "Project"});
    world.RunForJson({"add", world.Path("fonts/Alpha-Regular-1.0.ttf"), "--workgroup", "Project"});
    world.RunForJson({"set", "create", "Poster"});
    world.RunForJson({"set", "add", "Poster", "Beta"});
    world.RunForJson({"smartlist", "create", "Posters", "--set", "Poster"});
    world.RunForJson({"smartlist", "create", "--workgroup", "Project", "Work", "--smartlist", "Posters"});
    world.RunForJson({"smartlist", "create", "Everything"});
    const auto fonts = [&](const char* list) {
        return NamesOf(world.RunForJson({"smartlist", "fonts", list})["fonts"]);
    };
    EXPECT_EQ(fonts("Posters"), std::vector<std::string>{"Beta-Regular"});
    EXPECT_EQ(fonts("Work"), (std::vector<std::string>{"Alpha-Regular", "Beta-Regular"}));
    EXPECT_EQ(fonts("Everything").size(), 3u);
    world.RunForJson({"set", "add", "Poster", "Gamma"});
    EXPECT_EQ(fonts("Work").size(), 3u);

    const auto refusal = [&](const std::vector<std::string>& arguments) {
        const ProgramResult result = world.Run(arguments);
        EXPECT_EQ(result.status, 1);
        return result.errors;
    };
    EXPECT_THAT(refusal({"smartlist", "rename", "Work", "Posters"}),
                testing::HasSubstr("choose another name"));
    EXPECT_THAT(refusal({"smartlist", "create", "New", "--set", "Nowhere"}), testing::HasSubstr("no set"));
    EXPECT_THAT(refusal({"smartlist", "create", "New", "--workgroup", "Nowhere"}),
                testing::HasSubstr("no workgroup"));
    EXPECT_THAT(refusal({"smartlist", "fonts", "Nowhere"}), testing::HasSubstr("no smart list \"Nowhere\""));
    world.RunForJson({"smartlist", "rename", "Work", "Project"});
    world.RunForJson({"smartlist", "delete", "Posters"});
    EXPECT_EQ(world.Run({"smartlist", "list"}).output, "Everything\nProject\n");
    EXPECT_EQ(fonts("Project"), std::vector<std::string>{"Alpha-Regular"});
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

TEST(Agent, LosesNothingWhenItIsKilled) {
    TestWorld world;
    world.StartAgent();
    world.WriteFont("Sample-Bold");
    world.RunForJson({"add", world.Path("fonts")});
    world.RunForJson({"activate", "Sample-Bold"});
    world.RunForJson({"login", "someone"});
    const auto links = world.ActiveFiles();
    world.KillAgent();
    world.Write("data/fonts/Vantorix/00/" + std::string(64, '0') + ".ttf", "stray");
    world.StartAgent();
    EXPECT_EQ(NamesOf(world.RunForJson({"list"})["fonts"]), std::vector<std::string>{"Sample-Bold"});
    EXPECT_EQ(world.RunForJson({"status"})["userName"], "someone");
    EXPECT_EQ(world.ActiveFiles(), links);
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
    RawClient half;
    half.Send(std::string("\x20\0\0\0ha", 6));  // and then nothing: it may wait for as long as it likes
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
