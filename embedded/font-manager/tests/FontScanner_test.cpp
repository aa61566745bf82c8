#include "scan/FontScanner.h"

#include <gtest/gtest.h>

#include "GFontManagerConstants.h"
#include "TestFonts.h"
#include "common/FontManagerLimits.h"
#include "scan/CleanName.h"
#include "scan/FontFiles.h"

namespace pellwick {
namespace {

const TestFontNames kBold{"Sample-Bold", "Sample Sans", "Bold", "2.5"};

TEST(FontScanner, ReadsTheNamesOfAFont) {
    std::string reason;
    const auto faces = FontScanner().Scan(MakeTestFont(kBold), reason);
    ASSERT_EQ(faces.size(), 1u) << reason;
    EXPECT_EQ(faces[0].postScriptName, "Sample-Bold");
    EXPECT_EQ(faces[0].family, "Sample Sans");
    EXPECT_EQ(faces[0].style, "Bold");
    EXPECT_EQ(faces[0].fullName, "Sample Sans Bold");
    EXPECT_EQ(faces[0].version, "Version 2.5");
    EXPECT_EQ(faces[0].foundry, "TEST");
    EXPECT_EQ(faces[0].kind, GFontManagerConstants::kFontKind_trueType);
}

TEST(FontScanner, NamesLoseWhatWouldActOnATerminalOrHideThem) {
    std::string reason;
    // The font's names are UTF-16, made of these bytes.
    const auto faces =
        FontScanner().Scan(MakeTestFont({"Sample-Bold", "S\x1B\x9Bmpl\n", "B\x7Fld\x85"}), reason);
    ASSERT_EQ(faces.size(), 1u) << reason;
    EXPECT_EQ(faces[0].family, "Smpl");
    EXPECT_EQ(faces[0].style, "Bld");
    EXPECT_EQ(CleanName(" a\u202Eb\u2066c\u2029\u061C "), "abc");
}

TEST(FontScanner, ReadsEveryMemberOfACollection) {
    std::string reason;
    const auto faces =
        FontScanner().Scan(MakeTestFontCollection({kBold, {"Other", "Other", "Regular", "1"}}), reason);
    ASSERT_EQ(faces.size(), 2u) << reason;
    EXPECT_EQ(faces[0].postScriptName, "Sample-Bold");
    EXPECT_EQ(faces[1].postScriptName, "Other");
    EXPECT_EQ(faces[1].face, 1);
    EXPECT_EQ(faces[1].kind, GFontManagerConstants::kFontKind_trueTypeCollection);
}

TEST(FontScanner, SaysWhyAFileIsNoFont) {
    FontScanner scanner;
    const auto reasonFor = [&scanner](const std::string& content) {
        std::string reason;
        EXPECT_TRUE(scanner.Scan(content, reason).empty());
        return reason;
    };
    EXPECT_EQ(reasonFor("Dear reader, this is a licence."), "not a font file");
    EXPECT_EQ(reasonFor(""), "not a font file");
    EXPECT_EQ(reasonFor("wOF2\0\1\0\0"), "a web font, which documents cannot use");
    std::string withoutOutlines = MakeTestFont(kBold);
    withoutOutlines.resize(12 + 16 * 10 + 200);
    EXPECT_EQ(reasonFor(withoutOutlines), kReason_Damaged);
}

TEST(FontScanner, SurvivesFontsCutAndChangedAnywhere) {
    FontScanner scanner;
    const std::string font = MakeTestFontCollection({kBold, kBold});
    std::string reason;
    for (size_t size = 0; size < font.size(); size += 7)
        scanner.Scan(font.substr(0, size), reason);
    for (size_t position = 0; position < font.size(); position += 3) {
        std::string changed = font;
        changed[position] = static_cast<char>(~changed[position]);
        for (const FontFace& face : scanner.Scan(changed, reason))
            EXPECT_FALSE(face.postScriptName.empty());
    }
}

TEST(FontNames, AreMadeFitToShow) {
    EXPECT_EQ(CleanName("  Sample \x01 Sans\n "), "Sample  Sans");
    EXPECT_EQ(CleanName("Sam\xFFple"), "Sam\xEF\xBF\xBDple");
    std::string kanji;
    while (kanji.size() < 2 * kMaxNameSize)
        kanji += "\u5b57";
    EXPECT_EQ(CleanName(kanji), kanji.substr(0, kMaxNameSize - kMaxNameSize % 3)) << "no half character";
    EXPECT_LE(CleanName(std::string(100000, '\xFF')).size(), kMaxNameSize);
}

TEST(FontFileExtension, IsKeptWhenItIsOneOfFonts) {
    FontFace face;
    face.kind = GFontManagerConstants::kFontKind_openTypePS;
    EXPECT_EQ(FontFileExtension("Sample.TTF", {face}), ".ttf");
    EXPECT_EQ(FontFileExtension("Sample.exe", {face}), ".otf");
    EXPECT_EQ(FontFileExtension("Sample", {face}), ".otf");
}

}  // namespace
}  // namespace pellwick
