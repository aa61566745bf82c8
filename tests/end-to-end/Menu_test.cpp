// The plug-in menu and the dialogs about fonts, with the real font manager and framework behind them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "HostWorld.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class MenuTest : public testing::Test {
protected:
    MenuTest() {
        world.AddFonts({"Sample-Bold", "Sample-Italic", "Other-Regular"});
        platform::SetEnvironment("PLUGINCORE_ANSWERS_LOG", world.Path("asked"));
    }
    ~MenuTest() override { platform::SetEnvironment("PLUGINCORE_ANSWERS_LOG", ""); }

    /// Opens the document in a host whose user answers like that; what the host was told.
    json Open(const std::string& path, const json& answers = json::array()) {
        const std::string file = world.Path("answers.json");
        std::ofstream(platform::Utf8Path(file)) << answers;
        platform::SetEnvironment("PLUGINCORE_ANSWERS", file);
        host.emplace();
        host->Start();
        document = path;
        return host->Call("HandleOpenExistingDocument", {{"path", document}});
    }
    void Choose(const std::string& label) {
        const json menu{{"items", {{{"id", "it"}, {"label", label}}}}};
        const json answer = host->Call("HandleMenuSelection",
                                       {{"document", document}, {"menusJSON", menu}, {"selectedID", "it"}});
        EXPECT_EQ(answer["code"], 0);
    }
    json Resolve(bool onlyIfResolvable, const json& fonts) {
        return host->Call("InvokeResolveDialog",
                          {{"onlyIfResolvable", onlyIfResolvable}, {"fontsJSON", fonts}});
    }
    int Set(const std::string& key, const std::string& value) const {
        return world.RunHost({"settings", key, value}).status;
    }
    static json ListIn(const json& answer, const char* buffer) {
        return json::parse(answer["out"][buffer].get<std::string>());
    }
    static std::vector<std::string> NamesIn(const json& fonts) {
        std::vector<std::string> names;
        for (const json& font : fonts)
            names.push_back(font["PostScriptName"]);
        return names;
    }
    /// What was asked so far: the names of dialogs, and the numbers of the texts of messages.
    std::vector<std::string> Questions() const {
        std::ifstream lines(platform::Utf8Path(world.Path("asked")));
        std::vector<std::string> questions;
        for (std::string line; std::getline(lines, line);) {
            const json question = json::parse(line);
            const bool isMessage = question.contains("textID");
            questions.push_back(isMessage ? question["textID"].dump() : question.value("dialog", ""));
        }
        return questions;
    }
    static std::set<std::string> FilesIn(const std::string& folder) {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(platform::Utf8Path(folder)))
            names.insert(platform::Utf8Text(entry.path().filename()));
        return names;
    }

    HostWorld world;
    std::string document;
    std::optional<ScriptedHost> host;
    const json kReplaceBlackByBold = {
        {{"dialog", "ResolveFonts"}, {"answer", {{"replacements", {{"Sample-Black", "Sample-Bold"}}}}}}};
};

}  // namespace

TEST_F(MenuTest, FontsAreCollectedAndNothingThatIsThereIsReplaced) {
    const std::string output = world.Path("Ausgabe 字");
    Open(world.WriteDocument("Plakat 🙂.pdf", {"Sample-Bold", "Sample-Italic", "Gone"}),
         {{{"dialog", "ChooseFolder"}, {"answer", {{"folder", output}}}, {"repeat", true}}});
    Choose("Collect Fonts for Output...");
    const std::string folder = output + "/Plakat 🙂 Fonts";
    const std::set<std::string> collected = FilesIn(folder);
    EXPECT_EQ(collected.size(), 4u) << "two fonts, and two lists of them";
    EXPECT_THAT(Questions(), testing::Contains("651")) << "one font is missing";

    // The user's own file stands in the way of one font; the other one is there already.
    const std::string taken = folder + "/" + *collected.begin();
    std::filesystem::permissions(platform::Utf8Path(taken), std::filesystem::perms::owner_all);
    std::ofstream(platform::Utf8Path(taken)) << "my own";
    Choose("Collect Fonts for Output...");
    EXPECT_EQ(FilesIn(folder).size(), 5u);
    std::string content;
    std::getline(std::ifstream(platform::Utf8Path(taken)), content);
    EXPECT_EQ(content, "my own");
}

TEST_F(MenuTest, ADocumentSetHoldsTheDocumentsFonts) {
    Open(world.WriteDocument("poster.ai", {"Sample-Bold", "Sample-Italic"}));
    Choose("Create Document Set...");
    Choose("Create Document Set...");
    EXPECT_THAT(Questions(), ElementsAre("658", "658"));
    const json sets = world.FontManager().RunForJson({"set", "list"}).at("sets");
    ASSERT_EQ(sets.size(), 2u);
    EXPECT_EQ(sets[0]["name"], "poster");
    EXPECT_EQ(sets[1]["name"], "poster 2");
    const json fonts = world.FontManager().RunForJson({"set", "show", "poster"}).at("fonts");
    EXPECT_EQ(fonts.size(), 2u);
    Choose("All Workgroups");
    Choose("Create Document Set...");
    EXPECT_EQ(Questions().back(), "659") << "a set belongs to one workgroup";
}

