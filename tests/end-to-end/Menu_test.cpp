// The plug-in menu, the preferences, and the choice of replacements, with the real font manager and framework.

#include "HostWorld.h"
#include "platform/Environment.h"

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty;

namespace {

class MenuTest : public testing::Test {
protected:
    MenuTest() { world.AddFonts({"Sample-Bold", "Sample-Italic"}); }
    int Set(const std::string& key, const std::string& value) const {
        return world.RunHost({"settings", key, value}).status;
    }

    HostWorld world;
};

json ListIn(const json& answer, const char* buffer) {
    return json::parse(answer["out"][buffer].get<std::string>());
}

}  // namespace

TEST_F(MenuTest, MissingFontsAreResolvedAsTheUserChoosesAndActivated) {
    const std::string answers = world.FontManager().Write(
        "answers.json",
        R"([{"dialog": "ResolveFonts", "answer": {"replacements": {"Sample-Black": "Sample-Bold"}}}])");
    platform::SetEnvironment("PLUGINCORE_ANSWERS", answers);
    const std::string document =
        world.WriteDocument("Plakat 🙂.ai", {"Sample-Black", "Gone", "Sample-Thin"});
    ScriptedHost host;
    host.Start();
    const json missing = ListIn(host.Call("HandleOpenExistingDocument", {{"path", document}}), "bufferB");
    ASSERT_EQ(missing.size(), 3u);
    EXPECT_EQ(missing[0], (json{{"PostScriptName", "Gone"}}));
    EXPECT_EQ(missing[1]["PossibleReplacements"].size(), 2u);

    const json answer =
        host.Call("InvokeResolveDialog", {{"onlyIfResolvable", true}, {"fontsJSON", missing}});
    EXPECT_EQ(answer["code"], 0) << answer;
    const json resolved = ListIn(answer, "resultBuffer");
    ASSERT_EQ(resolved.size(), 1u);
    EXPECT_EQ(resolved[0]["MatchedFont"], missing[1]["PossibleReplacements"]["Sample-Bold"]);
    EXPECT_EQ(ListIn(answer, "skippedBuffer"), json::array({missing[0], missing[2]}));

    EXPECT_THAT(world.VisibleFonts(), IsEmpty()) << "to choose is not to activate";
    const json chosen = json::array({resolved[0]["MatchedFont"]});
    const json activated = host.Call("ActivateChosenFonts", {{"path", document}, {"fontsJSON", chosen}});
    EXPECT_EQ(activated["out"]["outCount"], 1) << activated;
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Bold"));
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
    EXPECT_THAT(world.RunHost({"settings", "NoSuchKey"}).errors, HasSubstr("NoSuchKey"));
    EXPECT_EQ(Set("RMF5", "many"), 1);

    EXPECT_EQ(Set("EnablePlugin", "0"), 0);
    const auto result = world.RunHost({"open", world.WriteDocument("a.ai", {"Sample-Bold"}), "--close"});
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.errors, HasSubstr("settings EnablePlugin 1"));
    EXPECT_EQ(world.RunHost({"menu"}).status, 0) << "the way back to the preferences is open";
}
