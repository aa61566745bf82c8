// Panels: what the documented script does not show, of which most goes wrong.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "FileURL.h"
#include "HostWorld.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// A host with a panel, in a world with the fonts 1, Sample-Bold, 2, Sample-Italic, and 3, Other-Regular.
class PanelTest : public testing::Test {
protected:
    PanelTest() {
        for (const char* font : {"Sample-Bold", "Sample-Italic", "Other-Regular"})
            world.AddFonts({font});
        std::filesystem::create_directories(platform::Utf8Path(world.Path("tmp")));
        host.Start();
        EXPECT_EQ(host.Call("RegisterPlugPlug")["code"], 0);
    }

    /// Idles until the panel is told that; the message.
    json WaitFor(int messageID) {
        json found;
        EXPECT_TRUE(Eventually([&] {
            EXPECT_EQ(host.Call("IdleEvent")["code"], 0);
            EXPECT_EQ(host.Call("ProcessPanelMessages")["code"], 0);
            for (const json& message : host.TakePanelMessages()) {
                if (found.is_null() && message["messageID"] == messageID)
                    found = message;
            }
            return !found.is_null();
        })) << "no message "
            << messageID;
        return found;
    }
    /// The only answer to the request.
    json Ask(const json& request) {
        const std::vector<json> answers = host.Panel(request);
        EXPECT_EQ(answers.size(), 1u) << request << " was answered with " << json(answers);
        return answers.size() == 1 ? answers[0] : json();
    }
    std::string FontListPath(int list) {
        const json answer = Ask({{"messageID", 40}, {"smartListID", list}});
        return PathOfFileURL(answer.value("filename", "file://"));
    }

    HostWorld world;
    ScriptedHost host;
};

}  // namespace

TEST_F(PanelTest, HearsOfFontsThatAreActivatedElsewhere) {
    ASSERT_EQ(world.Pellwick("activate Sample-Italic Sample-Bold"), 0);
    ASSERT_TRUE(host.IdleUntilTraced(world, "font 1 activated") &&
                host.IdleUntilTraced(world, "font 2 activated"));
    ASSERT_EQ(world.Pellwick("deactivate Sample-Italic"), 0);
    ASSERT_TRUE(host.IdleUntilTraced(world, "font 2 deactivated"));
    host.TakePanelMessages();
    host.Call("ProcessPanelMessages");
    EXPECT_EQ(host.TakePanelMessages(), (std::vector<json>{{{"messageID", 24}, {"fontIDs", {1, 2}}},
                                                           {{"messageID", 25}, {"fontIDs", {2}}}}))
        << "one message of a kind, in the order of their numbers";
    ASSERT_EQ(world.Pellwick("activate Other-Regular"), 0);
    EXPECT_EQ(WaitFor(24)["fontIDs"], json({3})) << "the others were told";
}

TEST_F(PanelTest, SurvivesTheLossOfTheAgent) {
    ASSERT_EQ(world.Pellwick("stop"), 0);
    ASSERT_TRUE(host.IdleUntilTraced(world, ">>> notification: Agent shut down"));
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
    ASSERT_EQ(world.Pellwick("activate Other-Regular"), 0);
    ASSERT_TRUE(host.IdleUntilTraced(world, "font 3 activated")) << "the new agent is heard";
    EXPECT_THAT(WaitFor(24)["fontIDs"], Contains(3));
}

TEST_F(PanelTest, IsToldWhichFontCannotBeActivated) {
    const auto activate = [this](int font) {
        return host.Panel(
            {{"messageID", 8}, {"fontID", font}, {"postscriptName", "x"}, {"displayName", "x"}});
    };
    world.FontManager().EmptyVault();
    const std::vector<json> answers = activate(3);
    ASSERT_EQ(answers.size(), 2u) << json(answers);
    EXPECT_EQ(answers[0], (json{{"messageID", 46}, {"fontID", 3}, {"isConflictError", false}}));
    EXPECT_NE(answers[1]["returnCode"], 0);
    EXPECT_EQ(WaitFor(45)["fontIDs"], json({3}));
    ASSERT_EQ(world.Pellwick("logout"), 0);
    EXPECT_EQ(activate(1).size(), 2u) << "nobody is logged in";
    const std::vector<json> unknown = activate(999);
    ASSERT_FALSE(unknown.empty());
    EXPECT_NE(unknown.back()["returnCode"], 0);
}

