// What a panel asks for itself and for single fonts.

#include <gmock/gmock.h>

#include <filesystem>
#include <map>

#include "PanelTest.h"
#include "ipc/AgentConnection.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

/// Width and height of a PNG file (ISO/IEC 15948, 11.2.2); 0 and 0 for another file.
std::pair<uint32_t, uint32_t> SizeOfPNG(const std::string& path) {
    std::string content;
    if (platform::ReadWholeFile(path, content, 1 << 20) || content.size() < 24 ||
        content.compare(0, 8, "\x89PNG\r\n\x1a\n") != 0)
        return {};
    const auto number = [&](size_t at) {
        uint32_t value = 0;
        for (size_t index = at; index < at + 4; ++index)
            value = value << 8 | static_cast<unsigned char>(content[index]);
        return value;
    };
    return {number(16), number(20)};
}

}  // namespace

TEST(PanelRegistration, ComesLateWhereTheHostRefusesAtFirst) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    ScriptedHost host;
    host.Start();
    const json hello{{"messageID", 66}};
    const json tooEarly = host.Exchange({{"panel", hello}});
    EXPECT_THAT(tooEarly.value("error", ""), HasSubstr("TryRegisterPlugPlug")) << tooEarly;
    ASSERT_EQ(host.Exchange({{"plugPlug", {{"refuse", 3}}}}), (json{{"plugPlug", {{"refuse", 3}}}}));
    EXPECT_EQ(host.Call("RegisterPlugPlug")["codeName"], "CoreErrorCodes::kNotInitialized");
    EXPECT_EQ(host.Call("TryRegisterPlugPlug")["codeName"], "CoreErrorCodes::kNotInitialized");
    EXPECT_TRUE(host.Exchange({{"panel", hello}}).contains("error"));
    ASSERT_TRUE(Eventually([&] { return host.Call("TryRegisterPlugPlug")["code"] == json(0); }));
    EXPECT_EQ(host.Call("RegisterPlugPlug")["code"], 0) << "once more changes nothing";
    EXPECT_EQ(host.Panel(hello), (std::vector<json>{{{"messageID", 20}, {"isStandalone", true}},
                                                    {{"messageID", 30}, {"isEnabled", true}}}));
    EXPECT_EQ(host.Finish().status, 1) << "two lines could not be done";
}

TEST_F(PanelTest, IsToldWhatItRunsOn) {
    ASSERT_EQ(Pellwick({"standalone", "off"}), 0);
    EXPECT_EQ(host.Panel({{"messageID", 66}}).front(), (json{{"messageID", 20}, {"isStandalone", false}}));
    EXPECT_EQ(Ask({{"messageID", 16}}),
              (json{{"messageID", 16}, {"isWindows", platform::kPathSeparator == '\\'}}));
    EXPECT_EQ(host.Call("GetSocketPort")["out"]["port"], 0);
}

TEST_F(PanelTest, KeepsItsSizeAndItsDropDownFromOneRunOfTheHostToTheNext) {
    EXPECT_EQ(Ask({{"messageID", 11}}), (json{{"messageID", 11}, {"height", 350}, {"width", 260}}));
    EXPECT_EQ(Ask({{"messageID", 18}}),
              (json{{"messageID", 18}, {"selection", 0}, {"savesSmartList", false}}));
    EXPECT_THAT(host.Panel({{"messageID", 12}, {"windowWidth", 400}, {"windowHeight", 700}}), IsEmpty());
    EXPECT_THAT(host.Panel({{"messageID", 17}, {"selection", 3}, {"savesSmartList", true}}), IsEmpty());
    ASSERT_EQ(host.Finish().status, 0);
    ScriptedHost next;
    next.Start();
    next.Call("RegisterPlugPlug");
    EXPECT_EQ(next.Panel({{"messageID", 11}}),
              (std::vector<json>{{{"messageID", 11}, {"height", 700}, {"width", 400}}}));
    EXPECT_EQ(next.Panel({{"messageID", 18}}),
              (std::vector<json>{{{"messageID", 18}, {"selection", 3}, {"savesSmartList", true}}}));
}

TEST_F(PanelTest, SwitchesTheWebFontsOn) {
    EXPECT_EQ(Ask({{"messageID", 58}}), (json{{"messageID", 58}, {"canAccessGoogleFonts", false}}));
    EXPECT_EQ(Ask({{"messageID", 10}})["isEnabled"], false);
    EXPECT_EQ(Ask({{"messageID", 9}}), (json{{"messageID", 9}, {"returnCode", 0}}));
    const json state = Ask({{"messageID", 10}});
    EXPECT_EQ(state["isEnabled"], true);
    EXPECT_EQ(state["isReplicating"], false);
    EXPECT_EQ(state["returnCode"], 0);
    EXPECT_THAT(host.Call("GetSettings")["out"]["buffer"].get<std::string>(),
                HasSubstr(R"("GWFHaveEverBeenEnabled":"1")"));
    WaitFor(22);
    pellwick::AgentConnection other(std::chrono::seconds(60));
    json ignored;
    ASSERT_EQ(other.Call("SetGoogleWebFonts", {{"on", false}}, ignored), 0u);
    WaitFor(23);
    EXPECT_EQ(Ask({{"messageID", 10}})["isEnabled"], false);
}

