#include "preview/PreviewRenderer.h"

#include <gtest/gtest.h>
#include <png.h>

#include "HostileFonts.h"
#include "TestFonts.h"
#include "common/FontManagerLimits.h"

namespace pellwick {
namespace {

/// How many columns have something in them.
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

FontFace FaceNamed(const std::string& fullName, const std::string& postScriptName) {
    FontFace face;
    face.fullName = fullName;
    face.postScriptName = postScriptName;
    return face;
}

// Every glyph of a test font is a square, half as wide as its size; the one letter that it has is A.
TEST(PreviewRenderer, ShowsTheFullNameInBothSizes) {
    PreviewRenderer renderer;
    const std::string font = MakeTestFont({"X", "X"});
    const NameImage image = renderer.Render(font, FaceNamed("A AA", "AAAAAAAAAA"), 1);
    EXPECT_EQ(image.height, kPreviewHeight);
    EXPECT_NEAR(InkedColumns(image), 3 * 11, 3);
    const NameImage twice = renderer.Render(font, FaceNamed("A AA", "AAAAAAAAAA"), 2);
    EXPECT_EQ(twice.height, 2 * kPreviewHeight);
    EXPECT_NEAR(InkedColumns(twice), 6 * 11, 6);
}

TEST(PreviewRenderer, ShowsThePostScriptNameInWhatGlyphsThereAre) {
    PreviewRenderer renderer;
    const std::string font = MakeTestFont({"X", "X"});
    for (const char* name : {"A\u5b57", "", "broken \xFF"})
        EXPECT_NEAR(InkedColumns(renderer.Render(font, FaceNamed(name, "ABCDE"), 1)), 5 * 11, 5);
    EXPECT_EQ(renderer.Render(font, FaceNamed("", ""), 1).width, 0);
    const int longest = renderer.Render(font, FaceNamed(std::string(100000, 'A'), ""), 2).width;
    EXPECT_NEAR(longest, 2 * kMaxPreviewWidth - 20, 20);
}

TEST(PreviewRenderer, SurvivesAnyBytes) {
    PreviewRenderer renderer;
    const std::string font = MakeTestFont({"X", "X"});
    const FontFace name = FaceNamed("AAAA", "AAAA");
    for (size_t position = 0; position < font.size(); ++position) {
        for (const char damage : {'\x00', '\x7F', '\xFF'}) {
            std::string damaged = font;
            damaged[position] = damage;
            ASSERT_LE(renderer.Render(damaged, name, 1).width, kMaxPreviewWidth);
        }
        renderer.Render(font.substr(0, position), name, 1);
    }
    EXPECT_EQ(renderer.Render("", name, 1).width, 0);
    FontFace absent = name;
    absent.face = 7;
    EXPECT_EQ(renderer.Render(font, absent, 1).width, 0);
}

TEST(EncodePng, MakesAFileThatShowsTheImage) {
    const NameImage image{2, 1, {200, 0}};
    const std::string file = EncodePng(image);
    png_image decoded{};
    decoded.version = PNG_IMAGE_VERSION;
    ASSERT_NE(png_image_begin_read_from_memory(&decoded, file.data(), file.size()), 0) << decoded.message;
    decoded.format = PNG_FORMAT_GA;
    std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(decoded));
    EXPECT_NE(png_image_finish_read(&decoded, nullptr, pixels.data(), 0, nullptr), 0) << decoded.message;
    EXPECT_EQ(pixels, (std::vector<uint8_t>{0, 200, 0, 0}));
    EXPECT_EQ(EncodePng({}), "");
}

}  // namespace
}  // namespace pellwick
