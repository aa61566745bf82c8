#include <algorithm>
#include <fstream>
#include <list>
#include <random>
#include <sstream>

#include "TestFiles.h"
#include "TestFonts.h"
#include "platform/Folders.h"
#include "store/Database.h"
#include "tests/support/AgentTest.h"

namespace pellwick::test {
namespace {

using namespace std::string_literals;
using Names = std::vector<std::string>;

TEST(CommandLine, AddsWhatItCanAndNamesWhatItCannot) {
    TestWorld world;
    world.WriteFont("Sample-Bold");
    world.Write("fonts/deep/er/collection.ttc", MakeTestFontCollection({{"One", "One"}, {"Two", "Two"}}));
    world.Write("fonts/LICENCE.txt", "Do as you please.");
    const std::string damaged = world.Write("fonts/damaged.ttf", MakeTestFont({"X", "X"}).substr(0, 300));
    const ProgramResult result = world.Run({"add", "--json", world.Path("fonts"), world.Path("absent.ttf")});
    EXPECT_EQ(result.status, 1);
    const Json answer = Json::parse(result.output);
    EXPECT_EQ(NamesOf(answer["added"]), (Names{"Sample-Bold", "One", "Two"}));
    EXPECT_EQ(answer["skipped"], 1);
    ASSERT_EQ(answer["failed"].size(), 2u);
    EXPECT_EQ(answer["failed"][0], (Json{{"path", damaged}, {"reason", "damaged font file"}}));
    EXPECT_EQ(answer["failed"][1]["path"], world.Path("absent.ttf"));
    EXPECT_THAT(result.errors, HasSubstr(damaged + ": damaged font file"));
    const Json again = world.RunForJson({"add", world.Path("fonts/Sample-Bold-1.0.ttf")});
    EXPECT_TRUE(again["added"].empty());
    EXPECT_EQ(NamesOf(again["alreadyKnown"]), Names{"Sample-Bold"});

    const fs::path folder = platform::Utf8Path(world.Path("fonts"));
    std::error_code noLinks;
    fs::create_directory_symlink(folder, folder / "circle", noLinks);
    if (!noLinks) {
        fs::create_symlink(folder / "gone", folder / "broken");
        EXPECT_THAT(world.Run({"add", world.Path("fonts")}).output,
                    testing::AllOf(HasSubstr("circle: a link to a folder"),
                                   HasSubstr("broken: a link that leads"), HasSubstr("1 other files left")));
    }
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
    {"set|create|First", 0, ""},  // starts one
    {"set|delete|First", 0, ""},
    {"stop", 0, ""},
    {"workgroup|create|Project", 0, ""},
    {"workgroup|create|Project", 1, "already; choose another name"},
    {"smartlist|create| \xC2\xA0", 1, "give the"},
    {"workgroup|delete|System Fonts", 1, "always stays as it is"},
    {"workgroup|use|Project", 0, ""},
    {"workgroup|list", 0, "*    3  Project\n"},
    {"add|FONTS/Sample-Bold-1.0.ttf|FONTS/Sample-Italic-1.0.ttf", 0,
     "added Sample-Bold\nadded Sample-Italic\n"},
    {"add|FONTS/Other-Regular-1.0.ttf|--workgroup|Font Library (LOCALIZE ME)", 0, "added Other-Regular\n"},
    {"activate|sample bold", 0, "activated Sample-Bold\n"},
    {"activate|Sample", 0, "activated Sample-Bold\nactivated Sample-Italic\n"},
    {"deactivate|2", 0, "deactivated Sample-Italic\n"},
    {"activate|Nowhere", 1, "no font is called \"Nowhere\""},
    {"list", 0, "1      active  Sample-Bold"},
    {"list", 0, "2      -       Sample-Italic                    Sample, Italic (TrueType)\n"},
    {"status", 0, "fonts       3, 1 files active; 0 of the system\n"},
    {"set|create|Poster", 0, "created Poster in Project\n"},
    {"set|create|Flyer|--workgroup|Nowhere", 1, "no workgroup \"Nowhere\""},
    {"set|create|Poster|--workgroup|Font Library (LOCALIZE ME)", 0, ""},
    {"set|delete|Poster", 1, "choose one with --workgroup"},
    {"set|add|Poster|Sample|--workgroup|Project", 0, "added Sample-Bold\nadded Sample-Italic\n"},
    {"set|add|Poster|Sample-Bold|Nowhere|Other|--workgroup|Project", 1, "no font is called \"Nowhere\""},
    {"set|list", 0, "     0 fonts  Poster in Font Library (LOCALIZE ME)\n     3 fonts  Poster in Project\n"},
    {"set|delete|Poster|--workgroup|Font Library (LOCALIZE ME)", 0, ""},
    {"smartlist|create|Posters|--set|Poster", 0, "created Posters\n"},
    {"smartlist|create|--workgroup|Project|Work|--smartlist|Posters", 0, "created Work\n"},
    {"smartlist|fonts|Work", 0, "Other-Regular"},
    {"smartlist|rename|Work|Posters", 1, "choose another name"},
    {"smartlist|rename|Work|Bills", 0, "renamed Work to Bills\n"},
    {"remove|Sample-Bold", 0, "removed Sample-Bold\n"},
    {"set|show|Poster|--json", 0, "\"fontCount\":2"},
    {"workgroup|rename|Project|Done", 0, ""},
    {"workgroup|delete|Done", 0, ""},
    {"set|list|--json", 0, "\"sets\":[]"},
    {"list|--json", 0, "\"WorkgroupName\":\"Font Library (LOCALIZE ME)\""},
    {"standalone|off", 0, ""},
    {"logout", 0, ""},
    {"activate|Other", 1, "nobody is logged in"},
    {"login|somebody", 0, ""},
    {"status", 0, "user        somebody\n"},
    {"status", 0, ", with a server\n"},
    {"doctor", 0, "ok      files: 2 fonts in 2 files were compared"},
    {"doctor", 0, "plug-ins cannot start the agent by themselves"},
    {"launch-info", 0, ""},
    {"doctor", 0, "ok      launch-info: "},
};

TEST(CommandLine, DoesWhatItIsToldAndSaysInALineWhatItCannot) {
    TestWorld world;
    for (const char* name : {"Sample-Bold", "Sample-Italic", "Other-Regular"})
        world.WriteFont(name);
    for (const Step& step : kSteps) {
        std::istringstream line(step.words);
        Names words;
        for (std::string word; std::getline(line, word, '|');)
            words.push_back(word.starts_with("FONTS") ? world.Path("fonts" + word.substr(5)) : word);
        const ProgramResult result = world.Run(words);
        EXPECT_EQ(result.status, step.status) << step.words << ": " << result.errors;
        EXPECT_THAT(result.output + result.errors, HasSubstr(step.said)) << step.words;
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), step.status != 0 ? 1 : 0)
            << result.errors;
    }
    EXPECT_TRUE(world.ActiveFiles().empty());
    EXPECT_EQ(world.Run({"stop"}).status, 0);
    EXPECT_EQ(world.VaultFiles().size(), 2u);
}

