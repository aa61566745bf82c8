// Missing fonts and restricted ones, with the real font manager and framework behind the dialogs.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "HostWorld.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class FontDialogsTest : public testing::Test {
protected:
    FontDialogsTest() {
        world.AddFonts({"Sample-Bold", "Sample-Italic", "Other-Regular"});
        document = world.WriteDocument("Plakat 🙂.ai", {"Sample-Black", "Gone-Black", "Sample-Thin"});
        platform::SetEnvironment("PLUGINCORE_ANSWERS_LOG", world.Path("asked"));
    }
    ~FontDialogsTest() override { platform::SetEnvironment("PLUGINCORE_ANSWERS_LOG", ""); }

    void StartHost(const json& answers) {
        const std::string file = world.Path("answers.json");
        std::ofstream(platform::Utf8Path(file)) << answers;
        platform::SetEnvironment("PLUGINCORE_ANSWERS", file);
        host.emplace();
        host->Start();
    }
    /// The document's fonts without a match, as the host gets them.
    json OpenForMissingFonts() {
        const json answer = host->Call("HandleOpenExistingDocument", {{"path", document}});
        return json::parse(answer["out"]["bufferB"].get<std::string>());
    }
    json Resolve(bool onlyIfResolvable, const json& fonts) {
        return host->Call("InvokeResolveDialog",
                          {{"onlyIfResolvable", onlyIfResolvable}, {"fontsJSON", fonts}});
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
    /// The questions that were asked so far.
    std::vector<json> Questions() const {
        std::ifstream lines(platform::Utf8Path(world.Path("asked")));
        std::vector<json> questions;
        for (std::string line; std::getline(lines, line);)
            questions.push_back(json::parse(line));
        return questions;
    }

    HostWorld world;
    std::string document;
    std::optional<ScriptedHost> host;
    const json kReplaceBlackByBold = {
        {{"dialog", "ResolveFonts"}, {"answer", {{"replacements", {{"Sample-Black", "Sample-Bold"}}}}}}};
};

}  // namespace

TEST_F(FontDialogsTest, MissingFontsAreResolvedAsTheUserChoosesAndActivated) {
    StartHost(kReplaceBlackByBold);
    const json missing = OpenForMissingFonts();
    ASSERT_THAT(NamesIn(missing), ElementsAre("Gone-Black", "Sample-Black", "Sample-Thin"));
    EXPECT_FALSE(missing[0].contains("PossibleReplacements"));
    EXPECT_THAT(NamesIn(missing[1]["PossibleReplacements"]), ElementsAre("Sample-Bold", "Sample-Italic"));

    const json answer = Resolve(true, missing);
    EXPECT_EQ(answer["code"], 0) << answer;
    const json resolved = ListIn(answer, "resultBuffer");
    ASSERT_THAT(NamesIn(resolved), ElementsAre("Sample-Black"));
    EXPECT_EQ(resolved[0]["MatchedFont"], missing[1]["PossibleReplacements"]["Sample-Bold"]);
    EXPECT_EQ(ListIn(answer, "skippedBuffer"), json::array({missing[0], missing[2]}));
    for (const char* skipped : {"Gone-Black", "Sample-Thin"})
        EXPECT_THAT(world.Trace(), HasSubstr("This font was skipped:  '" + std::string(skipped) +
                                             "' -- host app's Find Fonts dialog will be displayed\n"));

    EXPECT_THAT(world.VisibleFonts(), IsEmpty()) << "to choose is not to activate";
    const json activated =
        host->Call("ActivateChosenFonts",
                   {{"path", document}, {"fontsJSON", json::array({resolved[0]["MatchedFont"]})}});
    EXPECT_EQ(activated["code"], 0);
    EXPECT_EQ(activated["out"]["outCount"], 1);
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Bold"));
}

TEST_F(FontDialogsTest, CheckingADocumentActivatesWhatTheUserChooses) {
    StartHost(kReplaceBlackByBold);
    OpenForMissingFonts();
    const json menu{{"items", {{{"id", "it"}, {"label", "Check Document's Fonts"}}}}};
    host->Call("HandleMenuSelection", {{"document", document}, {"menusJSON", menu}, {"selectedID", "it"}});
    const std::vector<json> questions = Questions();
    ASSERT_EQ(questions.size(), 2u);
    EXPECT_EQ(questions[0]["textID"], 662);
    EXPECT_EQ(questions[1]["dialog"], "ResolveFonts");
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Bold"));
}

TEST_F(FontDialogsTest, WithoutAChoiceOrPermissionEveryFontIsSkipped) {
    StartHost(json::array());
    const json missing = OpenForMissingFonts();
    const json gone = json::array({missing[0]});
    EXPECT_EQ(Resolve(true, gone)["codeName"], "CoreErrorCodes::kNotFound");
    EXPECT_THAT(Questions(), IsEmpty());
    json answer = Resolve(false, gone);
    EXPECT_EQ(Questions().size(), 1u);
    EXPECT_EQ(ListIn(answer, "resultBuffer"), json::array());
    EXPECT_EQ(ListIn(answer, "skippedBuffer"), gone);

    ASSERT_EQ(world.FontManager().Run({"logout"}).status, 0);
    answer = Resolve(false, missing);
    EXPECT_EQ(answer["code"], 0);
    EXPECT_EQ(ListIn(answer, "skippedBuffer"), missing);
    EXPECT_EQ(Questions().size(), 1u) << "nobody may choose while nobody is logged in";
}
