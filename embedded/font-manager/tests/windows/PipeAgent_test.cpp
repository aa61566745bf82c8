// The agent at a pipe whose name others know, and what the system makes of its fonts.
#include <windows.h>

#include "TestFonts.h"
#include "platform/FontTable.h"
#include "platform/LocalStream.h"
#include "tests/support/AgentTest.h"

namespace pellwick::test {
namespace {

TEST(PipeAgent, StartsWhileSomebodyHasItsNameOrAClientOfADeadAgentItsPipe) {
    TestWorld world;
    const Locations locations = Locations::OfThisUser();
    const std::string name =
        platform::LocalStreamAddresses("Vantorix", "Pellwick", locations.dataFolder).front();
    const HANDLE foreign = CreateNamedPipeW(platform::Utf8Path(name).c_str(), PIPE_ACCESS_DUPLEX,
                                            PIPE_TYPE_BYTE, 1, 4096, 4096, 0, nullptr);
    ASSERT_NE(foreign, INVALID_HANDLE_VALUE);
    world.StartAgent();
    EXPECT_NE(locations.AgentAddress(), name);
    EXPECT_EQ(world.Run({"status", "--no-start"}).status, 0);
    CloseHandle(foreign);
    const RawClient client;
    world.KillAgent();
    world.StartAgent();
    EXPECT_EQ(world.Run({"status", "--no-start"}).status, 0);
}

TEST(PipeAgent, LeavesActiveFontsInTheTableWhenItIsKilledAndStartedAgain) {
    TestWorld world;
    world.StartAgent();
    ASSERT_EQ(world.Run({"add", world.WriteFont("Kept-Bold")}).status, 0);
    ASSERT_EQ(world.Run({"activate", "Kept-Bold"}).status, 0);
    const std::vector<std::string> files = world.VaultFiles();
    ASSERT_EQ(files.size(), 1u);
    const auto timesAdded = [&] { return platform::Current<platform::FontTable>().Added()[files[0]]; };
    EXPECT_EQ(timesAdded(), 1);
    world.KillAgent();
    EXPECT_EQ(timesAdded(), 1) << "documents show it";
    world.StartAgent();
    EXPECT_EQ(timesAdded(), 1) << "neither twice nor taken out";
    ASSERT_EQ(world.Run({"deactivate", "Kept-Bold"}).status, 0);
    EXPECT_EQ(timesAdded(), 0);
}

TEST(Add, SaysOfFontsThatWindowsShowsNoProgramWhy) {
    TestWorld world;
    world.StartAgent();
    world.Write("in/One.ttf", MakeTestFont({"One", "One"}));
    world.Write("in/Suitcase.DFONT", MakeTestFont({"Two", "Two"}));
    const ProgramResult result = world.Run({"add", world.Path("in")});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, testing::AllOf(testing::ContainsRegex("never seen .*DFONT: Windows does not"),
                                              testing::Not(HasSubstr("One.ttf"))));
}

}  // namespace
}  // namespace pellwick::test
