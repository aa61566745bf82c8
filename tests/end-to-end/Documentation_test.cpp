// What the pages of docs/ show goes in and comes out as they say.

#include <fstream>
#include <regex>

#include "HostWorld.h"
#include "PanelMessages.h"
#include "PanelSchemas.h"
#include "Preferences.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

using panel_schemas::Direction;

namespace {

/// A line that goes in, after its mark, and the lines that it is answered with.
struct PageExchange {
    char mark;  ///< '>': a line that is written, '$': a command that is run; 0 for lines before the first
    std::string request;
    std::vector<std::string> answers;
};

/// What stands in the blocks of the page, in its order.
std::vector<PageExchange> ReadScriptPage(const std::string& name) {
    std::ifstream page(platform::Utf8Path(SourceFile("docs/" + name)));
    std::vector<PageExchange> script;
    bool isInBlock = false;
    for (std::string line; std::getline(page, line);) {
        if (line == "```") {
            isInBlock = !isInBlock;
        } else if (isInBlock && (line.starts_with("> ") || line.starts_with("$ "))) {
            script.push_back({line[0], line.substr(2), {}});
        } else if (isInBlock) {
            if (script.empty())
                script.push_back({'\0', "", {}});
            script.back().answers.push_back(line);
        }
    }
    return script;
}

/// A line of the page in which what stands in the other line takes the place of "…".
std::string WithoutEllipsis(std::string onPage, const std::string& now) {
    const std::string ellipsis = "…";
    const size_t at = onPage.find(ellipsis), after = onPage.size() - at - ellipsis.size();
    return at == std::string::npos || now.size() < at + after
               ? onPage
               : onPage.replace(at, ellipsis.size(), now, at, now.size() - at - after);
}

/// Files have other names each time: the page's URLs and those of now.
class FileNames {
public:
    /// The line of the page with the names of now.
    json Translate(std::string text) const {
        for (const auto& [onPage, now] : mNames) {
            for (size_t at = text.find(onPage); at != std::string::npos;
                 at = text.find(onPage, at + now.size()))
                text.replace(at, onPage.size(), now);
        }
        return json::parse(text);
    }
    /// Learns the names in an answer where the page has others.
    void Learn(const json& onPage, const json& now) {
        static const std::regex url(R"(file://[^"]*)");
        const std::string left = onPage.dump(), right = now.dump();
        std::sregex_iterator before(left.begin(), left.end(), url), after(right.begin(), right.end(), url),
            end;
        for (; before != end && after != end; ++before, ++after)
            mNames[before->str()] = after->str();
    }

private:
    std::map<std::string, std::string> mNames = {  // the page was written on another system than Windows
        {R"("isWindows":false)",
         platform::kPathSeparator == '\\' ? R"("isWindows":true)" : R"("isWindows":false)"}};
};

class PanelScript : public PageTest {
protected:
    PanelScript() {
        for (const char* font : {"Sample-Italic", "Other-Regular"})
            world.AddFonts({font});
        const auto& fontManager = world.FontManager();
        EXPECT_EQ(fontManager.Run({"add", fontManager.WriteFont("Other-Regular", "2.0")}).status, 0);
        EXPECT_EQ(fontManager.Run({"set", "create", "Poster"}).status, 0);
        EXPECT_EQ(fontManager.Run({"set", "add", "Poster", "Sample-Bold"}).status, 0);
        std::filesystem::create_directories(platform::Utf8Path(world.Path("tmp")));
    }

