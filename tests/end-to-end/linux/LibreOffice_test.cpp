// The extension of examples/libreoffice in a real LibreOffice, where there is one.

#include <unistd.h>

#include <cctype>
#include <filesystem>
#include <sstream>

#include "FontTables.h"
#include "HostWorld.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty, testing::Not, testing::UnorderedElementsAre;

namespace {

/// For unopkg, which refuses root.
const std::vector<std::string> kAsAUser{"/usr/bin/unshare", "--user", "--map-user=1000", "--map-group=1000"};
constexpr char kSystemPython[] = "/usr/bin/python3";  // the one that LibreOffice's bridge is for

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

std::string TextDocument(const std::vector<std::string>& paragraphs) {
    std::string styles;
    std::string text;
    for (const std::string& properties : paragraphs) {
        const std::string name = "P" + std::to_string(text.size());
        styles += "<style:style style:family='paragraph' style:name='" + name + "'><style:text-properties " +
                  properties + "/></style:style>";
        text += "<text:p text:style-name='" + name + "'>A</text:p>";
    }
    return R"(<?xml version="1.0"?><office:document office:version="1.2"
        xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
        xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
        xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
        xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
        office:mimetype="application/vnd.oasis.opendocument.text"><office:automatic-styles>)" +
           styles + "</office:automatic-styles><office:body><office:text>" + text +
           "</office:text></office:body></office:document>";
}

/// The option that has LibreOffice keep its own files there.
std::string ProfileAt(const std::string& path) {
    std::string url = "-env:UserInstallation=file://";
    for (const unsigned char character : path) {
        if (std::isalnum(character) || character == '/' || character == '-')
            url += static_cast<char>(character);
        else
            url +=
                "%" + std::string(1, "0123456789ABCDEF"[character >> 4]) + "0123456789ABCDEF"[character & 15];
    }
    return url;
}

/// A user with LibreOffice, the extension, and a font manager that has Almond, regular and bold, and Pecan.
class LibreOffice : public testing::Test {
protected:
    void SetUp() override {
        for (const std::string program : {"soffice", "unopkg", "pdffonts", "zip", "python3"}) {
            if (!platform::IsExistingFile("/usr/bin/" + program))
                GTEST_SKIP() << "there is no " << program;
        }
        if (TestProcess({kSystemPython, "-c", "import uno"}).Finish().status != 0)
            GTEST_SKIP() << "there is no python3-uno";
        std::vector<std::string> asAUser = kAsAUser;
        asAUser.push_back("/bin/true");
        if (getuid() == 0 && TestProcess(asAUser).Finish().status != 0)
            GTEST_SKIP() << "root may not run unopkg, and not pass for a user here";
        if (!HasSources())
            GTEST_SKIP() << kNoSources;
        platform::SetEnvironment("PLUGINCORE_LIBRARY", BuiltFile(CORE_LIBRARY));
        platform::SetEnvironment("SAL_USE_VCLPLUGIN", "svp");
        std::filesystem::create_directories(platform::Utf8Path(mWorld.Path("tmp")));  // it needs TMPDIR
        mWorld.FontManager().Write("data/fonts/base.ttf", FontForLibreOffice("Base", "Regular"));
        for (const auto& [family, style] :
             {std::pair{"Almond", "Regular"}, {"Almond", "Bold"}, {"Pecan", "Regular"}}) {
            const std::string font = mWorld.FontManager().Write(std::string(family) + style + ".ttf",
                                                                FontForLibreOffice(family, style));
            ASSERT_EQ(mWorld.FontManager().Run({"add", font}).status, 0);
        }
        ASSERT_EQ(mWorld.FontManager().Run({"launch-info"}).status, 0);
        InstallExtension();
    }

    void InstallExtension() {
        const std::string extension = mWorld.Path("fonts.oxt");
        const ProgramResult packed =
            TestProcess({SourceFile("examples/libreoffice/pack"), extension}).Finish();
        ASSERT_EQ(packed.status, 0) << packed.errors;
        std::vector<std::string> command{"/usr/bin/unopkg", "add", "--suppress-license", mProfile, extension};
        if (getuid() == 0)
            command.insert(command.begin(), kAsAUser.begin(), kAsAUser.end());
        const ProgramResult added = TestProcess(command).Finish();
        ASSERT_EQ(added.status, 0) << added.errors;
    }

    /// What the document's PDF embeds, without the tags of subsets; `errors`: what was said meanwhile.
    std::set<std::string> ConvertedFonts(const std::string& document, std::string* errors = nullptr) {
        const ProgramResult converted =
            TestProcess({"/usr/bin/soffice", mProfile, "--headless", "--convert-to", "pdf", "--outdir",
                         mWorld.Path("pdf"), document})
                .Finish();
        EXPECT_EQ(converted.status, 0) << converted.errors;
        if (errors != nullptr)
            *errors = converted.errors;
        const std::string name = platform::NamePart(document);
        std::istringstream lines(
            TestProcess({"/usr/bin/pdffonts", mWorld.Path("pdf/" + name.substr(0, name.rfind('.')) + ".pdf")})
                .Finish()
                .output);
        std::set<std::string> fonts;
        for (std::string line; std::getline(lines, line);) {
            if (const size_t tag = line.find('+'); tag != std::string::npos)
                fonts.insert(line.substr(tag + 1, line.find(' ') - tag - 1));
        }
        return fonts;
    }
    std::string WriteDocument(const std::string& name, const std::vector<std::string>& paragraphs) {
        return mWorld.FontManager().Write(name, TextDocument(paragraphs));
    }