TEST_F(MenuTest, MissingFontsAreResolvedAsTheUserChoosesAndActivated) {
    const json missing =
        ListIn(Open(world.WriteDocument("Plakat 🙂.ai", {"Sample-Black", "Gone-Black", "Sample-Thin"}),
                    kReplaceBlackByBold),
               "bufferB");
    ASSERT_THAT(NamesIn(missing), ElementsAre("Gone-Black", "Sample-Black", "Sample-Thin"));
    EXPECT_FALSE(missing[0].contains("PossibleReplacements"));
    EXPECT_THAT(NamesIn(missing[1]["PossibleReplacements"]), ElementsAre("Sample-Bold", "Sample-Italic"));

    const json answer = Resolve(true, missing);
    EXPECT_EQ(answer["code"], 0) << answer;
    const json resolved = ListIn(answer, "resultBuffer");
    ASSERT_THAT(NamesIn(resolved), ElementsAre("Sample-Black"));
    EXPECT_EQ(resolved[0]["MatchedFont"], missing[1]["PossibleReplacements"]["Sample-Bold"]);
    EXPECT_EQ(ListIn(answer, "skippedBuffer"), json::array({missing[0], missing[2]}));

    EXPECT_THAT(world.VisibleFonts(), IsEmpty()) << "to choose is not to activate";
    const json activated =
        host->Call("ActivateChosenFonts",
                   {{"path", document}, {"fontsJSON", json::array({resolved[0]["MatchedFont"]})}});
    EXPECT_EQ(activated["code"], 0);
    EXPECT_EQ(activated["out"]["outCount"], 1);
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Bold"));
}

TEST_F(MenuTest, CheckingADocumentActivatesWhatTheUserChooses) {
    Open(world.WriteDocument("poster.ai", {"Other-Regular"}), kReplaceBlackByBold);
    Choose("Check Document's Fonts");
    world.WriteDocument("poster.ai", {"Other-Regular", "Sample-Black"});
    Choose("Check Document's Fonts");
    EXPECT_THAT(Questions(), ElementsAre("655", "662", "ResolveFonts"));
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Other-Regular", "Sample-Bold"));
}

TEST_F(MenuTest, WithoutAChoiceOrPermissionEveryFontIsSkipped) {
    const json missing = ListIn(Open(world.WriteDocument("a.ai", {"Gone-Black", "Sample-Black"})), "bufferB");
    const json gone = json::array({missing[0]});
    EXPECT_EQ(Resolve(true, gone)["codeName"], "CoreErrorCodes::kNotFound");
    EXPECT_THAT(Questions(), IsEmpty());
    json answer = Resolve(false, gone);
    EXPECT_EQ(Questions().size(), 1u);
    EXPECT_EQ(ListIn(answer, "resultBuffer"), json::array());
    EXPECT_EQ(ListIn(answer, "skippedBuffer"), gone);

    ASSERT_EQ(world.Pellwick("logout"), 0);
    answer = Resolve(false, missing);
    EXPECT_EQ(answer["code"], 0);
    EXPECT_EQ(ListIn(answer, "skippedBuffer"), missing);
    EXPECT_EQ(Questions().size(), 1u) << "nobody may choose while nobody is logged in";
}
TEST_F(MenuTest, TheMenuIsInTheUsersLanguageAndItsChoicesLast) {
    ASSERT_EQ(world.Pellwick("workgroup create Druck"), 0);
    platform::SetEnvironment("LC_ALL", "de_DE.UTF-8");
    const auto result = world.RunHost({"menu"});
    EXPECT_EQ(result.status, 0) << result.errors;
    for (const char* line :
         {"Bibliothek auswählen\n", "Schriften des Dokuments prüfen  (not available)\n", "Druck\n"})
        EXPECT_THAT(result.output, HasSubstr(line));
    EXPECT_EQ(world.RunHost({"menu", "Druck"}).status, 0);
    EXPECT_THAT(world.RunHost({"menu"}).output, HasSubstr("* Druck\n"));
    EXPECT_THAT(world.RunHost({"menu", "3"}).errors, HasSubstr("--document"));
    EXPECT_EQ(world.RunHost({"menu", "no such item"}).status, 1);
}

TEST_F(MenuTest, PreferencesLastAndAreSharedByHostsThatRunAtOnce) {
    EXPECT_EQ(Set("CloseFontsOnDocClose", "1"), 0);
    ScriptedHost one, other;
    one.Start();
    other.Start();
    one.SetPreference("RMF4", 4);
    other.SetPreference("RMF5", 5);
    const json seen = json::parse(one.Call("GetSettings")["out"]["buffer"].get<std::string>());
    for (const auto& [key, value] : {std::pair("CloseFontsOnDocClose", "1"), {"RMF4", "4"}, {"RMF5", "5"}})
        EXPECT_EQ(seen[key], value);
    EXPECT_EQ(json::parse(world.RunHost({"--json", "settings"}).output), seen);
    EXPECT_EQ(world.RunHost({"settings", "RMF5"}).output, "5\n");
    EXPECT_THAT(world.RunHost({"settings", "NoSuchKey"}).errors, HasSubstr("NoSuchKey"));
    EXPECT_EQ(Set("RMF5", "many"), 1);

    EXPECT_EQ(Set("EnablePlugin", "0"), 0);
    const auto result = world.RunHost({"open", world.WriteDocument("a.ai", {"Sample-Bold"}), "--close"});
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.errors, HasSubstr("settings EnablePlugin 1"));
    EXPECT_EQ(world.RunHost({"menu"}).status, 0) << "the way back to the preferences is open";
    EXPECT_EQ(Set("EnablePlugin", "1"), 0);
    EXPECT_EQ(world.RunHost({"open", world.Path("a.ai"), "--close"}).status, 0);
}
