// What panels are told of their own accord.

#include <gmock/gmock.h>

#include <filesystem>
#include <thread>

#include "PanelTest.h"
#include "platform/Utf8Path.h"

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(PanelTest, HearsOfFontsThatAreActivatedElsewhere) {
    ASSERT_EQ(Pellwick({"activate", "Sample-Italic", "Sample-Bold"}), 0);
    ASSERT_TRUE(IdleUntilTraced("font 1 activated") && IdleUntilTraced("font 2 activated"));
    ASSERT_EQ(Pellwick({"deactivate", "Sample-Italic"}), 0);
    ASSERT_TRUE(IdleUntilTraced("font 2 deactivated"));
    host.TakePanelMessages();
    host.Call("ProcessPanelMessages");
    EXPECT_EQ(host.TakePanelMessages(), (std::vector<json>{{{"messageID", 24}, {"fontIDs", {1, 2}}},
                                                           {{"messageID", 25}, {"fontIDs", {2}}}}))
        << "one message of a kind, in the order of their numbers";
    EXPECT_THAT(Idle(), IsEmpty());
    ASSERT_EQ(Pellwick({"activate", "Other-Regular"}), 0);
    EXPECT_EQ(WaitFor(24)["fontIDs"], json({3})) << "the others were told";
}

TEST_F(PanelTest, HearsWhatBecomesOfTheFontManager) {
    ASSERT_EQ(Pellwick({"add", world.FontManager().WriteFont("New-Regular")}), 0);
    EXPECT_EQ(WaitFor(56), (json{{"messageID", 56}}));
    ASSERT_EQ(Pellwick({"standalone", "off"}), 0);
    EXPECT_EQ(WaitFor(62), (json{{"messageID", 62}}));
    ASSERT_EQ(Pellwick({"standalone", "on"}), 0);
    EXPECT_EQ(WaitFor(61), (json{{"messageID", 61}}));
    ASSERT_EQ(Pellwick({"logout"}), 0);
    EXPECT_EQ(WaitFor(50), (json{{"messageID", 50}}));
    ASSERT_EQ(Pellwick({"login", "ana"}), 0);
    WaitFor(50);
    ASSERT_EQ(Pellwick({"workgroup", "create", "Print"}), 0);
    EXPECT_EQ(WaitFor(30), (json{{"messageID", 30}, {"isEnabled", true}}));
}

TEST_F(PanelTest, ADocumentThatIsOpenedIsHeardOfToo) {
    ASSERT_EQ(host.Open(world.WriteDocument("a.ai", {"Sample-Bold"})), 1u);
    EXPECT_EQ(WaitFor(24)["fontIDs"], json({1}));
}

TEST_F(PanelTest, SurvivesTheLossOfTheAgent) {
    ASSERT_EQ(Pellwick({"stop"}), 0);
    ASSERT_TRUE(IdleUntilTraced(">>> notification: Agent shut down"));
    EXPECT_THAT(host.Panel({{"messageID", 38}}), IsEmpty()) << "there is nothing to tell";
    EXPECT_NE(Ask({{"messageID", 9}})["returnCode"], 0);
    EXPECT_EQ(Ask({{"messageID", 11}})["height"], 350) << "the panel's own affairs go on";
    host.Call("ProcessPanelMessages");
    EXPECT_EQ(host.Call("PluginIsEnabled")["out"]["isEnabled"], false);
    EXPECT_THAT(host.TakePanelMessages(), Contains(json{{"messageID", 30}, {"isEnabled", false}}));

    EXPECT_EQ(host.Call("ShouldShowLogin")["out"]["showLogin"], false) << "asking starts an agent";
    EXPECT_EQ(host.Call("PluginIsEnabled")["out"]["isEnabled"], true);
    EXPECT_THAT(host.TakePanelMessages(), Contains(json{{"messageID", 30}, {"isEnabled", true}}));
    EXPECT_EQ(Ask({{"messageID", 38}})["smartLists"], json::array());
    ASSERT_EQ(Pellwick({"activate", "Other-Regular"}), 0);
    ASSERT_TRUE(IdleUntilTraced("font 3 activated")) << "the new agent is heard";
    EXPECT_THAT(WaitFor(24)["fontIDs"], Contains(3));
}

TEST(EventsCommand, PrintsWhatGoesToThePanelUntilEnter) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    TestProcess events({HOST_PROGRAM, "events"});
    // Activated and deactivated until it listens.
    std::string line;
    std::thread reader([&] { line = events.ReadLine(); });
    const auto isHeard = [&] { return world.Trace().find("font 1 activated") != std::string::npos; };
    EXPECT_TRUE(Eventually([&] {
        world.FontManager().Run({"deactivate", "1"});
        world.FontManager().Run({"activate", "1"});
        return isHeard();
    }));
    reader.join();
    const json message = json::parse(line);
    EXPECT_EQ(message["fontIDs"], json({1})) << line;
    EXPECT_TRUE(line.starts_with(R"({"messageID":2)")) << "the text as it was sent: " << line;
    events.WriteLine("");
    const auto result = events.Finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr("Press Enter"));
    EXPECT_THAT(world.Trace(), HasSubstr("CloseAllFonts() returning 0")) << "the core was ended";
}

TEST(EventsCommand, EndsOnEnterAndWhenItsTimeIsOver) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    TestProcess events({HOST_PROGRAM, "events"});
    events.WriteLine("");
    EXPECT_EQ(events.Finish().status, 0);
    const auto result = world.RunHost({"events", "--for", "0.1"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(world.RunHost({"events", "--for", "soon"}).status, 2);
    ASSERT_EQ(world.FontManager().Run({"stop"}).status, 0);
    std::filesystem::remove(
        platform::Utf8Path(world.Path("data/Vantorix/com.vantorix.Pellwick-LaunchInfo.conf")));
    EXPECT_EQ(world.RunHost({"events", "--for", "0"}).status, 5);
}