using Agent = AgentTest;

TEST_F(Agent, RemovalOfMoreThanOneFontIsConfirmedFirst) {
    const std::string both = mWorld.Write("Both.ttc", MakeTestFontCollection({{"A", "A"}, {"B", "B"}}));
    ASSERT_EQ(Run({"add", both, mWorld.WriteFont("C-Regular")}), 0);
    const ProgramResult refused = mWorld.Run({"remove", "A"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("2 fonts: A, B; to have that done, add --yes"));
    EXPECT_EQ(Fonts().size(), 3u);
    EXPECT_EQ(Run({"remove", "C-Regular"}), 0) << "one is what was asked for";
    EXPECT_EQ(Run({"remove", "--yes", "A"}), 0);
    EXPECT_TRUE(mWorld.VaultFiles().empty());
}

TEST_F(Agent, StatusBeginsWithWhatKeepsDocumentsFromTheirFonts) {
    const auto expectStatus = [this](const char* beginning) {
        EXPECT_THAT(mWorld.Run({"status"}).output, testing::StartsWith(beginning));
    };
    expectStatus("! there are no fonts yet; ");
    Add("One-Regular");
    expectStatus("agent ");
    mWorld.EmptyVault();
    Run({"doctor"});
    expectStatus("! 1 font files are gone or damaged; ");
    Run({"logout"});
    expectStatus("! nobody is logged in");
}

TEST_F(Agent, RunsOncePerUserEndsInOrderAndIsStoppedThoughItsAddressLeadsNowhere) {
    const ProgramResult second = mWorld.Run({"serve"});
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.errors, HasSubstr("an agent runs already"));
    mWorld.StopAgent();
    EXPECT_TRUE(mPlaces.AgentAddress().empty());
    for (const char* address : {"", "nowhere"}) {
        mWorld.StartAgent();
        platform::WriteWholeFile(mPlaces.addressPath, address);
        EXPECT_EQ(mWorld.RunForJson({"stop", "--no-start"})["process"], mWorld.AgentProcess());
        mWorld.WaitForAgentToEnd();
        EXPECT_THAT(mWorld.Run({"stop"}).errors, HasSubstr("no agent is running"));
    }
}

