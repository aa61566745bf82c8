// The extension of examples/libreoffice in a real LibreOffice, where there is one.

#include <filesystem>

#include "FontTables.h"
#include "HostWorld.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

namespace {

constexpr char kSystemPython[] = "/usr/bin/python3";  // the one that LibreOffice's bridge is for
constexpr int kSkipped = 77;

/// LibreOffice takes no font file of less than a kilobyte for one; the licence makes up for it.
std::string FontForLibreOffice(const std::string& family, const std::string& style) {
    FontTables tables = TablesOfTestFont({.postScriptName = family + "-" + style,
                                          .family = family,
                                          .style = style,
                                          .licence = std::string(1000, 'x')});
    if (style == "Bold")
        tables["OS/2"].replace(4, 2, Bytes().U16(700).Get());
    return FontOfTables(tables);
}

/// A user with LibreOffice and a font manager that has Almond, regular and bold, and Pecan.
class LibreOffice : public testing::Test {
protected:
    LibreOffice() {
        platform::SetEnvironment("PLUGINCORE_LIBRARY", BuiltFile(CORE_LIBRARY));
        platform::SetEnvironment("SAL_USE_VCLPLUGIN", "svp");
        std::filesystem::create_directories(platform::Utf8Path(mWorld.Path("tmp")));  // it needs TMPDIR
        mWorld.FontManager().Write("data/fonts/base.ttf", FontForLibreOffice("Base", "Regular"));
        for (const auto& [family, style] :
             {std::pair{"Almond", "Regular"}, {"Almond", "Bold"}, {"Pecan", "Regular"}}) {
            const std::string font = mWorld.FontManager().Write(std::string(family) + style + ".ttf",
                                                                FontForLibreOffice(family, style));
            EXPECT_EQ(mWorld.FontManager().Run({"add", font}).status, 0);
        }
        EXPECT_EQ(mWorld.FontManager().Run({"launch-info"}).status, 0);
    }

    void Run(const std::string& test) {
        if (!HasSources())
            GTEST_SKIP() << kNoSources;
        const ProgramResult result =
            TestProcess({kSystemPython, SourceFile("tests/end-to-end/linux/libreoffice_test.py"),
                         mWorld.Path("."), "LibreOffice.test_" + test})
                .Finish();
        if (result.status == kSkipped)
            GTEST_SKIP() << result.errors;
        EXPECT_EQ(result.status, 0) << result.errors;
    }

    HostWorld mWorld;
};

}  // namespace

TEST_F(LibreOffice, EmbedsFontsThatOnlyTheFontManagerHas) {
    Run("embeds_fonts_that_only_the_font_manager_has");
}

TEST_F(LibreOffice, KeepsFontsForAsLongAsDocumentsNeedThem) {
    ASSERT_EQ(mWorld.RunHost({"--app", "LibreOffice", "settings", "CloseFontsOnDocClose", "1"}).status, 0);
    Run("keeps_fonts_for_as_long_as_documents_need_them");
}
