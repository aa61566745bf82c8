// Smart lists, from a panel's point of view.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "PanelTest.h"
#include "platform/Utf8Path.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The set 1, "Poster", holds Sample-Bold.
class SmartListPanelTest : public PanelTest {
protected:
    SmartListPanelTest() {
        std::filesystem::create_directories(platform::Utf8Path(world.Path("tmp")));
        EXPECT_EQ(Pellwick({"set", "create", "Poster"}), 0);
        EXPECT_EQ(Pellwick({"set", "add", "Poster", "Sample-Bold"}), 0);
    }

    static json Query(const std::vector<int>& workgroups, const std::vector<int>& sets,
                      const std::vector<int>& smartLists) {
        return {{"workgroupIDs", workgroups}, {"setIDs", sets}, {"smartSetIDs", smartLists}};
    }
    /// A message with the query's members.
    static json WithQuery(json message, const json& query) {
        message.update(query);
        return message;
    }
    int Create(const std::string& name, const json& query) {
        const json answer = Ask(WithQuery({{"messageID", 39}, {"smartListName", name}}, query));
        EXPECT_EQ(answer["smartList"]["smartListName"], name);
        return answer["smartList"]["smartListID"];
    }
    void Tell(const json& message) { EXPECT_THAT(host.Panel(message), IsEmpty()) << message; }
    std::string ReadFontList(const std::string& url) {
        std::ostringstream text;
        text << std::ifstream(platform::Utf8Path(PathOfURL(url)), std::ios::binary).rdbuf();
        return text.str();
    }
    std::string FontListURL(int list) {
        const json answer = Ask({{"messageID", 40}, {"smartListID", list}});
        EXPECT_EQ(answer["messageID"], 41);
        return answer["filename"];
    }
    /// PostScript names in the list's file, which is given back.
    std::vector<std::string> FontsOf(int list) {
        const std::string url = FontListURL(list);
        std::istringstream lines(ReadFontList(url));
        std::vector<std::string> names;
        for (std::string id, name, rest;
             std::getline(lines, id, '\t') && std::getline(lines, name, '\t') && std::getline(lines, rest);)
            names.push_back(name);
        Tell({{"messageID", 13}, {"filename", url}});
        return names;
    }
    bool IsThere(const std::string& url) {
        return std::filesystem::exists(platform::Utf8Path(PathOfURL(url)));
    }
};

/// RFC 4648, section 4; line ends and padding count for nothing.
std::string DecodeBase64(const std::string& text) {
    const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned bits = 0;
    int count = 0;
    for (const char digit : text) {
        const size_t value = digits.find(digit);
        if (value == std::string::npos)
            continue;
        bits = bits << 6 | static_cast<unsigned>(value);
        count += 6;
        if (count >= 8)
            bytes += static_cast<char>(bits >> (count -= 8));
    }
    return bytes;
}

}  // namespace

TEST_F(SmartListPanelTest, AreMadeRenamedChangedAndDeleted) {
    EXPECT_EQ(Ask({{"messageID", 38}}), (json{{"messageID", 38}, {"smartLists", json::array()}}));
    const int all = Create("Everything", Query({}, {}, {}));
    const int posters = Create("Plakate \u5b57\u4f53 \U0001F642", Query({1}, {1}, {all}));
    EXPECT_EQ(Ask({{"messageID", 36}, {"smartListID", posters}}),
              WithQuery({{"messageID", 36},
                         {"smartListID", posters},
                         {"smartListName", "Plakate \u5b57\u4f53 \U0001F642"}},
                        Query({1}, {1}, {all})));
    Tell({{"messageID", 33}, {"smartListID", posters}, {"smartListName", "Posters"}});
    Tell({{"messageID", 44}, {"smartListID", all}, {"smartListName", "All of them"}});
    Tell(WithQuery({{"messageID", 42}, {"smartListID", posters}}, Query({}, {1}, {})));
    EXPECT_EQ(Ask({{"messageID", 36}, {"smartListID", posters}})["workgroupIDs"], json::array());
    EXPECT_EQ(Ask({{"messageID", 38}})["smartLists"],
              json({{{"smartListID", all}, {"smartListName", "All of them"}},
                    {{"smartListID", posters}, {"smartListName", "Posters"}}}));
    EXPECT_EQ(world.FontManager().RunForJson({"smartlist", "fonts", "Posters"})["fonts"].size(), 1u);
    Tell({{"messageID", 34}, {"smartListID", all}});
    EXPECT_EQ(Ask({{"messageID", 38}})["smartLists"].size(), 1u);
    Tell({{"messageID", 36}, {"smartListID", all}});
}

