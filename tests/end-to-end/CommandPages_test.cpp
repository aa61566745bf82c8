// The tables of commands in docs/: each of them is there, does its work as it is written, and none is left out.

#include <fstream>
#include <regex>

#include "HostWorld.h"
#include "platform/Utf8Path.h"

namespace {

using CommandPages = PageTest;
using Words = std::vector<std::string>;

Words WordsOf(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// The first words of the lines behind "Subcommands:".
std::set<std::string> CommandsInHelp(const std::string& help) {
    const std::regex command("\n  ([a-z-]+) ");
    const std::string list = help.substr(help.find("Subcommands:"));
    std::set<std::string> commands;
    for (std::sregex_iterator each(list.begin(), list.end(), command); each != std::sregex_iterator(); ++each)
        commands.insert((*each)[1]);
    return commands;
}

/// The commands of the page's first table, in its order, as they are written: "set add NAME FONT…". Those of a row that
/// are no commands alone have the first word of the row before them.
std::vector<std::string> CommandsOnPage(const char* name, const std::set<std::string>& known) {
    const std::regex quoted("`([^`]+)`");
    std::ifstream page(platform::Utf8Path(SourceFile(std::string("docs/") + name)));
    std::vector<std::string> commands;
    std::string line;
    while (std::getline(page, line) && !line.starts_with("| command"))
        ;
    while (std::getline(page, line) && line.starts_with("|")) {
        const std::string cell = line.substr(0, line.find(" |", 1));
        std::string first;
        for (std::sregex_iterator each(cell.begin(), cell.end(), quoted); each != std::sregex_iterator();
             ++each) {
            const std::string command = (*each)[1];
            first = first.empty() ? WordsOf(command).front() : first;
            commands.push_back(known.count(WordsOf(command).front()) != 0 ? command : first + " " + command);
        }
    }
    return commands;
}

/// The command without what is optional, and with things of this world in the place of the words in capitals.
Words Filled(const std::string& command, std::map<std::string, std::string> things) {
    static const std::regex optional(" ?\\[[^\\]]*\\](?:…)?|…");
    Words words = WordsOf(std::regex_replace(command, optional, ""));
    for (std::string& word : words) {
        const auto thing = things.find(word);
        word = thing != things.end() ? thing->second : word;
    }
    return words;
}

void ExpectOptionsIn(const std::string& help, const std::string& command) {
    static const std::regex option("--[a-z]+");
    for (std::sregex_iterator each(command.begin(), command.end(), option); each != std::sregex_iterator();
         ++each)
        EXPECT_THAT(help, testing::HasSubstr(each->str())) << command;
}

}  // namespace

TEST_F(CommandPages, TheFontManagersTableIsCompleteAndEachOfItsCommandsDoesItsWork) {
    const auto& fontManager = world.FontManager();
    fontManager.WriteFont("Other-Regular");
    world.AddFonts({"Gone-Regular"});
    world.WriteDocument("a.ai", {"Sample-Bold"});
    std::set<std::string> known = CommandsInHelp(fontManager.Run({"--help"}).output);
    const std::map<std::string, std::string> names = {{"remove", "Gone-Regular"},
                                                      {"activate", "Sample-Bold"},
                                                      {"deactivate", "Sample-Bold"},
                                                      {"login", "ana"}};
    std::set<std::string> onPage;
    for (const std::string& command : CommandsOnPage("font-manager.md", known)) {
        const std::string first = WordsOf(command).front();
        if (first == "Pellwick" || first == "serve")  // these go on for ever
            continue;
        onPage.insert(first);
        const auto name = names.find(first);
        std::map<std::string, std::string> things = {{"PATH", world.Path("fonts")},
                                                     {"FONT", "Sample-Bold"},
                                                     {"DOCUMENT", world.Path("a.ai")},
                                                     {"NEW", "Renamed"},
                                                     {"NAME", name != names.end() ? name->second : "Thing"}};
        const Words words = Filled(command, things);
        const ProgramResult result = fontManager.Run(words);
        EXPECT_EQ(result.status, 0) << command << ": " << result.errors;
        if (words.size() > 1 && words[1] == "rename") {  // and back, for the commands that follow
            std::swap(things["NAME"], things["NEW"]);
            EXPECT_EQ(fontManager.Run(Filled(command, things)).status, 0) << command;
        }
        const bool isInGroup =
            words.size() > 1 && (first == "set" || first == "smartlist" || first == "workgroup");
        ExpectOptionsIn(
            fontManager.Run(isInGroup ? Words{first, words[1], "--help"} : Words{first, "--help"}).output,
            command);
    }
    known.erase("serve");
    EXPECT_EQ(onPage, known);
}

TEST_F(CommandPages, TheHostsTableIsCompleteAndEachOfItsCommandsDoesItsWork) {
    const std::string document = world.WriteDocument("a.ai", {"Sample-Bold"});
    std::set<std::string> known = CommandsInHelp(world.RunHost({"--help"}).output);
    std::set<std::string> onPage;
    for (const std::string& command : CommandsOnPage("host.md", known)) {
        const std::string first = WordsOf(command).front();
        onPage.insert(first);
        const ProgramResult result = world.RunHost(Filled(command, {{"FILE", document},
                                                                    {"PROGRAM", BuiltFile(HOST_PROGRAM)},
                                                                    {"ARGUMENT", "--help"},
                                                                    {"KEY", "EnableLogging"},
                                                                    {"VALUE", "1"},
                                                                    {"CHOICE", "7"},
                                                                    {"FOLDER", world.Path("collected")}}));
        const bool isBuilt = result.errors.find("was built without") == std::string::npos;
        EXPECT_EQ(result.status, isBuilt ? 0 : 1) << command << ": " << result.errors;
        ExpectOptionsIn(world.RunHost({first, "--help"}).output, command);
    }
    EXPECT_EQ(onPage, known);
}
