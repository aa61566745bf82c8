#include "preview/PreviewRenderer.h"

#include <gtest/gtest.h>
#include <png.h>

#include <filesystem>

#include "TestFonts.h"
#include "common/Limits.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "preview/PreviewFolder.h"
#include "scan/FontScanner.h"
#include "tests/support/TestWorld.h"

namespace pellwick {
namespace {

struct Image {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> alpha;

    /// How many columns have something in them.
    int InkedColumns() const {
        int inked = 0;
        for (int x = 0; x < width; ++x) {
            bool isInked = false;
            for (int y = 0; y < height; ++y)
                isInked = isInked || alpha[static_cast<size_t>(y * width + x)] > 128;
            inked += isInked ? 1 : 0;
        }
        return inked;
    }
};

Image Decode(const std::string& png) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_memory(&image, png.data(), png.size()), 0) << image.message;
    image.format = PNG_FORMAT_GA;
    std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0) << image.message;
    Image decoded{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    for (size_t index = 1; index < pixels.size(); index += 2)
        decoded.alpha.push_back(pixels[index]);
    return decoded;
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
    const Image image = Decode(renderer.Render(font, FaceNamed("A AA", "AAAAAAAAAA"), 1));
    EXPECT_EQ(image.height, kPreviewHeight);
    EXPECT_NEAR(image.InkedColumns(), 3 * 11, 3);
    const Image twice = Decode(renderer.Render(font, FaceNamed("A AA", "AAAAAAAAAA"), 2));
    EXPECT_EQ(twice.height, 2 * kPreviewHeight);
    EXPECT_NEAR(twice.InkedColumns(), 6 * 11, 6);
}

TEST(PreviewRenderer, ShowsThePostScriptNameInWhatGlyphsThereAre) {
    PreviewRenderer renderer;
    const std::string font = MakeTestFont({"X", "X"});
    for (const char* name : {"A\u5b57", "", "broken \xFF"})
        EXPECT_NEAR(Decode(renderer.Render(font, FaceNamed(name, "ABCDE"), 1)).InkedColumns(), 5 * 11, 5);
    EXPECT_EQ(renderer.Render(font, FaceNamed("", ""), 1), "");
}

TEST(PreviewRenderer, CutsWhatIsTooLong) {
    PreviewRenderer renderer;
    const Image image =
        Decode(renderer.Render(MakeTestFont({"X", "X"}), FaceNamed(std::string(100000, 'A'), ""), 2));
    EXPECT_LE(image.width, 2 * kMaxPreviewWidth);
    EXPECT_GT(image.width, 2 * kMaxPreviewWidth - 40);
}

TEST(PreviewRenderer, SurvivesAnyBytes) {
    PreviewRenderer renderer;
    const std::string font = MakeTestFont({"X", "X"});
    const FontFace name = FaceNamed("AAAA", "AAAA");
    for (size_t position = 0; position < font.size(); ++position) {
        for (const char damage : {'\x00', '\x7F', '\xFF'}) {
            std::string damaged = font;
            damaged[position] = damage;
            const std::string png = renderer.Render(damaged, name, 1);
            if (!png.empty()) {
                ASSERT_LE(Decode(png).width, kMaxPreviewWidth);
            }
        }
        renderer.Render(font.substr(0, position), name, 1);
    }
    EXPECT_EQ(renderer.Render("", name, 1), "");
    FontFace absent = name;
    absent.face = 7;
    EXPECT_EQ(renderer.Render(font, absent, 1), "");
}

TEST(PreviewFolder, MakesEachImageOnceAndTellsFacesOfOneFileApart) {
    test::TestWorld world;
    const std::string content = MakeTestFontCollection({{"AA", "AA"}, {"AAAAAA", "AAAAAA"}});
    const FontVault vault(world.Path("vault"));
    Font font;
    font.file.checksum = Sha256(content);
    font.file.extension = ".ttc";
    ASSERT_FALSE(vault.Store(font.file, content));
    PreviewFolder folder(world.Path("Vorschau \u5b57"), vault);
    font.postScriptName = font.fullName = "AA";
    const auto first = folder.Provide(font);
    font.face = 1;
    font.postScriptName = font.fullName = "AAAAAA";
    const auto second = folder.Provide(font);
    ASSERT_TRUE(first && second);
    std::string narrow;
    std::string wide;
    EXPECT_FALSE(platform::ReadWholeFile(first->path, narrow, 1 << 20));
    EXPECT_FALSE(platform::ReadWholeFile(second->path, wide, 1 << 20));
    EXPECT_LT(Decode(narrow).width, Decode(wide).width);

    folder.Rest();
    vault.Remove(font.file);
    EXPECT_EQ(folder.Provide(font)->doublePath, second->doublePath);  // from what was made before
    std::filesystem::remove(platform::Utf8Path(second->doublePath));
    EXPECT_FALSE(folder.Provide(font));
    ASSERT_FALSE(vault.Store(font.file, content));
    EXPECT_TRUE(folder.Provide(font));
    EXPECT_TRUE(platform::IsExistingFile(second->doublePath));
}

}  // namespace
}  // namespace pellwick
