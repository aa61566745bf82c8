// The tables of commands in docs/: each of them is there, does its work as it is written, and none is left out.

#include <fstream>
#include <regex>

#include "HostWorld.h"
#include "platform/Utf8Path.h"

using pellwick::test::WordsOf;

namespace {

using Words = std::vector<std::string>;

/// What the pattern's group matches, one after the other.
Words MatchesOf(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    Words matches;
    for (std::sregex_iterator each(text.begin(), text.end(), expression), end; each != end; ++each)
        matches.push_back((*each)[1]);
    return matches;
}

/// The first words of the lines behind "Subcommands:".
std::set<std::string> CommandsInHelp(const std::string& help) {
    const size_t list = std::min(help.find("Subcommands:"), help.size());
    const Words commands = MatchesOf(help.substr(list), "\n  ([a-z-]+) ");
    return {commands.begin(), commands.end()};
}

/// The commands of the page's first table, in its order, as they are written: "set add NAME FONT…". Those of a row that
/// are no commands alone have the first word of the row before them.
Words CommandsOnPage(const std::string& name, const std::set<std::string>& known) {
    std::ifstream page(platform::Utf8Path(SourceFile("docs/" + name)));
    Words commands;
    std::string line;
    while (std::getline(page, line) && !line.starts_with("| command"))
        ;
    while (std::getline(page, line) && line.starts_with("|")) {
        std::string first;
        for (const std::string& command : MatchesOf(line.substr(0, line.find(" |", 1)), "`([^`]+)`")) {
            first = first.empty() ? WordsOf(command).front() : first;
            commands.push_back(known.count(WordsOf(command).front()) != 0 ? command : first + " " + command);
        }
    }
    return commands;
}

/// The command without what is optional, and with things of this world in the place of the words in capitals.
Words Filled(const std::string& command, const std::map<std::string, std::string>& things) {
    static const std::regex optional(" ?\\[[^\\]]*\\](?:…)?|…");
    Words words = WordsOf(std::regex_replace(command, optional, ""));
    for (std::string& word : words) {
        const auto thing = things.find(word);
        word = thing != things.end() ? thing->second : word;
    }
    return words;
}

class CommandPages : public PageTest {
protected:
    void Try(const std::string& page, const std::function<ProgramResult(const Words&)>& run) {
        const std::map<std::string, std::string> things = {{"PATH", world.Path("fonts")},
                                                           {"FONT", "Sample-Bold"},
                                                           {"NAME", "Sample-Bold"},
                                                           {"NEW", "Renamed"},
                                                           {"DOCUMENT", document},
                                                           {"FILE", document},
                                                           {"PROGRAM", BuiltFile(HOST_PROGRAM)},
                                                           {"ARGUMENT", "--help"},
                                                           {"KEY", "EnableLogging"},
                                                           {"VALUE", "1"},
                                                           {"CHOICE", "7"},
                                                           {"FOLDER", world.Path("collected")}};
        const std::set<std::string> known = CommandsInHelp(run({"--help"}).output);
        std::set<std::string> inHelp;  // with the second words of those that have some
        for (const std::string& command : known) {
            const std::set<std::string> group = CommandsInHelp(run({command, "--help"}).output);
            for (const std::string& second : group)
                inHelp.insert(command + " " + second);
            if (group.empty())
                inHelp.insert(command);
        }
        std::set<std::string> onPage;
        for (const std::string& command : CommandsOnPage(page, known)) {
            Words words = Filled(command, things);
            if (words.front() == "Pellwick") {  // which goes on for ever
                onPage.insert("serve");
                continue;
            }
            onPage.insert(inHelp.count(words[0]) != 0 ? words[0] : words[0] + " " + words.at(1));
            const ProgramResult result = run(words);
            const bool isBuilt = result.errors.find("was built without") == std::string::npos;
            EXPECT_EQ(result.status, isBuilt ? 0 : 1) << command << ": " << result.errors;
            // Back to how it was, for the commands that follow.
            if (words.front() == "remove")
                run({"add", world.Path("fonts")});
            if (words.size() > 3 && words[1] == "rename")
                run({words[0], words[1], words[3], words[2]});
            words.insert(std::find(words.begin(), words.end(), "--"), "--help");
            const std::string help = run(words).output;
            for (const std::string& option : MatchesOf(command, "(--[a-z]+)"))
                EXPECT_THAT(help, testing::HasSubstr(option)) << command;
        }
        EXPECT_EQ(onPage, inHelp);
    }

    const std::string document = world.WriteDocument("a.ai", {"Sample-Bold"});
};

}  // namespace

TEST_F(CommandPages, TheFontManagersTableIsCompleteAndEachOfItsCommandsDoesItsWork) {
    Try("font-manager.md", [this](const Words& words) { return world.FontManager().Run(words); });
}

TEST_F(CommandPages, TheHostsTableIsCompleteAndEachOfItsCommandsDoesItsWork) {
    Try("host.md", [this](const Words& words) { return world.RunHost(words); });
}