TEST_F(Agent, TakesBackFontsThatNoRecordKnowsAndNothingElse) {
    Add("Sample-Bold");
    Add("Sample-Italic");
    Run({"remove", "Sample-Italic"});
    mWorld.KillAgent();
    // What a loss of power may leave of the database's log: nothing.
    for (const char* end : {"-wal", "-shm"})
        fs::remove(platform::Utf8Path(mPlaces.databasePath + end));
    const std::string name = "data/Vantorix/Pellwick/vault/00/" + std::string(64, '0') + ".ttf";
    const std::string damaged = mWorld.Write(name, "not what its name says");
    const std::string half = mWorld.Write(name + ".a1B2c3", "cut off");
    mWorld.StartAgent();
    EXPECT_TRUE(Eventually([&] { return NamesOf(Fonts()) == Names{"Sample-Bold"}; }));
    EXPECT_EQ(Run({"activate", "Sample-Bold"}), 0);
    EXPECT_TRUE(Eventually([&] { return !platform::IsExistingFile(damaged); }));
    EXPECT_EQ(mWorld.FilesBelow("data/Vantorix/Pellwick/vault/damaged").size(), 1u);
    EXPECT_FALSE(platform::IsExistingFile(half));
    EXPECT_THAT(mWorld.AgentLog(), HasSubstr("vault put right: 1 removed that interrupted commands left"));
    EXPECT_THAT(mWorld.AgentLog(), HasSubstr("2 files of the vault stand in no record"));
    EXPECT_THAT(mWorld.AgentLog(), HasSubstr("damaged, and was put into"));

    // Nor does the loss of all of it lose a font.
    mWorld.StopAgent();
    fs::remove(platform::Utf8Path(mPlaces.databasePath));
    mWorld.StartAgent();
    EXPECT_TRUE(Eventually([&] { return Run({"activate", "Sample-Bold"}) == 0; }));
}

TEST_F(Agent, NoticesAFontOfOtherBytesOrNoneAndHealsItWhenItIsAddedAgain) {
    const std::string font = Add("Sample-Bold");
    const auto state = [&] { return Fonts()[0][kGS_ActivationStateKey].get<int>(); };
    const auto damage = [&] {
        const std::string file = mWorld.VaultFiles().at(0);
        std::string content = ContentOf(file);
        content.back() = static_cast<char>(~content.back());
        fs::permissions(platform::Utf8Path(file), fs::perms::owner_all);
        std::ofstream(platform::Utf8Path(file), std::ios::binary | std::ios::in) << content;
    };
    Run({"activate", "Sample-Bold"});
    damage();
    EXPECT_EQ(mWorld.RunForJson({"add", font})["alreadyKnown"].size(), 1u);
    EXPECT_EQ(ContentOf(mWorld.VaultFiles().at(0)), ContentOf(font));
    EXPECT_EQ(ContentOf(mWorld.ActiveFiles().at(0)), ContentOf(font));
    EXPECT_EQ(Run({"doctor"}), 0);
    damage();
    EXPECT_THAT(mWorld.Run({"doctor"}).output, HasSubstr("is damaged, and was put into"));
    EXPECT_TRUE(mWorld.ActiveFiles().empty());
    EXPECT_EQ(Run({"activate", "Sample-Bold"}), 1);
    Run({"add", font});
    mWorld.StopAgent();
    mWorld.EmptyVault();
    mWorld.StartAgent();
    EXPECT_EQ(state(), kFontActivationState_Missing);
    EXPECT_EQ(Run({"add", font, "--workgroup", "System Fonts"}), 1);
    for (const char* word : {"active", "in use", "missing", "system", "-"})
        EXPECT_EQ(Run({"list", "--state", word}), 0) << word;
    Run({"add", font});
    Run({"activate", "Sample-Bold"});
    const fs::path file = platform::Utf8Path(mWorld.VaultFiles().at(0));
    mWorld.StopAgent();
    fs::rename(file, fs::path(file).replace_extension(".otf"));
    mWorld.StartAgent();
    EXPECT_TRUE(Eventually([&] { return state() == kFontActivationState_ActivatedByUser; }));
    EXPECT_EQ(platform::Utf8Path(mWorld.VaultFiles().at(0)), file);
}

