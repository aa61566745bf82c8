// The documented life of a panel still goes as the page says.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>

#include "HostWorld.h"
#include "ScriptPage.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace {

/// The page was written on a system other than Windows, and one message tells.
json OnThisSystem(json answer) {
    if (answer.contains("message") && answer["message"].contains("isWindows"))
        answer["message"]["isWindows"] = platform::kPathSeparator == '\\';
    return answer;
}

/// Files have other names each time: the page's URLs and those of now.
class FileNames {
public:
    /// The line of the page with the names of now.
    std::string Translate(std::string text) const {
        for (const auto& [onPage, now] : mNames) {
            for (size_t at = text.find(onPage); at != std::string::npos;
                 at = text.find(onPage, at + now.size()))
                text.replace(at, onPage.size(), now);
        }
        return text;
    }
    /// Learns the names in an answer where the page has others.
    void Learn(const json& onPage, const json& now) {
        if (onPage.is_string() && now.is_string() && StartsWithURL(onPage) && StartsWithURL(now))
            mNames[onPage.get<std::string>()] = now.get<std::string>();
        if (!onPage.is_structured() || onPage.type() != now.type() || onPage.size() != now.size())
            return;
        for (const auto& [key, value] : onPage.items())
            Learn(value, onPage.is_object() ? now.value(key, json()) : now[std::stoul(key)]);
    }

private:
    static bool StartsWithURL(const json& text) { return text.get<std::string>().starts_with("file://"); }

    std::map<std::string, std::string> mNames;
};

class PanelScript : public testing::Test {
protected:
    PanelScript() {
        for (const char* font : {"Sample-Bold", "Sample-Italic", "Other-Regular"})
            world.AddFonts({font});
        auto& fontManager = world.FontManager();
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
            std::vector<std::string> words;
            std::istringstream command(exchange.request);
            for (std::string word; command >> word;)
                words.push_back(word);
            words.erase(words.begin());
            EXPECT_EQ(world.FontManager().Run(words).status, 0) << exchange.request;
            return;
        }
        const json request = json::parse(names.Translate(exchange.request));
        const std::vector<json> answers = WriteUntilAnswered(request, exchange.answers.size());
        ASSERT_EQ(answers.size(), exchange.answers.size()) << exchange.request << json(answers);
        for (size_t index = 0; index < answers.size(); ++index) {
            names.Learn(json::parse(exchange.answers[index]), answers[index]);
            EXPECT_EQ(answers[index], OnThisSystem(json::parse(names.Translate(exchange.answers[index]))))
                << exchange.request;
        }
    }

    HostWorld world;
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