    HostWorld mWorld;
    const std::string mProfile = ProfileAt(mWorld.Path("profile"));
};

/// A LibreOffice that does as it is told.
class DrivenLibreOffice {
public:
    explicit DrivenLibreOffice(const std::string& profile)
        : mProcess({Program(), profile, "--headless", "--accept=pipe,name=" + Pipe() + ";urp;"}),
          mDriver({kSystemPython, SourceFile("tests/end-to-end/linux/drive-libreoffice.py"), Pipe()}) {}

    void Do(const std::string& line) {
        mDriver.WriteLine(line);
        EXPECT_EQ(mDriver.ReadLine(), "") << line;
    }
    void Kill() { mProcess.Kill(); }
    ProgramResult Finish() { return mProcess.Finish(); }

private:
    /// "soffice" is a script that waits for it, and starts it again with a new profile.
    static std::string Program() {
        const auto script = std::filesystem::canonical("/usr/bin/soffice");
        return platform::Utf8Text(script.parent_path() / "soffice.bin");
    }
    static std::string Pipe() { return "plugincore-test-" + std::to_string(getpid()); }

    TestProcess mProcess;
    TestProcess mDriver;
};

}  // namespace

TEST_F(LibreOffice, EmbedsFontsThatOnlyTheFontManagerHas) {
    const std::string letter = WriteDocument(
        "Brief 字.fodt", {"fo:font-family='Almond'", "fo:font-family='Almond' fo:font-weight='bold'"});
    EXPECT_THAT(ConvertedFonts(letter), UnorderedElementsAre("Almond-Regular", "Almond-Bold"));
    EXPECT_THAT(mWorld.VisibleFonts(), IsEmpty());
    EXPECT_THAT(mWorld.Trace(), HasSubstr("CloseAllFonts() returning 0")) << "the core was ended";
    platform::SetEnvironment("PLUGINCORE_LIBRARY", "/nowhere/libPluginCore.so");
    std::string errors;
    EXPECT_THAT(ConvertedFonts(letter, &errors), ElementsAre("Base-Regular"));
    EXPECT_THAT(errors, HasSubstr("Document Fonts: PluginCore cannot be loaded: /nowhere/libPluginCore.so"));
    EXPECT_THAT(errors, Not(HasSubstr("Traceback")));
}

TEST_F(LibreOffice, KeepsFontsForAsLongAsDocumentsNeedThem) {
    ASSERT_EQ(mWorld.RunHost({"--app", "LibreOffice", "settings", "CloseFontsOnDocClose", "1"}).status, 0);
    const std::string almond = WriteDocument("almond.fodt", {"fo:font-family='Almond'"});
    const std::string both =
        WriteDocument("both.fodt", {"fo:font-family='Almond'", "fo:font-family='Pecan'"});
    EXPECT_THAT(ConvertedFonts(almond), ElementsAre("Almond-Regular"));  // and the profile is made
    DrivenLibreOffice office(mProfile);
    const std::set<std::string> none, ofBoth = {"Almond-Regular", "Pecan-Regular"};
    // What is done, one after the other, and the fonts that programs then see.
    const std::pair<std::vector<std::string>, std::set<std::string>> steps[] = {
        {{"open " + almond}, {"Almond-Regular"}},
        {{"open " + both, "close 0"}, ofBoth},
        // The document under its new name, and another one of the old name.
        {{"save 1 " + mWorld.Path("renamed.odt"), "open " + both, "close 1"}, ofBoth},
        {{"open " + both, "close 2"}, ofBoth},  // which was open twice
        {{"close 3"}, none},
        // A drawing that has its first path and font only when it is saved.
        {{"new", "write 4 Pecan", "save 4 " + mWorld.Path("drawing.odg")}, {"Pecan-Regular"}},
        {{"close 4"}, none},
        // One that came from no file.
        {{"stream " + both}, none},
        {{"save 5 " + mWorld.Path("streamed.odt")}, ofBoth},
        {{"close 5"}, none},
        // A file that is open twice, and goes on as two.
        {{"open " + both, "open " + both, "save 7 " + mWorld.Path("copy.odt"), "close 7"}, ofBoth},
        {{"close 6"}, none},
        {{"open " + both}, ofBoth}};
    for (const auto& [lines, fonts] : steps) {
        for (const std::string& line : lines)
            office.Do(line);
        EXPECT_EQ(mWorld.VisibleFonts(), fonts) << "after " << lines.back();
    }
    office.Kill();
    EXPECT_TRUE(Eventually([&] { return mWorld.VisibleFonts().empty(); }));
    EXPECT_THAT(office.Finish().errors, Not(HasSubstr("Document Fonts")));
}
