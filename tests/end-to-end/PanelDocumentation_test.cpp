// The page on panel messages and the schemas agree.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "PanelSchemas.h"
#include "ScriptPage.h"

using nlohmann::json;
using panel_schemas::Direction;

namespace {

/// Holds the example against the schemas, and takes the message that it is from those without an example.
void Check(Direction direction, const std::string& example, std::set<std::string>& withoutExample) {
    const panel_schemas::Match match = panel_schemas::Find(direction, json::parse(example, nullptr, false));
    EXPECT_EQ(match.faults, "");
    withoutExample.erase(match.name);
}

}  // namespace

TEST(PanelDocumentation, ShowsAnExampleOfEveryMessageByTheSchemas) {
    std::set<std::string> requests = panel_schemas::Names(Direction::kToPlugin);
    std::set<std::string> answers = panel_schemas::Names(Direction::kToPanel);
    for (const PageExchange& exchange : ReadScriptPage("panel-messages.md")) {
        if (exchange.mark == '>')
            Check(Direction::kToPlugin, exchange.request, requests);
        for (const std::string& answer : exchange.answers)
            Check(Direction::kToPanel, answer, answers);
    }
    EXPECT_THAT(requests, testing::IsEmpty()) << "have no example";
    EXPECT_THAT(answers, testing::IsEmpty()) << "have no example";
}

TEST(PanelDocumentation, TheSchemasRefuseWhatIsNoMessage) {
    const auto faults = [](Direction direction, const char* text) {
        return panel_schemas::Find(direction, json::parse(text)).faults;
    };
    for (const char* text :
         {R"({"messageID":7})", R"({})", R"([66])", R"({"messageID":66,"more":1})",
          R"({"messageID":12,"windowWidth":1})", R"({"messageID":12,"windowWidth":1,"windowHeight":"2"})"})
        EXPECT_NE(faults(Direction::kToPlugin, text), "") << text;
    for (const char* text : {R"({"messageID":20})", R"({"messageID":41,"filename":"/tmp/a"})",
                             R"({"messageID":46,"fontID":1,"isConflictError":true})",
                             R"({"messageID":46,"fontID":1,"isConflictError":false,"conflictID":2})",
                             R"({"messageID":24,"fontIDs":[1,"2"]})",
                             R"({"messageID":37,"smartListID":1,"listDefinition":"e\n"})"})
        EXPECT_NE(faults(Direction::kToPanel, text), "") << text;
    EXPECT_EQ(faults(Direction::kToPanel, R"({"messageID":46,"fontID":1,"isConflictError":false})"), "");
}