    std::vector<json> Write(const json& line) {
        const json answer = host.Exchange(line);
        std::vector<json> lines;
        for (const json& message : host.TakePanelMessages())
            lines.push_back({{"event", "com.vantorix.PluginToPanel"}, {"message", message}});
        lines.push_back(answer);
        return lines;
    }
    /// What the font manager does meanwhile may take longer than one idle call.
    std::vector<json> WriteUntilAnswered(const json& line, size_t count) {
        std::vector<json> lines;
        Eventually([&] {
            lines = Write(line);
            if (lines.size() < count)
                host.Call("IdleEvent");
            return lines.size() >= count;
        });
        return lines;
    }
    void Play(const PageExchange& exchange) {
        if (exchange.mark == '$') {
            const std::string words = exchange.request.substr(exchange.request.find(' '));
            EXPECT_EQ(world.Pellwick(words), 0) << exchange.request;
            return;
        }
        const json request = names.Translate(exchange.request);
        const std::vector<json> answers = WriteUntilAnswered(request, exchange.answers.size());
        ASSERT_EQ(answers.size(), exchange.answers.size()) << exchange.request << json(answers);
        for (size_t index = 0; index < answers.size(); ++index) {
            names.Learn(json::parse(exchange.answers[index]), answers[index]);
            EXPECT_EQ(answers[index], names.Translate(exchange.answers[index])) << exchange.request;
        }
    }

    ScriptedHost host;
    FileNames names;
};

}  // namespace

TEST_F(PanelScript, GoesAsThePageSays) {
    const std::vector<PageExchange> script = ReadScriptPage("panel-script.md");
    ASSERT_GT(script.size(), 10u);
    for (const PageExchange& exchange : script)
        Play(exchange);
    EXPECT_EQ(host.Finish().status, 0);
}

TEST_F(PageTest, TheExampleScriptGoesAsItSays) {
    const std::string answers = world.FontManager().Write(
        "answers.json",
        R"([{"dialog":"Preferences","answer":{"CloseFontsOnDocClose":false}},)"
        R"({"dialog":"ResolveFonts","answer":{"replacements":{"Garamond":"EBGaramond-Regular"}}}])");
    const std::vector<PageExchange> script = ReadScriptPage("example-script.md");
    ASSERT_GT(script.size(), 10u);
    TestProcess host({BuiltFile(HOST_PROGRAM), "--answers", answers, "script"});
    for (const PageExchange& exchange : script) {
        host.WriteLine(exchange.request);
        for (const std::string& answer : exchange.answers) {
            const std::string line = host.ReadLine();
            EXPECT_EQ(json::parse(line), json::parse(WithoutEllipsis(answer, line))) << exchange.request;
        }
    }
    EXPECT_EQ(host.Finish().status, 0);
}

TEST_F(PageTest, ThePanelDocumentationShowsAnExampleOfEveryMessageByTheSchemas) {
#define NUMBER_OF(constant, id, ...) id,
    std::set<int> requests = {PANEL_REQUESTS(NUMBER_OF)};
    std::set<int> answers = {PANEL_MESSAGES(NUMBER_OF) PANEL_PLAIN_NOTIFICATIONS(NUMBER_OF)
                                 PANEL_PROGRESS_NOTIFICATIONS(NUMBER_OF) PANEL_FONT_NOTIFICATIONS(NUMBER_OF)
                                     PANEL_STATE_NOTIFICATIONS(NUMBER_OF)};
#undef NUMBER_OF
    const auto take = [](Direction direction, const std::string& example, std::set<int>& undocumented) {
        const json message = json::parse(example, nullptr, false);
        EXPECT_EQ(panel_schemas::FaultsOf(direction, message), "");
        undocumented.erase(message.value("messageID", 0));
    };
    for (const PageExchange& exchange : ReadScriptPage("panel-messages.md")) {
        if (exchange.mark == '>')
            take(Direction::kToPlugin, exchange.request, requests);
        for (const std::string& answer : exchange.answers)
            take(Direction::kToPanel, answer, answers);
    }
    EXPECT_THAT(requests, testing::IsEmpty()) << "have no example";
    EXPECT_THAT(answers, testing::IsEmpty()) << "have no example";
}

TEST_F(PageTest, EveryPreferenceThatTheUserCanSwitchIsExplained) {
    const std::string page = ContentOf(SourceFile("docs/host.md"));
    for (const auto& [key, kind, defaultValue, switchTitle] : preferences::kAll) {
        const std::string row =
            std::string("| `") + key + (defaultValue.value_or(0) != 0 ? "` (on) |" : "` |");
        EXPECT_TRUE(switchTitle == preferences::kNoSwitch || page.find(row) != std::string::npos) << row;
    }
}
