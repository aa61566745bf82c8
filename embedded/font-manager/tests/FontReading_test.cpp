// Font files of any content, read and drawn: in the process that may die of them, and through it.
#include <gtest/gtest.h>
#include <png.h>

#include "FontTables.h"
#include "GFontManagerConstants.h"
#include "HostileFonts.h"
#include "TestFiles.h"
#include "platform/DynamicLibrary.h"
#include "preview/PreviewRenderer.h"
#include "scan/CleanName.h"
#include "scan/FontFiles.h"
#include "scan/FontScanner.h"
#include "tests/support/TestWorld.h"
#include "workers/FontWorker.h"

namespace pellwick {
namespace {

FontFace FaceNamed(const std::string& fullName, const std::string& postScriptName) {
    FontFace face;
    face.fullName = fullName;
    face.postScriptName = postScriptName;
    return face;
}

TEST(FontScanner, ReadsEveryMemberOfACollectionAndSaysWhyAFileIsNone) {
    const TestFontNames bold{"Sample-Bold", "Sample Sans", "Bold", "2.5"};
    FontScanner scanner;
    std::string reason;
    const auto faces =
        scanner.Scan(MakeTestFontCollection({bold, {"Other", "Other", "Regular", "1"}}), reason);
    ASSERT_EQ(faces.size(), 2u) << reason;
    EXPECT_EQ(faces[0].style, "Bold");
    EXPECT_EQ(faces[0].fullName, "Sample Sans Bold");
    EXPECT_EQ(faces[0].foundry, "TEST");
    EXPECT_EQ(faces[1].postScriptName, "Other");
    EXPECT_EQ(faces[1].face, 1);
    EXPECT_EQ(faces[1].kind, GFontManagerConstants::kFontKind_trueTypeCollection);
    EXPECT_EQ(scanner.Scan(MakeTestFont(bold), reason)[0].kind, GFontManagerConstants::kFontKind_trueType);
    for (const char* layout : {"GSUB", "GPOS"}) {
        FontTables tables = TablesOfTestFont(bold);
        tables[layout] = std::string(10, '\0');
        EXPECT_EQ(scanner.Scan(FontOfTables(tables), reason)[0].kind,
                  GFontManagerConstants::kFontKind_openTypeTT);
    }
    const std::string withoutOutlines = MakeTestFont(bold).substr(0, 12 + 16 * 10 + 200);
    for (const auto& [content, why] : std::map<std::string, std::string>{
             {"wOF2@", "a web font, which documents cannot use"}, {withoutOutlines, kReason_Damaged}}) {
        EXPECT_TRUE(scanner.Scan(content, reason).empty());
        EXPECT_EQ(reason, why);
    }
    EXPECT_EQ(FontFileExtension("Sample.TTF", {faces[0]}), ".ttf");
    EXPECT_EQ(FontFileExtension("Sample.exe", {faces[0]}), FontFileExtension("Sample", {faces[0]}));
    FontFace postScript;
    postScript.kind = GFontManagerConstants::kFontKind_openTypePS;
    EXPECT_EQ(FontFileExtension("Sample.exe", {postScript}), ".otf");
}

TEST(FontScanner, FingerprintsTellOutlinesAndWidthsFromNames) {
    FontScanner scanner;
    std::string reason;
    const auto scan = [&](const std::string& content) { return scanner.Scan(content, reason).at(0); };
    const std::string font = MakeTestFont({"Sample-Bold", "Sample", "Bold"});
    const auto changed = [&](const char* table) {  // a byte of it, found in the directory of tables
        std::string other = font;
        const size_t entry = font.find(table) + 8;
        const auto byte = [&](size_t at) { return static_cast<unsigned char>(font[at]); };
        ++other[byte(entry + 2) * size_t{256} + byte(entry + 3) + 3];
        return other;
    };
    const FontFace bold = scan(font);
    const FontFace named = scan(MakeTestFont({"Other", "Other", "Regular", "2.0"}));
    EXPECT_EQ(bold.glyphs.size(), 32u);
    EXPECT_EQ(named.glyphs + named.widths, bold.glyphs + bold.widths);
    EXPECT_NE(scan(changed("glyf")).glyphs, bold.glyphs);
    EXPECT_EQ(scan(changed("glyf")).widths, bold.widths);
    EXPECT_NE(scan(changed("hmtx")).widths, bold.widths);
}

TEST(FontScanner, NamesAreMadeFitToShow) {
    std::string reason;
    // The font's names are UTF-16, made of these bytes.
    const auto faces =
        FontScanner().Scan(MakeTestFont({"Sample-Bold", "S\x1B\x9Bmpl\n", "B\x7Fld\x85"}), reason);
    ASSERT_EQ(faces.size(), 1u) << reason;
    EXPECT_EQ(faces[0].family + faces[0].style, "SmplBld");
    EXPECT_EQ(CleanName("  Sample \x01 S\u202Ea\xFFns\n "), "Sample  Sa\uFFFDns");
    std::string kanji;
    while (kanji.size() < 2 * kMaxNameSize)
        kanji += "\u5b57";
    EXPECT_EQ(CleanName(kanji), kanji.substr(0, kMaxNameSize - kMaxNameSize % 3)) << "no half character";
    EXPECT_LE(CleanName(std::string(100000, '\xFF')).size(), kMaxNameSize);
}

int InkedColumns(const NameImage& image) {
    int inked = 0;
    for (int x = 0; x < image.width; ++x) {
        bool isInked = false;
        for (int y = 0; y < image.height; ++y)
            isInked = isInked || image.coverage[static_cast<size_t>(y * image.width + x)] > 128;
        inked += isInked ? 1 : 0;
    }
    return inked;
}

// Every glyph of a test font is a square, half as wide as its size; the one letter that it has is A.
TEST(PreviewRenderer, ShowsTheFullNameOrElseThePostScriptNameInBothSizes) {
    PreviewRenderer renderer;
    const std::string font = MakeTestFont({"X", "X"});
    for (const auto& [fullName, letters] :
         {std::pair{"A AA", 3}, {"A\u5b57", 5}, {"", 5}, {"broken \xFF", 5}}) {
        for (const int scale : {1, 2}) {
            const NameImage image = renderer.Render(font, FaceNamed(fullName, "ABCDE"), scale);
            EXPECT_EQ(image.height, scale * kPreviewHeight);
            EXPECT_NEAR(InkedColumns(image), scale * letters * 11, scale * letters) << fullName;
        }
    }
    EXPECT_EQ(renderer.Render(font, FaceNamed("", ""), 1).width, 0);
    const int longest = renderer.Render(font, FaceNamed(std::string(100000, 'A'), ""), 2).width;
    EXPECT_NEAR(longest, 2 * kMaxPreviewWidth - 20, 20);

    png_image decoded{};
    decoded.version = PNG_IMAGE_VERSION;
    const std::string file = EncodePng({2, 1, {200, 0}});
    ASSERT_NE(png_image_begin_read_from_memory(&decoded, file.data(), file.size()), 0) << decoded.message;
    decoded.format = PNG_FORMAT_GA;
    std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(decoded));
    EXPECT_NE(png_image_finish_read(&decoded, nullptr, pixels.data(), 0, nullptr), 0) << decoded.message;
    EXPECT_EQ(pixels, (std::vector<uint8_t>{0, 200, 0, 0}));
    EXPECT_EQ(EncodePng({}), "");
}

class FontWorkerTest : public testing::Test {
protected:
    platform::ReadOnlyFile FileOf(const std::string& content) {
        platform::ReadOnlyFile file;
        EXPECT_FALSE(file.Open(mWorld.Write("font", content)));
        return file;
    }
    ScanResult Scan(const std::string& content) { return mWorker.Scan(FileOf(content)); }

