// The host plug-in for GIMP, in GIMP without its windows.
#include <filesystem>

#include "HostWorld.h"
#include "TestFonts.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace {

constexpr char kWords[] = R"(
(define (count-fonts) (car (gimp-fonts-get-list "Sample")))
(define (look-on) (let ((end (+ (realtime) 2))) (while (< (realtime) end) (gimp-image-list))))
(define (wait-for n)
  (let ((end (+ (realtime) 20)))
    (while (and (< (realtime) end) (not (= n (count-fonts)))) (gimp-image-list))
    (gimp-message (string-append "fonts: " (number->string (count-fonts))))))
(define (make name)
  (let* ((image (car (gimp-image-new 99 99 RGB))) (text (car (gimp-text-layer-new image "A" "Sample" 40 PIXELS))))
    (gimp-image-insert-layer image text 0 0)
    (gimp-xcf-save 0 image text name name)
    (gimp-image-delete image)))
(define (load name) (car (gimp-file-load RUN-NONINTERACTIVE name name)))
)";

bool MissesPlugin(const ProgramResult& result) {
    return (result.errors + result.output).find("Unable to run plug-in \"plugincore-gimp\"") !=
           std::string::npos;
}

}  // namespace

TEST(GimpPlugin, FontsComeAndGoInGimpWithTheImagesThatUseThem) {
    constexpr char kGimp[] = "/usr/bin/gimp";
    if (!platform::IsExistingFile(kGimp))
        GTEST_SKIP() << kGimp << " is not installed";
    HostWorld world;
    world.FontManager().Write("data/fonts/Plain.ttf", MakeTestFont({"Plain-Regular", "Plain"}));
    world.AddFonts({"Sample-Regular"});
    ASSERT_EQ(world.RunHost({"--app", "GIMP", "settings", "CloseFontsOnDocClose", "1"}).status, 0);
    const auto plugin = platform::Utf8Path(BuiltFile(GIMP_PLUGIN));
    const auto folder = platform::Utf8Path(world.Path("gimp/plug-ins"));
    std::filesystem::create_directories(folder);
    std::filesystem::create_directory_symlink(plugin.parent_path(), folder / plugin.filename());
    platform::SetEnvironment("GIMP2_DIRECTORY", world.Path("gimp"));
    const std::string first = '"' + world.Path("first.xcf") + '"';
    const std::string second = '"' + world.Path("second.xcf") + '"';
    // Two images share a font, one of their files is open twice for a while, and one goes on under another name.
    const std::string words =
        std::string(kWords) + "(make " + first + ") (make " + second + ") (wait-for 0)" + "(define a (load " +
        first + ")) (define b (load " + second + ")) (define c (load " + second +
        ")) (wait-for 1) (look-on) (gimp-image-delete c) (gimp-image-set-filename a \"" +
        world.Path("third.xcf") + "\") (look-on) (gimp-image-delete a)" +
        "(look-on) (wait-for 1) (gimp-image-delete b) (wait-for 0)";
    ProgramResult result;
    // Now and then GIMP cannot start any plug-in, its own ones neither, and says "(Success)".
    for (int attempt = 0; attempt == 0 || (attempt < 3 && MissesPlugin(result)); ++attempt)
        result = TestProcess({kGimp, "-i", "-d", "-b", words, "-b", "(gimp-quit 1)"}).Finish();
    if (MissesPlugin(result))
        GTEST_SKIP() << result.errors;
    std::string fonts;
    std::istringstream lines(result.errors + result.output);
    for (std::string line; std::getline(lines, line);) {
        if (const size_t at = line.find("fonts: "); at != std::string::npos)
            fonts += line.substr(at + 7) + " ";
    }
    EXPECT_EQ(fonts, "0 1 1 0 ") << result.errors << result.output;
    for (const char* call : {"SetPathForDocument", "HandleSaveDocument"})
        EXPECT_EQ(CountOf(world.Trace(), std::string(call) + "('" + world.Path("third.xcf")), 1) << call;
    EXPECT_TRUE(Eventually([&] { return world.VisibleFonts().empty(); }));
}
