// Copies of fonts for a printer: what they are called, what is told of them, and what is left alone.
#include <gmock/gmock.h>

#include "TestFiles.h"
#include "TestFonts.h"
#include "collect/EmbeddingRights.h"
#include "collect/FileCopies.h"
#include "collect/FontCollector.h"
#include "collect/LicenceFiles.h"
#include "platform/DynamicLibrary.h"
#include "platform/Utf8Path.h"
#include "tests/support/TestWorld.h"
#include "workers/FontWorker.h"

namespace pellwick::test {
namespace {

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty, testing::Not;

TEST(FileCopies, HaveNamesThatEverySystemTakes) {
    const std::pair<std::string, std::string> names[] = {
        {"Plain Schrift \u5b57.ttf", "Plain Schrift \u5b57.ttf"},
        {"../../etc/passwd", "passwd"},
        {"..", "font"},
        {"..\\up<b>\"*?|:.ttf", "_._up_b______.ttf"},
        {"a\x1b[31m\n\u202Ettf.exe", "a[31mttf.exe"},
        {".hidden.ttf", "_hidden.ttf"},
        {" dots and blanks. . ", "dots and blanks"},
        {"Con.ttf", "_Con.ttf"},
        {"LPT1", "_LPT1"},
        {"Console.ttf", "Console.ttf"},
        {std::string(300, 'x') + ".ttf", std::string(251, 'x') + ".ttf"}};
    for (const auto& [name, safe] : names)
        EXPECT_EQ(SafeFileName(name), safe);
    std::string kanji;
    while (kanji.size() < 300)
        kanji += "\u5b57";
    EXPECT_EQ(NumberedName(SafeFileName(kanji + ".ttf"), 12), kanji.substr(0, 246) + " 12.ttf");
    EXPECT_EQ(NumberedName("no extension", 2), "no extension 2");
}

TEST(EmbeddingRights, AreThoseOfTheFlagThatAllowsMost) {
    const std::pair<std::optional<uint16_t>, const char*> flags[] = {
        {std::nullopt, "unknown"},
        {0, "installable"},
        {8 | 2, "editable"},
        {0x102, "restricted, no subsetting"},
        {0x304, "preview and print, no subsetting, bitmaps only"}};
    for (const auto& [embedding, text] : flags) {
        EXPECT_EQ(EmbeddingText(embedding), text);
        EXPECT_EQ(ForbidsEmbedding(embedding), std::string(text).starts_with("restricted")) << text;
    }
}

TEST(FontsToCollect, AreAskedForUntilNoneIsLeft) {
    size_t answers = 2;  // of an agent that has time for one font each
    const auto call = [&](const char*, const Json& arguments, Json& result) -> ErrorCode {
        Json left = arguments[member::kFonts];
        const Json first = left[0];
        if (answers-- != 0)
            left.erase(0);
        result = {{member::kFonts, Json::array({first})}, {member::kLeft, left}};
        return 0;
    };
    Json fonts;
    EXPECT_EQ(GetFontsToCollect(call, {7, 8}, fonts), 0u);
    EXPECT_EQ(fonts, (Json{7, 8}));
    answers = 0;
    EXPECT_NE(GetFontsToCollect(call, {7, 8}, fonts), 0u) << "it would never end";
}

class CollectTest : public testing::Test {
protected:
    std::string Write(const std::string& name, const std::string& content) const {
        return mFolder.Write(name, content);
    }
    std::string Path(const std::string& name) const { return mFolder / name; }
    /// As the agent describes a font of that file.
    static Json Font(const std::string& path, const std::string& name, const std::string& fileName) {
        return {{kGS_PostScriptNameKey, name},
                {kGS_ChecksumKey, path},
                {kGS_OutlineFileNameKey, fileName},
                {kGS_PathKey, path}};
    }
    Json Manifest() const { return Json::parse(ContentOf(Path("to/fonts.json"))); }

