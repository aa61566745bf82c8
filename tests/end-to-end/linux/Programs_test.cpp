// Programs that people work in, each where it is installed: what they show of a document's font before, with and after.
#include "HostWorld.h"
#include "TestFiles.h"
#include "TestFonts.h"
#include "platform/Files.h"

using testing::HasSubstr;
using testing::Not;

namespace {

struct Program {
    const char* path;
    std::vector<std::string> words;  ///< "{}" is the document
    std::string output;              ///< a PDF file; empty: what the program prints counts
};

constexpr char kDocument[] = R"(<svg xmlns="http://www.w3.org/2000/svg" width="200" height="60">
<text x="5" y="30" style="font-family:Sample;font-size:24px">AAAA</text></svg>)";

class ProgramsOfPeople : public testing::TestWithParam<const char*> {
protected:
    /// What the program makes of the document, with the host in front of it or alone: names of fonts.
    std::string FontsBy(const Program& program, bool isAlone) {
        std::vector<std::string> words{program.path};
        words.insert(words.end(), program.words.begin(), program.words.end());
        const std::string document = world.Path("a.svg");
        if (isAlone)
            std::replace(words.begin(), words.end(), std::string("{}"), document);
        else
            words.insert(words.begin(), {BuiltFile(HOST_PROGRAM), "open", document, "--"});
        TestProcess process(words);
        const ProgramResult result = process.Finish();
        if (result.status != 0)
            return "failed: " + result.errors;
        const std::string fonts =
            program.output.empty() ? result.output : world.RunHost({"fonts", program.output}).output;
        platform::RemoveFile(program.output);
        return fonts;
    }

    Program Find(const std::string& name) {
        if (name == "Inkscape") {
            const std::string output = world.Path("a.pdf");
            return {"/usr/bin/inkscape", {"{}", "--export-filename=" + output}, output};
        }
        return {"/usr/bin/bwrap",
                {"--ro-bind", "/", "/", "--dev", "/dev", "--proc", "/proc", "fc-list", ":", "postscriptname"},
                ""};
    }

    HostWorld world;
};

}  // namespace

TEST_P(ProgramsOfPeople, ShowTheFontWhileTheyRunForTheDocument) {
    const Program program = Find(GetParam());
    if (!platform::IsExistingFile(program.path))
        GTEST_SKIP() << program.path << " is not installed";
    world.FontManager().Write("data/fonts/Plain.ttf", MakeTestFont({"Plain-Regular", "Plain"}));
    world.AddFonts({"Sample-Regular"});
    world.FontManager().Write("a.svg", kDocument);
    const std::string before = FontsBy(program, true);
    if (before.starts_with("failed"))
        GTEST_SKIP() << program.path << ' ' << before;
    EXPECT_THAT(before, Not(HasSubstr("Sample")));
    EXPECT_THAT(FontsBy(program, false), HasSubstr("Sample"));
    EXPECT_TRUE(Eventually([&] { return world.VisibleFonts().empty(); }));
    EXPECT_THAT(FontsBy(program, true), Not(HasSubstr("Sample")));
}

INSTANTIATE_TEST_SUITE_P(All, ProgramsOfPeople, testing::Values("Inkscape", "Sandbox"),
                         [](const auto& each) { return std::string(each.param); });
