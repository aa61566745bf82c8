// The plug-in menu, with the real font manager and framework behind it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "HostWorld.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class MenuTest : public testing::Test {
protected:
    MenuTest() {
        world.AddFonts({"Sample-Bold", "Sample-Italic", "Other-Regular"});
        platform::SetEnvironment("PLUGINCORE_ANSWERS_LOG", world.Path("asked"));
    }
    ~MenuTest() override { platform::SetEnvironment("PLUGINCORE_ANSWERS_LOG", ""); }

    /// What the user answers; to be called before the host is started.
    void Answer(const json& answers) const {
        const std::string file = world.Path("answers.json");
        std::ofstream(platform::Utf8Path(file)) << answers;
        platform::SetEnvironment("PLUGINCORE_ANSWERS", file);
    }
    /// Identifiers of the texts of all message boxes that were shown so far.
    std::vector<int> Messages() const {
        std::ifstream lines(platform::Utf8Path(world.Path("asked")));
        std::vector<int> messages;
        for (std::string line; std::getline(lines, line);) {
            const json question = json::parse(line);
            if (question.contains("textID"))
                messages.push_back(question["textID"]);
        }
        return messages;
    }
    static std::set<std::string> FilesIn(const std::string& folder) {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(platform::Utf8Path(folder)))
            names.insert(platform::Utf8Text(entry.path().filename()));
        return names;
    }
    static void Choose(ScriptedHost& host, const std::string& document, const std::string& label) {
        const json menu{{"items", {{{"id", "it"}, {"label", label}}}}};
        const json answer = host.Call("HandleMenuSelection",
                                      {{"document", document}, {"menusJSON", menu}, {"selectedID", "it"}});
        EXPECT_EQ(answer["code"], 0);
    }

    HostWorld world;
};

}  // namespace

TEST_F(MenuTest, FontsAreCollectedAndNothingThatIsThereIsReplaced) {
    const std::string output = world.Path("Ausgabe 字");
    Answer({{{"dialog", "ChooseFolder"}, {"answer", {{"folder", output}}}, {"repeat", true}}});
    const std::string document =
        world.WriteDocument("Plakat 🙂.pdf", {"Sample-Bold", "Sample-Italic", "Gone"});
    ScriptedHost host;
    host.Start();
    host.Open(document);
    Choose(host, document, "Collect Fonts for Output...");
    const std::string folder = output + "/Plakat 🙂 Fonts";
    const std::set<std::string> collected = FilesIn(folder);
    EXPECT_EQ(collected.size(), 2u);
    EXPECT_THAT(Messages(), ElementsAre(651)) << "one font is missing";

    // The user's own file stands in the way of one font; the other one is there already.
    const std::string taken = folder + "/" + *collected.begin();
    std::filesystem::permissions(platform::Utf8Path(taken), std::filesystem::perms::owner_all);
    std::ofstream(platform::Utf8Path(taken)) << "my own";
    Choose(host, document, "Collect Fonts for Output...");
    EXPECT_EQ(FilesIn(folder).size(), 3u);
    std::string content;
    std::getline(std::ifstream(platform::Utf8Path(taken)), content);
    EXPECT_EQ(content, "my own");
}

TEST_F(MenuTest, ADocumentSetHoldsTheDocumentsFonts) {
    const std::string document = world.WriteDocument("poster.ai", {"Sample-Bold", "Sample-Italic"});
    ScriptedHost host;
    host.Start();
    host.Open(document);
    Choose(host, document, "Create Document Set...");
    Choose(host, document, "Create Document Set...");
    EXPECT_THAT(Messages(), ElementsAre(658, 658));
    const json sets = world.FontManager().RunForJson({"set", "list"}).at("sets");
    ASSERT_EQ(sets.size(), 2u);
    EXPECT_EQ(sets[0]["name"], "poster");
    EXPECT_EQ(sets[1]["name"], "poster 2");
    const json fonts = world.FontManager().RunForJson({"set", "show", "poster"}).at("fonts");
    EXPECT_EQ(fonts.size(), 2u);
    Choose(host, document, "All Workgroups");
    Choose(host, document, "Create Document Set...");
    EXPECT_EQ(Messages().back(), 659) << "a set belongs to one workgroup";
}

TEST_F(MenuTest, TheMenuIsInTheUsersLanguageAndItsChoicesLast) {
    ASSERT_EQ(world.FontManager().Run({"workgroup", "create", "Druck"}).status, 0);
    platform::SetEnvironment("LC_ALL", "de_DE.UTF-8");
    auto result = world.RunHost({"menu"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("Bibliothek auswählen\n"));
    EXPECT_THAT(result.output, HasSubstr("Schriften des Dokuments prüfen  (not available)\n"));
    EXPECT_THAT(result.output, HasSubstr("Druck\n"));
    EXPECT_EQ(world.RunHost({"menu", "Druck"}).status, 0);
    EXPECT_THAT(world.RunHost({"menu"}).output, HasSubstr("* Druck\n"));
    result = world.RunHost({"menu", "3"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("--document"));
    EXPECT_EQ(world.RunHost({"menu", "no such item"}).status, 1);
}

TEST_F(MenuTest, PreferencesLastAndAreSharedByHostsThatRunAtOnce) {
    EXPECT_EQ(world.RunHost({"settings", "CloseFontsOnDocClose", "1"}).status, 0);
    ScriptedHost one;
    ScriptedHost other;
    one.Start();
    other.Start();
    one.SetPreference("RMF4", 4);
    other.SetPreference("RMF5", 5);
    const json seen = json::parse(one.Call("GetSettings")["out"]["buffer"].get<std::string>());
    EXPECT_EQ(seen["CloseFontsOnDocClose"], "1");
    EXPECT_EQ(seen["RMF4"], "4");
    EXPECT_EQ(seen["RMF5"], "5");
    EXPECT_EQ(world.RunHost({"settings", "LastUsername", "Zoë"}).status, 0);
    auto result = world.RunHost({"--json", "settings"});
    EXPECT_EQ(json::parse(result.output).size(), 31u);
    EXPECT_EQ(world.RunHost({"settings", "RMF5"}).output, "5\n");
    result = world.RunHost({"settings", "NoSuchKey"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("NoSuchKey"));
    EXPECT_EQ(world.RunHost({"settings", "RMF5", "many"}).status, 1);

    EXPECT_EQ(world.RunHost({"settings", "EnablePlugin", "0"}).status, 0);
    result = world.RunHost({"open", world.WriteDocument("a.ai", {"Sample-Bold"}), "--close"});
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.errors, HasSubstr("settings EnablePlugin 1"));
    EXPECT_EQ(world.RunHost({"menu"}).status, 0) << "the way back to the preferences is open";
    EXPECT_EQ(world.RunHost({"settings", "EnablePlugin", "1"}).status, 0);
    EXPECT_EQ(world.RunHost({"open", world.Path("a.ai"), "--close"}).status, 0);
}
