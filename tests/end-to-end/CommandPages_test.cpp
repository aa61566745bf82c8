// The tables of commands in docs/: none is left out, and each of them is there.

#include <fstream>
#include <regex>

#include "HostWorld.h"
#include "TestFiles.h"
#include "platform/Utf8Path.h"

namespace {

using Commands = std::set<std::string>;

/// The first words of the lines behind "Subcommands:".
Commands CommandsInHelp(const std::string& help) {
    const std::regex command("\n  ([a-z-]+) ");
    const std::string list = help.substr(help.find("Subcommands:"));
    Commands commands;
    for (std::sregex_iterator each(list.begin(), list.end(), command); each != std::sregex_iterator(); ++each)
        commands.insert((*each)[1]);
    return commands;
}

/// Of the page's first table: the first word of each row, and those of more commands in the row that are `known`; the
/// others go with the row's first.
Commands CommandsOnPage(const char* name, const Commands& known) {
    const std::regex quoted("`([A-Za-z-]+)[^`]*`");
    std::ifstream page(platform::Utf8Path(SourceFile(std::string("docs/") + name)));
    Commands commands;
    std::string line;
    while (std::getline(page, line) && !line.starts_with("| command"))
        ;
    while (std::getline(page, line) && line.starts_with("|")) {
        const std::string cell = line.substr(0, line.find(" |", 1));
        const std::sregex_iterator first(cell.begin(), cell.end(), quoted);
        for (std::sregex_iterator each = first; each != std::sregex_iterator(); ++each) {
            if (each == first || known.contains((*each)[1]))
                commands.insert((*each)[1]);
        }
    }
    return commands;
}

}  // namespace

TEST(CommandPages, TheirTablesHoldEveryCommandAndNoOther) {
    if (!HasSources())
        GTEST_SKIP() << kNoSources;
    const HostWorld world;
    Commands known = CommandsInHelp(world.RunHost({"--help"}).output);
    EXPECT_EQ(CommandsOnPage("host.md", known), known);
    known = CommandsInHelp(world.FontManager().Run({"--help"}).output);
    known.insert("Pellwick");  // which stands there alone, and in the place of "serve"
    known.erase("serve");
    EXPECT_EQ(CommandsOnPage("font-manager.md", known), known);
}
