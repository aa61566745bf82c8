#include "workers/FontWorker.h"

#include <gtest/gtest.h>

#include "HostileFonts.h"
#include "TestFonts.h"
#include "platform/DynamicLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick {
namespace {

class FontWorkerTest : public testing::Test {
protected:
    static std::string Program() {
        return platform::FolderPart(PELLWICK_PROGRAM) + platform::ProgramFileName(kFontWorkerProgram);
    }
    platform::ReadOnlyFile FileOf(const std::string& content) {
        platform::ReadOnlyFile file;
        EXPECT_FALSE(file.Open(world.Write("font", content)));
        return file;
    }
    ScanResult Scan(const std::string& content) { return worker.Scan(FileOf(content)); }

    test::TestWorld world;
    FontWorker worker{Program()};
};

// A name that has to be converted by a table that iconv keeps in a file.
TEST_F(FontWorkerTest, ReadsNamesInOldEncodings) {
    const ScanResult result = Scan(hostile::MacintoshNames());
    ASSERT_EQ(result.faces.size(), 1u) << result.reason;
    EXPECT_EQ(result.faces[0].family, "Caf\u00e9");
}

TEST_F(FontWorkerTest, HoldsHostileFontsToTheirLimits) {
    for (const hostile::Font& font : hostile::All()) {
        const ScanResult result = Scan(font.content);
        EXPECT_LE(result.faces.size(), kMaxFontsPerFile) << font.name;
        EXPECT_EQ(result.faces.empty(), !result.reason.empty()) << font.name;
        FontFace face;
        face.fullName = face.postScriptName = "AAAAAAAAAAAA";
        worker.Draw(FileOf(font.content), face, 2);
    }
    EXPECT_EQ(Scan(MakeTestFont({"Good", "Good"})).faces.size(), 1u);
}

TEST_F(FontWorkerTest, StartsAgainAfterItWasEnded) {
    EXPECT_EQ(Scan(MakeTestFont({"Good", "Good"})).faces.size(), 1u);
    worker.Rest();
    const std::string font = MakeTestFont({"Second", "Sample Sans", "Bold", "2.5"});
    const ScanResult result = Scan(font);
    ASSERT_EQ(result.faces.size(), 1u) << result.reason;
    EXPECT_EQ(result.faces[0].postScriptName, "Second");
    EXPECT_EQ(result.faces[0].version, "Version 2.5");
    EXPECT_FALSE(result.faces[0].lookupNames.empty());
    EXPECT_GT(worker.Draw(FileOf(font), result.faces[0], 2).width, 0);
    EXPECT_EQ(Scan("").reason, "not a font file");
    worker.Stop();
    EXPECT_THROW(Scan(MakeTestFont({"Good", "Good"})), NoFontWorker);
    FontWorker absent(world.Path("nowhere"));
    EXPECT_THROW(absent.Scan(FileOf("font")), NoFontWorker);
}

// What the process dies of otherwise says nothing about the font.
TEST_F(FontWorkerTest, AFontThatWasNotReadIsNotJudged) {
    EXPECT_TRUE(Scan("no font").isJudged);
    FontWorker failing(PELLWICK_PROGRAM);  // which ends at once when it is started like this
    const ScanResult result = failing.Scan(FileOf(MakeTestFont({"Good", "Good"})));
    EXPECT_TRUE(result.faces.empty());
    EXPECT_FALSE(result.isJudged);
}

TEST(FontWorkMessages, AreNotBelievedBeyondWhatTheyMaySay) {
    const NameImage image{2, 1, {1, 2}};
    EXPECT_EQ(ParseImage(EncodeImage(image))->coverage, image.coverage);
    EXPECT_FALSE(ParseImage(EncodeImage({3, 1, {1, 2}})));
    EXPECT_FALSE(ParseImage(EncodeImage({-1, -2, {1, 2}})));
    EXPECT_FALSE(ParseImage(EncodeImage({65536, 65536, {}})));
    EXPECT_FALSE(ParseImage(EncodeImage({2, 0, {}}))) << "what is shown is of some height";
    EXPECT_FALSE(ParseScanResult(EncodeImage(image)));
    EXPECT_FALSE(ParseScanResult("nonsense"));
    EXPECT_FALSE(ParseScanResult(EncodeScanResult({}))) << "neither fonts nor the reason why";
    ScanResult result;
    result.faces.resize(kMaxFontsPerFile + 1);
    EXPECT_FALSE(ParseScanResult(EncodeScanResult(result)));
    result.faces.assign(2, FontFace());
    EXPECT_FALSE(ParseScanResult(EncodeScanResult(result))) << "one face twice";
    result.faces.resize(1);
    result.faces[0].lookupNames.resize(1000);
    EXPECT_FALSE(ParseScanResult(EncodeScanResult(result)));
    result.faces[0].lookupNames.clear();
    result.faces[0].family = "bad\nname";
    EXPECT_EQ(ParseScanResult(EncodeScanResult(result))->faces[0].family, "badname");
    result.faces[0].face = (int64_t{1} << 32) + 1;
    EXPECT_FALSE(ParseScanResult(EncodeScanResult(result))) << "it would be face 1";
}

}  // namespace
}  // namespace pellwick
