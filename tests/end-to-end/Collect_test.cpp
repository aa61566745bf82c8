// Handing a document over to a printer together with its fonts, from the command line and from the menu.

#include "HostWorld.h"
#include "TestFonts.h"

using pellwick::test::NamesOf;
using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty, testing::Not;

namespace {

class Collect : public HostWorldTest {
protected:
    Collect() {
        TestFontNames locked{"Locked-Bold", "Locked", "Bold"};
        locked.embedding = 2;
        locked.licence = "Ask before you embed.";
        const auto& fontManager = world.FontManager();
        for (const std::string& path :
             {fontManager.Write("Locked.ttf", MakeTestFont(locked)),
              fontManager.Write("Pair.ttc", MakeTestFontCollection({{"One", "One"}, {"Two", "Two"}}))})
            EXPECT_EQ(fontManager.Run({"add", path}).status, 0);
    }
    ProgramResult Run(std::vector<std::string> words) const {
        words.insert(words.begin(), "collect");
        return world.RunHost(words);
    }
    json Manifest(const std::string& folder) const {
        return json::parse(ContentOf(world.Path(folder + "/fonts.json")));
    }

    const std::string poster =
        world.WriteDocument("Plakat/poster.pdf", {"Sample-Bold", "Locked-Bold", "One", "Two", "Gone"});
};

}  // namespace

TEST_F(Collect, CopiesEachFileOnceAndTellsOfAllFonts) {
    const std::string folder = world.Path("Druckerei");
    const ProgramResult result = Run({poster, "--to", folder});
    EXPECT_EQ(result.status, 3) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("Locked-Bold  Locked.ttf           restricted\n"));
    EXPECT_THAT(result.output, HasSubstr("Gone         missing"));
    EXPECT_THAT(result.output, testing::EndsWith("\n4 of 5 collected to " + folder + "\n"));
    EXPECT_THAT(result.errors, HasSubstr("Locked-Bold was copied, but must not be handed on"));
    EXPECT_EQ(world.FontManager().FilesBelow("Druckerei").size(), 5u) << "three fonts, two lists";
    const json manifest = Manifest("Druckerei");
    ASSERT_EQ(manifest["fonts"].size(), 4u);
    EXPECT_EQ(manifest["fonts"][0]["licence"], "Ask before you embed.");
    EXPECT_EQ(manifest["fonts"][0]["rights"], "restricted");
    EXPECT_EQ(manifest["fonts"][0]["usedIn"][0]["document"], "poster.pdf");
    EXPECT_EQ(manifest["fonts"][1]["file"], manifest["fonts"][3]["file"]) << "One and Two";
    EXPECT_EQ(manifest["missing"][0]["postScriptName"], "Gone");
    EXPECT_THAT(world.FontManager().ActiveFiles(), IsEmpty()) << "nothing stays open";
}

TEST_F(Collect, LeavesOutWhatMayNotBeEmbeddedWhereThatIsWanted) {
    const std::string whole = world.WriteDocument("whole.pdf", {"Sample-Bold", "Locked-Bold"});
    const ProgramResult result =
        Run({"--json", whole, world.Path("none.pdf"), "--to", world.Path("to"), "--restricted", "skip"});
    EXPECT_EQ(result.status, 1) << "one document is none";
    const json line = json::parse(result.output);
    EXPECT_EQ(line["collected"], 1);
    EXPECT_EQ(line["total"], 2);
    EXPECT_EQ(line["fonts"][0]["file"], nullptr);
    EXPECT_EQ(Run({whole, "--to", world.Path("to"), "--restricted", "skip"}).status, 0);
    EXPECT_THAT(ContentOf(world.Path("to/fonts.html")), HasSubstr("its licence forbids embedding"));
    // What an earlier time copied is there, whatever is left out now.
    for (const char* word : {"warn", "skip"})
        EXPECT_EQ(Run({whole, "--to", world.Path("to"), "--restricted", word}).status, 0);
    EXPECT_EQ(Manifest("to")["fonts"][0]["file"], "Locked.ttf");
    EXPECT_EQ(Run({whole, "--to", world.Path("to"), "--restricted", "perhaps"}).status, 2);
    EXPECT_EQ(Run({poster, whole, "--document-fonts"}).status, 3) << "the first lacks a font";
    EXPECT_EQ(Run({whole}).status, 2) << "nowhere to collect";
    EXPECT_EQ(Run({whole, "--to", whole}).status, 1) << "no folder";
}

TEST_F(Collect, FillsTheDocumentsOwnFolderAlsoFromTheSystemsFonts) {
    const auto& fontManager = world.FontManager();
    fontManager.Write("data/fonts/Free/Plain.ttf", MakeTestFont({"Plain-Bold", "Plain", "Bold"}));
    fontManager.Write("data/fonts/Free/OFL.txt", "Do as you like.");
    world.KillAgent();  // not every system tells it of fonts in a folder of their own; the next one looks
    ASSERT_TRUE(Eventually([&] {
        return NamesOf(fontManager.RunForJson({"list", "--system"})["fonts"]).size() == 1;
    }));
    const std::string first = world.WriteDocument("Heft/1.pdf", {"Plain-Bold"});
    const std::string second = world.WriteDocument("Heft/2.pdf", {"Plain-Bold", "Sample-Bold"});
    EXPECT_EQ(Run({first, second, "--document-fonts"}).status, 0);
    const json font = Manifest("Heft/Document fonts")["fonts"][0];
    EXPECT_EQ(font["source"], "system");
    EXPECT_EQ(font["usedIn"].size(), 2u);
    EXPECT_THAT(font["licenceFiles"], ElementsAre("Licences/OFL.txt"));
    EXPECT_EQ(ContentOf(world.Path("Heft/Document fonts/Licences/OFL.txt")), "Do as you like.");
    // Nothing that is there is copied again, and nothing is left of a font manager that cannot be reached.
    EXPECT_EQ(Run({second, "--document-fonts"}).status, 0);
    EXPECT_EQ(fontManager.FilesBelow("Heft/Document fonts").size(), 5u);
    world.KillAgent();
    world.RemoveLaunchInformation();
    const ProgramResult refused = Run({second, "--to", world.Path("nowhere")});
    EXPECT_EQ(refused.status, 5);
    EXPECT_EQ(refused.output, "");
    EXPECT_EQ(CountOf(refused.errors, "\n"), 1) << refused.errors;
    EXPECT_THAT(refused.errors, HasSubstr("Pellwick"));
    EXPECT_THAT(fontManager.FilesBelow("nowhere"), IsEmpty());
}

TEST_F(Collect, TheMenuLeavesTheSameListBehind) {
    const std::string answers = world.FontManager().Write(
        "answers.json",
        json{{{"dialog", "ChooseFolder"}, {"answer", {{"folder", world.Path("Ausgabe")}}}}}.dump());
    EXPECT_EQ(
        world.RunHost({"--answers", answers, "menu", "Collect Fonts for Output...", "--document", poster})
            .status,
        0);
    const json manifest = Manifest("Ausgabe/poster Fonts");
    EXPECT_EQ(manifest["fonts"].size(), 4u);
    EXPECT_EQ(manifest["fonts"][0]["rights"], "restricted");
    EXPECT_EQ(manifest["fonts"][0]["usedIn"][0]["document"], "poster.pdf");
    EXPECT_EQ(manifest["missing"][0]["postScriptName"], "Gone");
}