TEST_F(Agent, ClosesTheConnectionOfAClientThatTalksNonsenseAndNoOther) {
    GoodClient good;
    for (const std::string& nonsense : {"\xFF\xFF\xFF\xFF"s, "\4\0\0\0junk"s, "GET / HTTP/1.1\r\n\r\n"s}) {
        RawClient bad;
        bad.Write(nonsense);
        EXPECT_TRUE(bad.IsClosedByAgent());
    }
    // Hundreds at once, with noise of a fixed seed. Requests of any content are tried by a fuzz target.
    std::mt19937 random{20261121};
    const std::string request =
        *EncodeMessage({{"id", 1}, {"method", "ListFonts"}, {"args", {{"after", 0}}}});
    std::list<RawClient> clients(500);
    for (RawClient& client : clients) {
        std::string burst = request + request;
        for (size_t change = 0; change < 4; ++change)
            burst[random() % burst.size()] = static_cast<char>(random());
        client.Write(burst + "\x20\0\0\0ha"s);  // and half a frame, for which it may wait long
    }
    good.ExpectToBeServed();
    for (const auto& [method, code] : {std::pair{"Hello", CoreErrorCodes::kVersionMismatch},
                                       {"Dance", CoreErrorCodes::kNotImplemented},
                                       {"GetFont", CoreErrorCodes::kNotFound}})
        EXPECT_EQ(good.Call(method, {{"protocol", 999}, {"font", "x"}}), code);
}

TEST_F(Agent, TakesNoNumberForAnother) {
    Add("Sample-Bold");
    constexpr int64_t kRound = int64_t{1} << 32;
    GoodClient client;
    EXPECT_EQ(client.Call("GetFont", {{"font", kRound + 1}}), CoreErrorCodes::kNotFound);
    const std::tuple<const char*, Json, size_t> lists[] = {
        {"FindByPostScriptName", {{"name", "Sample-Bold"}, {"workgroup", kRound + 1}}, 0},
        {"FindByPostScriptName", {{"name", "Sample-Bold"}, {"workgroup", -1}}, 0},
        {"ListFonts", {{"after", -1}}, 1},
        {"ListFonts", {{"after", kRound}}, 0}};
    for (const auto& [method, arguments, count] : lists) {
        EXPECT_EQ(client.Call(method, arguments), 0u);
        EXPECT_EQ(client.result["fonts"].size(), count) << arguments;
    }
    // The sanitizers see the number after the largest one.
    EXPECT_EQ(client.Call("Hello", {{"protocol", int{kProtocolVersion}}, {"taken", INT64_MAX}}), 0u);
    EXPECT_EQ(client.Call("ActivateFonts", {{"fonts", {1}}}), 0u);
}

TEST_F(Agent, FollowsWhatTheAgentOfAnotherSessionRecords) {
    Add("Sample-Bold");
    const auto hasActiveFiles = [&](size_t count) {
        return Eventually([&] { return mWorld.ActiveFiles().size() == count; });
    };
    Database database(mPlaces.databasePath);
    database.Execute("INSERT INTO user_activations VALUES (1)");
    EXPECT_TRUE(hasActiveFiles(1));
    database.Execute("DELETE FROM user_activations");
    EXPECT_TRUE(hasActiveFiles(0));
}

TEST_F(Agent, DropsASubscriberThatDoesNotRead) {
    GoodClient deaf;
    GoodClient good;
    EXPECT_EQ(deaf.Call("Subscribe", Json::object()), 0u);
    // Answers of 1 MiB: 64 of them are more than may wait for one client.
    EXPECT_EQ(good.Call("WriteFontUsage", {{"path", "/d"}, {"usage", std::string(1 << 20, 'x')}}), 0u);
    RawClient greedy;
    std::string requests;
    for (int id = 1; id <= 64; ++id)
        requests += *EncodeMessage({{"id", id}, {"method", "GetFontUsage"}, {"args", {{"path", "/d"}}}});
    greedy.Write(requests);
    EXPECT_TRUE(Eventually(
        [&] { return mWorld.AgentLog().find("dropped a client that does not read") != std::string::npos; }));
    EXPECT_EQ(good.Call("LogIn", {{"name", "me"}}), 0u);
}

}  // namespace
}  // namespace pellwick::test
