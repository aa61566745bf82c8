#include "scan/FontScanner.h"

#include <gtest/gtest.h>

#include <map>

#include "GFontManagerConstants.h"
#include "TestFonts.h"
#include "common/FontManagerLimits.h"
#include "scan/CleanName.h"
#include "scan/FontFiles.h"

namespace pellwick {
namespace {

const TestFontNames kBold{"Sample-Bold", "Sample Sans", "Bold", "2.5"};

TEST(FontScanner, ReadsEveryMemberOfACollectionAndSaysWhyAFileIsNone) {
    FontScanner scanner;
    std::string reason;
    const auto faces =
        scanner.Scan(MakeTestFontCollection({kBold, {"Other", "Other", "Regular", "1"}}), reason);
    ASSERT_EQ(faces.size(), 2u) << reason;
    EXPECT_EQ(faces[0].style, "Bold");
    EXPECT_EQ(faces[0].fullName, "Sample Sans Bold");
    EXPECT_EQ(faces[0].foundry, "TEST");
    EXPECT_EQ(faces[1].postScriptName, "Other");
    EXPECT_EQ(faces[1].face, 1);
    EXPECT_EQ(faces[1].kind, GFontManagerConstants::kFontKind_trueTypeCollection);
    EXPECT_EQ(scanner.Scan(MakeTestFont(kBold), reason)[0].kind, GFontManagerConstants::kFontKind_trueType);
    const std::string withoutOutlines = MakeTestFont(kBold).substr(0, 12 + 16 * 10 + 200);
    for (const auto& [content, why] : std::map<std::string, std::string>{
             {"wOF2@", "a web font, which documents cannot use"}, {withoutOutlines, kReason_Damaged}}) {
        EXPECT_TRUE(scanner.Scan(content, reason).empty());
        EXPECT_EQ(reason, why);
    }
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
