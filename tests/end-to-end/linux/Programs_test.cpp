// Programs that people work in, each where it is installed: what they show of a document's font before, with and after.
#include "HostWorld.h"
#include "TestFonts.h"
#include "platform/Files.h"

using testing::HasSubstr, testing::Not;

TEST(ProgramsOfPeople, ShowTheFontWhileTheyRunForTheDocument) {
    HostWorld world;
    world.FontManager().Write("data/fonts/Plain.ttf", MakeTestFont({"Plain-Regular", "Plain"}));
    world.AddFonts({"Sample-Regular"});
    const std::string document = world.FontManager().Write(
        "a.svg", "<svg xmlns='http://www.w3.org/2000/svg'><text y='30' font-family='Sample'>A</text></svg>");
    const std::string pdf = world.Path("a.pdf");
    /// Names of fonts: of the file that it makes, else what it prints.
    const auto fontsBy = [&](const std::vector<std::string>& command) {
        const ProgramResult result = TestProcess(command).Finish();
        EXPECT_EQ(result.status, 0) << result.errors;
        const bool isMade = platform::IsExistingFile(pdf);
        const std::string fonts = isMade ? world.RunHost({"fonts", pdf}).output : result.output;
        platform::RemoveFile(pdf);
        return fonts;
    };
    for (const std::vector<std::string>& alone :
         std::vector<std::vector<std::string>>{{"/usr/bin/inkscape", document, "--export-filename=" + pdf},
                                               {"/usr/bin/bwrap", "--ro-bind", "/", "/", "--dev", "/dev",
                                                "--proc", "/proc", "fc-list", ":", "postscriptname"}}) {
        if (!platform::IsExistingFile(alone[0]) || TestProcess(alone).Finish().status != 0)
            continue;  // it is not installed, or may not do its work here
        std::vector<std::string> withHost = {BuiltFile(HOST_PROGRAM), "open", document, "--"};
        for (const std::string& word : alone)
            withHost.push_back(word == document ? "{}" : word);
        EXPECT_THAT(fontsBy(alone), Not(HasSubstr("Sample")));
        EXPECT_THAT(fontsBy(withHost), HasSubstr("Sample"));
        EXPECT_TRUE(Eventually([&] { return world.VisibleFonts().empty(); }));
        EXPECT_THAT(fontsBy(alone), Not(HasSubstr("Sample")));
    }
}