    test::TestWorld mWorld;
    FontWorker mWorker{platform::FolderPart(BuiltFile(PELLWICK_PROGRAM)) +
                       platform::ProgramFileName(kFontWorkerProgram)};
    const std::string mGood = MakeTestFont({"Good", "Good"});
};

TEST_F(FontWorkerTest, StartsAgainAfterItWasEndedAndJudgesNoFontThatItHasNotRead) {
    EXPECT_EQ(Scan(mGood).faces.size(), 1u);
    mWorker.Rest();
    const std::string font = MakeTestFont({"Second", "Sample Sans", "Bold", "2.5"});
    const ScanResult result = Scan(font);
    ASSERT_EQ(result.faces.size(), 1u) << result.reason;
    EXPECT_EQ(result.faces[0].postScriptName, "Second");
    EXPECT_EQ(result.faces[0].version, "Version 2.5");
    EXPECT_FALSE(result.faces[0].lookupNames.empty());
    EXPECT_GT(mWorker.Draw(FileOf(font), result.faces[0], 2).width, 0);
    // A name that has to be converted by a table that iconv keeps in a file.
    EXPECT_EQ(Scan(hostile::MacintoshNames()).faces.at(0).family, "Caf\u00e9");
    EXPECT_EQ(Scan("").reason, "not a font file");
    EXPECT_TRUE(Scan("no font").isJudged);
    mWorker.Stop();
    EXPECT_THROW(Scan(mGood), NoFontWorker);
    FontWorker absent(mWorld.Path("nowhere"));
    EXPECT_THROW(absent.Scan(FileOf("font")), NoFontWorker);
    FontWorker failing(BuiltFile(PELLWICK_PROGRAM));  // which ends at once when it is started like this
    const ScanResult unread = failing.Scan(FileOf(mGood));
    EXPECT_TRUE(unread.faces.empty());
    EXPECT_FALSE(unread.isJudged) << "what the process dies of otherwise says nothing about the font";
}

TEST(FontWorkMessages, AreNotBelievedBeyondWhatTheyMaySay) {
    const NameImage image{2, 1, {1, 2}};
    EXPECT_EQ(ParseImage(EncodeImage(image))->coverage, image.coverage);
    for (const NameImage& wrong : {NameImage{3, 1, {1, 2}}, NameImage{-1, -2, {1, 2}},
                                   NameImage{65536, 65536, {}}, NameImage{2, 0, {}}})
        EXPECT_FALSE(ParseImage(EncodeImage(wrong))) << wrong.width;
    EXPECT_FALSE(ParseScanResult(EncodeImage(image)));
    EXPECT_FALSE(ParseScanResult("nonsense"));
    using Faces = std::vector<FontFace>;
    const auto taken = [](void (*change)(Faces&)) {
        ScanResult result;
        result.faces.resize(1);
        change(result.faces);
        return ParseScanResult(EncodeScanResult(result));
    };
    EXPECT_EQ(taken([](Faces& faces) { faces[0].family = "bad\nname"; })->faces[0].family, "badname");
    EXPECT_FALSE(taken([](Faces& faces) { faces.clear(); })) << "neither fonts nor the reason why";
    EXPECT_FALSE(taken([](Faces& faces) { faces.resize(kMaxFontsPerFile + 1); }));
    EXPECT_FALSE(taken([](Faces& faces) { faces.resize(2); })) << "one face twice";
    EXPECT_FALSE(taken([](Faces& faces) { faces[0].lookupNames.resize(1000); }));
    EXPECT_FALSE(taken([](Faces& faces) { faces[0].face = (int64_t{1} << 32) + 1; })) << "it would be face 1";
}

}  // namespace
}  // namespace pellwick
