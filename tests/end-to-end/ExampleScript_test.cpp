// The documented script still goes as the page says.

#include <gtest/gtest.h>

#include <fstream>

#include "HostWorld.h"
#include "ScriptPage.h"
#include "platform/Utf8Path.h"

TEST(ExampleScript, GoesAsThePageSays) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    const std::string answers = world.Path("answers.json");
    std::ofstream(platform::Utf8Path(answers))
        << R"([{"dialog":"Preferences","answer":{"CloseFontsOnDocClose":false}},)"
           R"({"dialog":"ResolveFonts","answer":{"replacements":{"Garamond":"EBGaramond-Regular"}}}])";
    const std::vector<PageExchange> script = ReadScriptPage("example-script.md");
    ASSERT_GT(script.size(), 10u);
    TestProcess host({HOST_PROGRAM, "--answers", answers, "script"});
    for (const PageExchange& exchange : script) {
        host.WriteLine(exchange.request);
        for (const std::string& answer : exchange.answers)
            EXPECT_EQ(json::parse(host.ReadLine()), json::parse(answer)) << exchange.request;
    }
    EXPECT_EQ(host.Finish().status, 0);
}
