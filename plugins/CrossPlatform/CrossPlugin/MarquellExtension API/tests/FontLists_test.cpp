// The lists of fonts that panels get as files.

#include <nlohmann/json.hpp>

#include "FontListFiles.h"
#include "PanelTest.h"
#include "Records.h"
#include "TemporaryFolder.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

using testing::ElementsAre, testing::HasSubstr;

namespace {

/// The path in a "file://" URL: "/a/b", or "C:/a/b" behind a third slash.
std::string PathOf(const std::string& url) {
    const std::string path = url.substr(std::string("file://").size());
    const bool hasDrive = path.size() > 2 && path[0] == '/' && path[2] == ':';
    return platform::Utf8Text(platform::Utf8Path(hasDrive ? path.substr(1) : path).make_preferred());
}

class FontListTest : public PanelTest {
protected:
    FontListTest() { folders.paths[platform::KnownFolder::kTemporary] = folder / ""; }

    void AddFont(int64_t id, const std::string& postScriptName, const std::string& displayName, int state,
                 int workgroupType) {
        library.smartListFonts.push_back(Record(
            kGS_DatabaseIDKey, id, kGS_PostScriptNameKey, postScriptName, kGS_DisplayNameKey, displayName,
            kGS_ActivationStateKey, state, kGS_WorkgroupTypeKey, workgroupType, kGS_WorkgroupIDKey, id % 10));
    }
    std::string FontList() {
        const std::vector<std::string> replies = Send(R"({"messageID":40,"smartListID":3})");
        if (replies.size() != 1 || !replies[0].starts_with(R"({"messageID":41,"filename":"file:///)"))
            return "no list";
        url = nlohmann::json::parse(replies[0])["filename"];
        return ContentOf(PathOf(url));
    }
    bool IsFileThere() const { return platform::IsExistingFile(PathOf(url)); }
    std::string Create(const std::string& content) {
        std::string created;
        EXPECT_EQ(files.Create(content, created), 0u);
        return created;
    }
    size_t FileCount() const {
        const std::filesystem::directory_iterator entries(folder.Path());
        return static_cast<size_t>(std::distance(begin(entries), end(entries)));
    }

    TemporaryFolder folder;
    std::string url;
    FontListFiles files;
};

}  // namespace

TEST_F(FontListTest, AListIsAFileWithALineForEachFont) {
    EXPECT_EQ(FontList(), "");
    AddFont(4294967295, "S-Bold", "S Bold", kFontActivationState_ActivatedByPlugin,
            kWorkgroupType_FontLibrary);
    AddFont(12, "Tab\tbed", "Two\nlines\r\x01\x1F.", kFontActivationState_Inactive, kWorkgroupType_System);
    AddFont(13, "ü", "", kFontActivationState_SystemFont, kWorkgroupType_GoogleLibrary);
    AddFont(14, "", "字", kFontActivationState_Missing, kWorkgroupType_TypekitLibrary);
    library.smartListFonts.push_back(cf::MutableDictionary());
    EXPECT_EQ(FontList(),
              "4294967295\tS-Bold\tS Bold\t1\tdesktop\t5\n"
              "12\tTab bed\tTwo lines   .\t0\tsystem\t2\n"
              "13\tü\t\t1\tgoogle\t3\n"
              "14\t\t字\t0\ttypekit\t4\n"
              "0\t\t\t0\tdesktop\t0\n");
    EXPECT_THAT(Calls(), testing::Each("GetSmartListFonts(3)"));
}

TEST_F(FontListTest, TheFileStaysUntilThePanelOrTheHostIsDone) {
    FontList();
    EXPECT_TRUE(IsFileThere());
    Send(nlohmann::json{{"messageID", 13}, {"filename", url}}.dump());
    EXPECT_FALSE(IsFileThere());
    FontList();
    panel.Close();
    EXPECT_FALSE(IsFileThere());
    library.given.clear();
    EXPECT_TRUE(Send(R"({"messageID":40,"smartListID":3})").empty()) << "the host has quit";
    const size_t told = service.events.size();
    EXPECT_EQ(panel.SetEnabled(false), 0u);
    EXPECT_EQ(service.events.size(), told);
    EXPECT_TRUE(Calls().empty());
}

TEST_F(FontListTest, AListThatIsNotNamedIsNotFetchedAndAFileThatCannotBeMadeIsToldToThePanel) {
    for (const char* request : {R"({"messageID":40})", R"({"messageID":40,"smartListID":4294967299})"})
        EXPECT_TRUE(Send(request).empty()) << request;
    EXPECT_TRUE(Calls().empty());
    folders.paths[platform::KnownFolder::kTemporary] = folder / "missing";
    EXPECT_THAT(Send(R"({"messageID":40,"smartListID":3})"), ElementsAre(R"({"messageID":19})"));
}

TEST_F(FontListTest, AFileIsReleasedOnceByWhoMadeItAndAllInTheEnd) {
    const std::string mine = folder.Write("font-list-mine.txt", "precious");
    {
        FontListFiles others;
        std::string first, second;
        EXPECT_EQ(others.Create("1\tSample\n", first) + others.Create("", second), 0u);
        EXPECT_NE(first, second);
        for (const std::string& name : {mine, "file://" + mine, "http://elsewhere" + PathOf(first), first})
            EXPECT_EQ(files.Release(name), CoreErrorCodes::kNotFound) << name;
        EXPECT_EQ(others.Release(first), 0u);
        EXPECT_EQ(others.Release(first), CoreErrorCodes::kNotFound);
        EXPECT_EQ(others.Release(PathOf(second)), 0u) << "by path as well";
        EXPECT_EQ(others.Create("", first), 0u);
        EXPECT_EQ(FileCount(), 2u);
    }
    EXPECT_EQ(FileCount(), 1u);
}

TEST_F(FontListTest, APanelThatReleasesNothingDoesNotFillTheDisk) {
    const std::string first = Create("");
    for (int count = 1; count < 250; ++count)
        Create("");
    EXPECT_EQ(FileCount(), 100u);
    EXPECT_EQ(files.Release(first), CoreErrorCodes::kNotFound) << "the oldest went first";
    EXPECT_TRUE(platform::IsExistingFile(PathOf(Create(""))));
}
