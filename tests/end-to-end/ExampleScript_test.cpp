// The documented script still goes as the page says.

#include <gtest/gtest.h>

#include <fstream>

#include "HostWorld.h"
#include "platform/Utf8Path.h"

namespace {

/// One call of the page and the lines that it is answered with.
struct Exchange {
    std::string request;
    std::vector<std::string> answers;
};

std::vector<Exchange> ReadScript() {
    std::ifstream page(EXAMPLE_SCRIPT);
    std::vector<Exchange> script;
    bool isInBlock = false;
    for (std::string line; std::getline(page, line);) {
        if (line == "```")
            isInBlock = !isInBlock;
        else if (isInBlock && line.starts_with("> "))
            script.push_back({line.substr(2), {}});
        else if (isInBlock && !script.empty())
            script.back().answers.push_back(line);
    }
    return script;
}

}  // namespace

TEST(ExampleScript, GoesAsThePageSays) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    const std::string answers = world.Path("answers.json");
    std::ofstream(platform::Utf8Path(answers))
        << R"([{"dialog":"Preferences","answer":{"CloseFontsOnDocClose":false}},)"
           R"({"dialog":"ResolveFonts","answer":{"replacements":{"Garamond":"EBGaramond-Regular"}}}])";
    const std::vector<Exchange> script = ReadScript();
    ASSERT_GT(script.size(), 10u);
    pellwick::test::TestProcess host({HOST_PROGRAM, "--answers", answers, "script"});
    for (const Exchange& exchange : script) {
        host.WriteLine(exchange.request);
        for (const std::string& answer : exchange.answers)
            EXPECT_EQ(json::parse(host.ReadLine()), json::parse(answer)) << exchange.request;
    }
    EXPECT_EQ(host.Finish().status, 0);
}
