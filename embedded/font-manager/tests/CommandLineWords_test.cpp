// What people are told, and asked, by commands that do much at once.
#include "TestFonts.h"
#include "tests/support/AgentTest.h"

namespace pellwick::test {
namespace {

class CommandLineWords : public AgentTest {};

TEST_F(CommandLineWords, AddSaysWhatItLeftOutAndFollowsNoLinkToAFolder) {
    const fs::path folder = platform::Utf8Path(mWorld.Path("in"));
    mWorld.Write("in/One.ttf", MakeTestFont({"One-Regular", "One", "Regular"}));
    mWorld.Write("in/damaged.ttf", MakeTestFont({"Two-Regular", "Two", "Regular"}).substr(0, 100));
    mWorld.Write("in/OFL.txt", "a licence");
    std::error_code noLinks;
    fs::create_directory_symlink(folder, folder / "circle", noLinks);
    if (noLinks)
        GTEST_SKIP() << "no links here: " << noLinks.message();
    fs::create_symlink(folder / "gone", folder / "broken");
    const ProgramResult result = mWorld.Run({"add", mWorld.Path("in")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output,
                testing::AllOf(HasSubstr("added One-Regular\n"), HasSubstr("circle: a link to a folder"),
                               HasSubstr("broken: a link that leads"), HasSubstr("1 other files left")));
    EXPECT_THAT(result.errors,
                testing::AllOf(HasSubstr("damaged.ttf: damaged"), testing::Not(HasSubstr("circle"))));
}

TEST_F(CommandLineWords, RemovalOfMoreThanOneFontIsConfirmedFirst) {
    mWorld.Write("in/Both.ttc",
                 MakeTestFontCollection({{"A-Regular", "A", "Regular"}, {"B-Regular", "B", "Regular"}}));
    mWorld.Write("in/C.ttf", MakeTestFont({"C-Regular", "C", "Regular"}));
    ASSERT_EQ(Run({"add", mWorld.Path("in")}), 0);
    const ProgramResult refused = mWorld.Run({"remove", "A-Regular"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("2 fonts: A-Regular, B-Regular; to have that done, add --yes"));
    EXPECT_EQ(Fonts().size(), 3u);
    EXPECT_EQ(Run({"remove", "C-Regular"}), 0) << "one is what was asked for";
    EXPECT_EQ(Run({"remove", "--yes", "A-Regular"}), 0);
    EXPECT_EQ(mWorld.VaultFiles().size(), 0u);
}

TEST_F(CommandLineWords, StatusBeginsWithWhatKeepsDocumentsFromTheirFonts) {
    EXPECT_THAT(mWorld.Run({"status"}).output, testing::StartsWith("! there are no fonts yet; "));
    Add("One-Regular");
    EXPECT_THAT(mWorld.Run({"status"}).output, testing::StartsWith("agent "));
    mWorld.EmptyVault();
    Run({"doctor"});
    EXPECT_THAT(mWorld.Run({"status"}).output, testing::StartsWith("! 1 font files are gone or damaged; "));
    Run({"logout"});
    EXPECT_THAT(mWorld.Run({"status"}).output, testing::StartsWith("! nobody is logged in"));
}

}  // namespace
}  // namespace pellwick::test