TEST_F(SmartListPanelTest, ADefinitionIsBase64InLinesWithoutTheLastLineEnd) {
    const int list =
        Create("A name that is long enough for more than one line of base64", Query({}, {1}, {}));
    const json answer = Ask({{"messageID", 37}, {"smartListID", list}});
    const std::string text = answer["listDefinition"];
    EXPECT_EQ(text.find('\n'), 76u);
    EXPECT_FALSE(text.ends_with('\n'));
    const json definition = json::parse(DecodeBase64(text));
    EXPECT_EQ(definition["smartListID"], list);
    EXPECT_EQ(definition["setIDs"], json({1}));
}

TEST_F(SmartListPanelTest, AFontListStandsInAFileUntilThePanelLetsGoOfIt) {
    ASSERT_EQ(Pellwick({"activate", "Sample-Italic"}), 0);
    const int list = Create("Everything", Query({}, {}, {}));
    const std::string url = FontListURL(list);
    EXPECT_TRUE(url.starts_with("file:///")) << url;
    EXPECT_EQ(ReadFontList(url),
              "1\tSample-Bold\tSample Bold\t0\tdesktop\t1\n"
              "2\tSample-Italic\tSample Italic\t1\tdesktop\t1\n"
              "3\tOther-Regular\tOther Regular\t0\tdesktop\t1\n");
    const std::string precious = world.FontManager().Write("tmp/font-list-mine.txt", "precious");
    Tell({{"messageID", 13}, {"filename", "file://" + precious}});
    EXPECT_TRUE(std::filesystem::exists(platform::Utf8Path(precious))) << "it is nobody's font list";
    EXPECT_TRUE(IsThere(url));
    Tell({{"messageID", 13}, {"filename", url}});
    EXPECT_FALSE(IsThere(url));
}

TEST_F(SmartListPanelTest, AQueryIsTriedWithoutBeingKept) {
    const int list = Create("Everything", Query({}, {}, {}));
    Tell(WithQuery({{"messageID", 35}, {"smartListID", list}}, Query({}, {1}, {})));
    EXPECT_THAT(FontsOf(list), ElementsAre("Sample-Bold"));
    EXPECT_EQ(Ask({{"messageID", 36}, {"smartListID", list}})["setIDs"], json::array());
    EXPECT_EQ(world.FontManager().RunForJson({"smartlist", "fonts", "Everything"})["fonts"].size(), 3u);
}

TEST_F(SmartListPanelTest, FontListFilesGoWhenTheHostQuits) {
    const int list = Create("Everything", Query({}, {}, {}));
    const std::string first = FontListURL(list);
    const std::string second = FontListURL(list);
    EXPECT_NE(first, second);
    ASSERT_TRUE(IsThere(first) && IsThere(second));
    host.Call("TerminatePluginCoreInterface");
    EXPECT_FALSE(IsThere(first));
    EXPECT_FALSE(IsThere(second));
}

TEST_F(SmartListPanelTest, WithoutAPlaceForFilesThePanelIsToldSo) {
    const int list = Create("Everything", Query({}, {}, {}));
    std::filesystem::remove_all(platform::Utf8Path(world.Path("tmp")));
    EXPECT_EQ(Ask({{"messageID", 40}, {"smartListID", list}}), (json{{"messageID", 19}}));
    std::filesystem::create_directories(platform::Utf8Path(world.Path("tmp")));
    EXPECT_EQ(Ask({{"messageID", 40}, {"smartListID", list}})["messageID"], 41);
}

TEST_F(SmartListPanelTest, ChangesByOthersAreTold) {
    ASSERT_EQ(Pellwick({"smartlist", "create", "Theirs"}), 0);
    EXPECT_EQ(WaitFor(43), (json{{"messageID", 43}}));
    EXPECT_EQ(Ask({{"messageID", 38}})["smartLists"][0]["smartListName"], "Theirs");
}
