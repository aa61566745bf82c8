// The road of a document: opened, its fonts seen by every program; closed, gone.

#include "HostWorld.h"

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty;

namespace {

class DocumentRoadTest : public HostWorldTest {
protected:
    DocumentRoadTest() { world.AddFonts({"Sample-Italic", "Sample-Light"}); }

    const std::string document = world.WriteDocument("document.ai", {"Sample-Bold", "Sample-Light"});
};

}  // namespace

TEST_F(DocumentRoadTest, FontsAreVisibleWhileTheDocumentIsOpen) {
    const std::string title =
        world.WriteDocument("Титул 字 🙂.pdf", {"Sample-Bold", "Sample-Italic", "Missing-Font"});
    EXPECT_THAT(world.VisibleFonts(), IsEmpty());
    ScriptedHost host;
    host.Start();
    host.SetPreference("CloseFontsOnDocClose", 1);
    const json answer = host.Call("HandleOpenExistingDocument", {{"path", title}});
    EXPECT_EQ(answer["code"], 1);
    EXPECT_EQ(answer["out"]["numFontsActivated"], 2);
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Bold", "Sample-Italic"));

    const json matched = json::parse(answer["out"]["bufferA"].get<std::string>());
    const json unmatched = json::parse(answer["out"]["bufferB"].get<std::string>());
    ASSERT_EQ(matched.size(), 2u);
    EXPECT_EQ(matched[0]["PostScriptName"], "Sample-Bold");
    EXPECT_EQ(matched[0]["MatchedFont"]["ActivationStatus"], 0) << "before";
    EXPECT_EQ(matched[0]["ActivationStatus"], 2) << "after";
    ASSERT_EQ(unmatched.size(), 1u);
    EXPECT_EQ(unmatched[0]["PostScriptName"], "Missing-Font");

    EXPECT_EQ(host.Call("HandleSaveDocument", {{"path", title}, {"hint", "Sample-Bold 12pt"}})["code"], 0);
    EXPECT_EQ(host.Close(title), 0u);
    EXPECT_THAT(world.VisibleFonts(), IsEmpty());
}

TEST_F(DocumentRoadTest, FontsThatAHostLeavesActiveStayUntilTheyAreLetGoOrTheAgentEnds) {
    const auto leaveActive = [&] {
        ScriptedHost host;
        host.Start();
        host.SetPreference("CloseFontsOnHostAppQuit", 0);
        host.Open(document);
        host.Call("TerminatePluginCoreInterface");
        host.Finish();
        EXPECT_TRUE(Eventually([&] { return world.FontManager().RunForJson({"status"})["hosts"] == 0; }));
        EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Bold", "Sample-Light"));
    };
    leaveActive();
    EXPECT_EQ(world.Pellwick("deactivate Sample-Bold"), 0);
    EXPECT_THAT(world.VisibleFonts(), ElementsAre("Sample-Light"));
    EXPECT_EQ(world.Pellwick("stop"), 0);
    EXPECT_THAT(world.VisibleFonts(), IsEmpty());
    leaveActive();
    world.KillAgent();
    EXPECT_EQ(world.Pellwick("list"), 0) << "starts the next one";
    EXPECT_THAT(world.VisibleFonts(), IsEmpty());
}

TEST_F(DocumentRoadTest, ReplacementsAreOfferedUnlessDialogsAreSuppressed) {
    const std::string missing = world.WriteDocument("missing.ai", {"Sample-Black"});
    const std::string answers = world.FontManager().Write(
        "answers.json",
        R"([{"dialog": "ResolveFonts", "answer": {"replacements": {"Sample-Black": "Sample-Bold"}}}])");
    EXPECT_EQ(world.RunHost({"open", missing, "--close", "--answers", answers}).status, 3);
    ASSERT_EQ(world.RunHost({"settings", "DialogSuppression", "0"}).status, 0);
    const ProgramResult result = world.RunHost({"open", missing, "--close", "--answers", answers});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("Sample-Black  activated"));
    EXPECT_THAT(result.output, HasSubstr("Sample, Bold\n  1 of 1 active"));
}

TEST_F(DocumentRoadTest, TheThinHostInCDoesTheSame) {
    const std::string pdf = world.WriteDocument("document.pdf", {"Sample-Bold", "Missing"});
    const auto result = TestProcess({BuiltFile(THIN_HOST_PROGRAM), pdf}).Finish();
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("1 fonts activated\n"));
    EXPECT_THAT(result.output, HasSubstr("missing: [{\"PostScriptName\":\"Missing\"}]"));
    EXPECT_THAT(world.VisibleFonts(), IsEmpty());
}