TEST_F(PanelTest, ActivatesAFamilyForADesignAndHearsOfAConflict) {
    const json request{
        {"messageID", 8}, {"fontID", 1}, {"postscriptName", "Sample-Bold"}, {"displayName", "Sample Bold"}};
    EXPECT_EQ(Ask(request), (json{{"messageID", 8}, {"returnCode", 0}}));
    EXPECT_EQ(world.VisibleFonts(), (std::set<std::string>{"Sample-Bold", "Sample-Italic"}));
    ASSERT_EQ(Pellwick({"add", world.FontManager().WriteFont("Other-Regular", "2.0")}), 0);
    ASSERT_EQ(Pellwick({"activate", "4"}), 0);
    const json conflicting{{"messageID", 8},
                           {"fontID", 3},
                           {"postscriptName", "Other-Regular"},
                           {"displayName", "Other Regular"}};
    EXPECT_EQ(
        host.Panel(conflicting),
        (std::vector<json>{{{"messageID", 46}, {"fontID", 3}, {"isConflictError", true}, {"conflictID", 4}},
                           {{"messageID", 8}, {"returnCode", 0}}}));
    EXPECT_TRUE(IdleUntilTraced("font 3 activated")) << "in spite of it";
}

TEST_F(PanelTest, IsToldWhichFontCannotBeActivated) {
    world.LoseFontFiles();
    const std::vector<json> answers = host.Panel({{"messageID", 8},
                                                  {"fontID", 3},
                                                  {"postscriptName", "Other-Regular"},
                                                  {"displayName", "Other Regular"}});
    ASSERT_EQ(answers.size(), 2u) << json(answers);
    EXPECT_EQ(answers[0], (json{{"messageID", 46}, {"fontID", 3}, {"isConflictError", false}}));
    EXPECT_NE(answers[1]["returnCode"], 0);
    EXPECT_EQ(WaitFor(45)["fontIDs"], json({3}));
    ASSERT_EQ(Pellwick({"logout"}), 0);
    EXPECT_EQ(host.Panel({{"messageID", 8},
                          {"fontID", 1},
                          {"postscriptName", "Sample-Bold"},
                          {"displayName", "Sample Bold"}})
                  .size(),
              2u)
        << "nobody is logged in";
    const std::vector<json> unknown = host.Panel(
        {{"messageID", 8}, {"fontID", 999}, {"postscriptName", "Gone"}, {"displayName", "Gone with it"}});
    ASSERT_FALSE(unknown.empty());
    EXPECT_NE(unknown.back()["returnCode"], 0);
}

TEST_F(PanelTest, GetsImagesOfFontsNamesWhenTheHostIsIdle) {
    EXPECT_THAT(host.Panel({{"messageID", 32},
                            {"highPriorityFontIDs", {3}},
                            {"fontIDs", json::array()},
                            {"smartListID", 0}}),
                IsEmpty());
    EXPECT_THAT(
        host.Panel(
            {{"messageID", 32}, {"highPriorityFontIDs", {3}}, {"fontIDs", {1, 2, 3}}, {"smartListID", 0}}),
        IsEmpty());
    std::vector<json> fonts;
    ASSERT_TRUE(Eventually([&] {
        for (const json& message : Idle()) {
            if (message["messageID"] == 32)
                fonts.insert(fonts.end(), message["fonts"].begin(), message["fonts"].end());
        }
        return fonts.size() >= 3;
    }));
    EXPECT_EQ(fonts.size(), 3u) << "nothing is drawn for an empty list";
    EXPECT_EQ(fonts[0]["fontID"], 3) << "the important one is the first";
    for (const json& font : fonts) {
        const auto [width, height] = SizeOfPNG(PathOfURL(font["pngFilename"]));
        const auto [doubleWidth, doubleHeight] = SizeOfPNG(PathOfURL(font["2xPNGFilename"]));
        EXPECT_EQ(height, 32u) << font;
        EXPECT_EQ(doubleHeight, 64u) << font;
        EXPECT_GT(width, 0u);
        EXPECT_GT(doubleWidth, width);
    }
}

TEST_F(PanelTest, HandsKeysAndVersionsOnAndIgnoresWhatItDoesNotKnow) {
    EXPECT_THAT(host.Panel({{"messageID", 67},
                            {"isCtrlPressed", true},
                            {"isShiftPressed", false},
                            {"isAltPressed", true},
                            {"keyCode", 65}}),
                IsEmpty());
    EXPECT_THAT(host.Panel({{"messageID", 47}, {"fontID", 2}, {"version", "3.14"}}), IsEmpty());
    for (const int ignored : {48, 49, 51, 59})
        EXPECT_THAT(host.Panel({{"messageID", ignored}}), IsEmpty());
    EXPECT_THAT(world.Trace(), HasSubstr("Key 65 pressed in a panel (ctrl=1, shift=0, alt=1)"));
    EXPECT_THAT(world.Trace(), HasSubstr("'3.14'"));
    EXPECT_THAT(world.Trace(), Not(HasSubstr("Unknown operator ID")));
    for (const char* text : {R"({"messageID":7})", R"({"messageID":68})", "[66]", "{\"messageID\":66",
                             R"({"messageID":"66"})", R"({"messageID":33,"smartListID":1})", "", "null"})
        EXPECT_THAT(host.Panel(text), IsEmpty()) << text;
    EXPECT_THAT(world.Trace(), HasSubstr("Unknown operator ID from panel '7'."));
    EXPECT_THAT(world.Trace(), HasSubstr("Unknown operator ID from panel '68'."));
    EXPECT_THAT(world.Trace(), HasSubstr("!jsonValue.is_map()"));
    EXPECT_EQ(Ask({{"messageID", 16}})["messageID"], 16) << "the bridge still stands";
}