    const TemporaryFolder mFolder;
    const std::string mTarget = Path("to");
};

TEST_F(CollectTest, FilesOfOneNameAreToldApartAndFacesOfOneFileShareACopy) {
    const std::string one = Write("1/a", "one"), two = Write("2/a", "two");
    platform::MakeFolders(mTarget);
    for (int time = 0; time < 2; ++time) {  // the second time finds its own files
        FontCollector collector(mTarget);
        const auto collect = [&](const std::string& path, const char* name) {
            return collector.Collect(Font(path, name, "Same.ttf"), Json::array()).entry[manifest::kFile];
        };
        EXPECT_EQ(collect(one, "One"), "Same.ttf");
        EXPECT_EQ(collect(two, "Two"), "Same 2.ttf");
        EXPECT_EQ(collect(one, "One-Bold"), "Same.ttf");
        EXPECT_FALSE(collector.Finish());
        EXPECT_EQ(Manifest()[manifest::kFonts].size(), 3u);
    }
    EXPECT_EQ(ContentOf(Path("to/Same.ttf")), "one");
    EXPECT_EQ(ContentOf(Path("to/Same 2.ttf")), "two");
    // What is gone from the folder is gone from its list; what lies where a list should stays.
    platform::RemoveFile(Path("to/Same 2.ttf"));
    EXPECT_FALSE(FontCollector(mTarget).Finish());
    EXPECT_EQ(Manifest()[manifest::kFonts].size(), 2u);
    Write("to/fonts.json", "mine");
    EXPECT_FALSE(FontCollector(mTarget).Finish());
    EXPECT_EQ(ContentOf(Path("to/fonts.json")), "mine");
    EXPECT_THAT(ContentOf(Path("to/fonts 2.html")), HasSubstr("No fonts were collected"));
}

TEST_F(CollectTest, WhatOthersWroteIsTextInTheManifest) {
    const std::string evil = "<script>\"'&\u202E\x1b";
    Json font = Font(Write("1/a", "one"), evil, "../../<b>.ttf");
    font[member::kLicence] = "</td>" + std::string(1000, 'x');
    const std::string deep = std::string(500000, '[') + std::string(500000, ']');
    Write("to/fonts.json", R"({"format":"collected fonts","version":1,"fonts":[7,{"usedIn":)" + deep +
                               R"(,"x":)" + deep + R"(,"postScriptName":"<old>"}]})");
    FontCollector collector(mTarget);
    collector.Collect(font, UsesIn("/home/ana/<i>.ai", {{manifest::kWhere, "page <1>"}}));
    collector.SetMissing("<i>.ai", Json::array({MissingFont("/home/ana/<i>.ai", "<gone>")}));
    ASSERT_FALSE(collector.Finish());
    EXPECT_EQ(ContentOf(Path("to/_b_.ttf")), "one");
    EXPECT_EQ(Manifest()[manifest::kFonts][0][manifest::kPostScriptName], "<old>");
    EXPECT_EQ(Manifest()[manifest::kFonts][1][manifest::kPostScriptName], evil);
    const std::string page = ContentOf(Path("to/fonts.html"));
    for (const char* bad :
         {"<script", "<i>", "<1>", "<gone>", "<old>", "</td>x", "\u202E", "\x1b", "/home/ana"})
        EXPECT_THAT(page, Not(HasSubstr(bad)));
    for (const char* part :
         {"&lt;script&gt;&quot;&#39;&amp;<", "&lt;i&gt;.ai: page &lt;1&gt;", "&lt;gone&gt;"})
        EXPECT_THAT(page, HasSubstr(part));

    // Once the document has the font, nobody lacks it; others may.
    for (const char* other : {"other.ai", "third.ai"})
        collector.SetMissing(other, {MissingFont(other, "<gone>"), MissingFont(other, "Lost")});
    collector.SetMissing("<i>.ai", Json::array());
    ASSERT_FALSE(collector.Finish());
    const Json missing = Manifest()[manifest::kMissing];
    ASSERT_EQ(missing.size(), 2u);
    for (const Json& each : missing)
        EXPECT_EQ(each[manifest::kUsedIn], (Json{FontUse("third.ai", ""), FontUse("other.ai", "")}));
}

TEST_F(CollectTest, TextsOfLicencesComeAlongFromTheFontsOfTheSystem) {
    const std::string font = Write("fonts/License Plate.ttf", std::string("\0\1\0\0", 4));
    const std::string ofl = Write("fonts/OFL.txt", "free");
    Write("fonts/LICENCE.huge", std::string(300 << 10, 'x'));
    Write("fonts/Other.ttf", "other");
    Write("fonts/Other.ttf.license", "of another font");
    const std::string own = Write("fonts/License Plate.ttf.license", "its own");
    std::error_code notAllowed;  // on Windows, to most users
    std::filesystem::create_symlink(platform::Utf8Path(Write("secret", "key")),
                                    platform::Utf8Path(Path("fonts/COPYING")), notAllowed);
    EXPECT_THAT(LicenceFilesBeside(font), ElementsAre(own, ofl));
    EXPECT_THAT(LicenceFilesBeside(Path("no folder/a.ttf")), IsEmpty());

    platform::MakeFolders(mTarget);
    const Json record = Font(font, "Plate", "License Plate.ttf");
    EXPECT_THAT(FontCollector(mTarget).Collect(record, Json::array()).entry[manifest::kLicenceFiles],
                IsEmpty())
        << "where the font manager's own come from is not known";
}

TEST_F(CollectTest, RightsAndLicencesAreReadInTheProcessThatMayDieOfFonts) {
    const std::string program =
        platform::FolderPart(BuiltFile(PELLWICK_PROGRAM)) + platform::ProgramFileName(kFontWorkerProgram);
    FontWorker worker(program);
    const auto read = [&](const std::string& content, int64_t face) {
        platform::ReadOnlyFile file;
        EXPECT_FALSE(file.Open(Write("font", content)));
        FontFace which;
        which.face = face;
        return worker.ReadLicence(file, which);
    };
    TestFontNames locked{"Locked", "Locked"};
    locked.licence = "Ask first.\r\nThen\tpay.";
    locked.licenceURL = "https://example.org/licence";
    const std::string pair = MakeTestFontCollection({{"Free", "Free"}, locked});
    EXPECT_EQ(read(pair, 1).text, "Ask first.  Then pay.");
    EXPECT_EQ(read(pair, 1).url, "https://example.org/licence");
    EXPECT_EQ(read(pair, 0).embedding, 0);
    EXPECT_EQ(read(pair, 7).embedding, std::nullopt);
    locked.licence = std::string(30000, 'x');
    EXPECT_EQ(read(MakeTestFont(locked), 0).text.size(), kMaxLicenceSize);
}

}  // namespace
}  // namespace pellwick::test