TEST_F(PanelTest, KeepsItsSizeFromOneRunOfTheHostToTheNext) {
    EXPECT_THAT(host.Panel({{"messageID", 12}, {"windowWidth", 400}, {"windowHeight", 700}}), IsEmpty());
    ASSERT_EQ(host.Finish().status, 0);
    ScriptedHost next;
    next.Start();
    next.Call("RegisterPlugPlug");
    EXPECT_EQ(next.Panel({{"messageID", 11}}),
              (std::vector<json>{{{"messageID", 11}, {"height", 700}, {"width", 400}}}));
}

TEST_F(PanelTest, HasTheFilesOfFontListsUntilItLetsGoOfThemOrTheHostQuits) {
    ASSERT_EQ(world.Pellwick("activate Sample-Italic"), 0);
    ASSERT_EQ(world.Pellwick("smartlist create Everything"), 0);
    EXPECT_EQ(WaitFor(43), (json{{"messageID", 43}}));
    std::string content;
    const std::string path = FontListPath(1);
    ASSERT_FALSE(platform::ReadWholeFile(path, content, 1000));
    EXPECT_EQ(content,
              "1\tSample-Bold\tSample Bold\t0\tdesktop\t1\n"
              "2\tSample-Italic\tSample Italic\t1\tdesktop\t1\n"
              "3\tOther-Regular\tOther Regular\t0\tdesktop\t1\n");
    const std::string precious = world.FontManager().Write("tmp/font-list-mine.txt", "precious");
    EXPECT_THAT(host.Panel({{"messageID", 13}, {"filename", "file://" + precious}}), IsEmpty());
    EXPECT_TRUE(platform::IsExistingFile(precious)) << "it is nobody's font list";
    const std::filesystem::path folder = platform::Utf8Path(world.Path("tmp"));
    std::filesystem::rename(folder, platform::Utf8Path(world.Path("away")));
    EXPECT_EQ(Ask({{"messageID", 40}, {"smartListID", 1}}), (json{{"messageID", 19}}))
        << "no place for files";
    std::filesystem::rename(platform::Utf8Path(world.Path("away")), folder);
    const std::string second = FontListPath(1);
    EXPECT_NE(second, path);
    EXPECT_TRUE(platform::IsExistingFile(path) && platform::IsExistingFile(second));
    host.Call("TerminatePluginCoreInterface");
    EXPECT_FALSE(platform::IsExistingFile(path) || platform::IsExistingFile(second));
}

TEST(EventsCommand, PrintsWhatGoesToThePanelUntilEnterOrItsTimeIsOver) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    TestProcess events({HOST_PROGRAM, "events"});
    // Activated and deactivated until it listens.
    std::string line;
    std::thread reader([&] { line = events.ReadLine(); });
    EXPECT_TRUE(Eventually([&] {
        world.FontManager().Run({"deactivate", "1"});
        world.FontManager().Run({"activate", "1"});
        return world.Trace().find("font 1 activated") != std::string::npos;
    }));
    reader.join();
    EXPECT_EQ(json::parse(line)["fontIDs"], json({1})) << line;
    EXPECT_TRUE(line.starts_with(R"({"messageID":2)")) << "the text as it was sent: " << line;
    events.WriteLine("");
    const auto result = events.Finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr("Press Enter"));
    EXPECT_THAT(world.Trace(), HasSubstr("CloseAllFonts() returning 0")) << "the core was ended";
    const auto timed = world.RunHost({"events", "--for", "0.1"});
    EXPECT_EQ(timed.status, 0) << timed.errors;
    EXPECT_EQ(timed.output, "");
    EXPECT_EQ(world.RunHost({"events", "--for", "soon"}).status, 2);
    ASSERT_EQ(world.Pellwick("stop"), 0);
    world.RemoveLaunchInformation();
    EXPECT_EQ(world.RunHost({"events", "--for", "0"}).status, 5);
}
