// The documented session still goes as the page says.

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

std::vector<Exchange> ReadSession() {
    std::ifstream page(EXAMPLE_SESSION);
    std::vector<Exchange> session;
    bool isInBlock = false;
    for (std::string line; std::getline(page, line);) {
        if (line == "```")
            isInBlock = !isInBlock;
        else if (isInBlock && line.starts_with("> "))
            session.push_back({line.substr(2), {}});
        else if (isInBlock && !session.empty())
            session.back().answers.push_back(line);
    }
    return session;
}

}  // namespace

TEST(ExampleSession, GoesAsThePageSays) {
    HostWorld world;
    world.AddFonts({"Sample-Bold"});
    const std::string answers = world.Path("answers.json");
    std::ofstream(platform::Utf8Path(answers))
        << R"([{"dialog":"Preferences","answer":{"CloseFontsOnDocClose":false}}])";
    const std::vector<Exchange> session = ReadSession();
    ASSERT_GT(session.size(), 10u);
    pellwick::test::TestProcess host({HOST_PROGRAM, "--answers", answers, "script"});
    for (const Exchange& exchange : session) {
        host.WriteLine(exchange.request);
        for (const std::string& answer : exchange.answers)
            EXPECT_EQ(json::parse(host.ReadLine()), json::parse(answer)) << exchange.request;
    }
    EXPECT_EQ(host.Finish().status, 0);
}
