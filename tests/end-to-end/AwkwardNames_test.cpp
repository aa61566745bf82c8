// Names that mean something to a parser of command lines, or do something to a terminal.

#include <algorithm>

#include "HostWorld.h"
#include "PrintableText.h"
#include "TestFonts.h"
#include "platform/Files.h"

using testing::ElementsAre, testing::HasSubstr;

namespace {

/// Words that a parser might split, unwrap, take for options or for the end of them, and what comes of that.
const std::vector<std::string> kAwkwardNames = {
    "[a,b]", "[]",  "[a]", "{}",       "%%",  "++", "a,b", "-x",  "--json", "--",
    "-",     "---", "'q'", "\"q\"",    "a=b", "/x", "@f",  "`q`", "add",    "list",
    "serve", "\\n", "a;b", "[--json]", "a",   "b",  "q",   "x",   "f",      "n"};

/// Fonts of families of these names.
void AddAwkwardFonts(HostWorld& world) {
    std::vector<std::string> command{"add"};
    for (const std::string& name : kAwkwardNames) {
        const std::string font = "Awkward-" + std::to_string(command.size());
        command.push_back(world.FontManager().Write(font + ".ttf", MakeTestFont({font, name})));
    }
    ASSERT_EQ(world.FontManager().Run(command).status, 0);
}

std::vector<std::string> FamiliesOf(const json& fonts) {
    std::vector<std::string> names;
    for (const json& font : fonts)
        names.push_back(font.at(kGS_FamilyKey));
    return names;
}

/// Nothing that a terminal acts on, but for the ends of lines.
bool IsHarmless(std::string text) {
    std::erase(text, '\n');
    return IsPlainText(text);
}

/// A name with a control sequence of either kind, a forged line, an override and a byte that is no text.
const std::string kHostile =
    "x\x1B[31m\nforged\xC2\x9B"
    "2J\xE2\x80\xAE"
    "fdp\x7F";

/// The words with kHostile for a final "X" and a document's path for "D".
std::vector<std::string> CommandOf(const std::string& words, const std::string& document) {
    std::vector<std::string> command = pellwick::test::WordsOf(words);
    for (std::string& word : command) {
        if (const char last = word.back(); last == 'X' || last == 'D')
            word.replace(word.size() - 1, 1, last == 'X' ? kHostile : document);
    }
    return command;
}

}  // namespace

TEST(AwkwardNames, AreTakenAsTheyAreTyped) {
    HostWorld world;
    ASSERT_NO_FATAL_FAILURE(AddAwkwardFonts(world));
    const auto& fontManager = world.FontManager();
    const auto ask = [&](const std::vector<std::string>& words) {
        const auto result = fontManager.Run(words);
        EXPECT_EQ(result.status, 0) << result.errors;
        return json::parse(result.output, nullptr, false);
    };
    for (const std::string& name : kAwkwardNames) {
        EXPECT_THAT(FamiliesOf(ask({"--json", "activate", "--", name})["fonts"]), ElementsAre(name));
        if (name.front() != '-' || name == "-") {
            EXPECT_THAT(FamiliesOf(ask({"activate", name, "--json"})["fonts"]), ElementsAre(name));
        }
        EXPECT_THAT(FamiliesOf(ask({"--json", "deactivate", "n", "--", name, "f"})["fonts"]),
                    ElementsAre("n", name, "f"));
        EXPECT_EQ(json::parse(world.RunHost({"--json", "fonts", "--", name}).output)["file"], name);
        // As values of options.
        ASSERT_EQ(fontManager.Run({"workgroup", "create", "--", name}).status, 0) << name;
        ASSERT_EQ(fontManager.Run({"set", "create", "--workgroup=" + name, "--", name}).status, 0) << name;
        EXPECT_EQ(ask({"--json", "set", "list", "--workgroup=" + name})["sets"][0]["name"], name);
        const auto list = fontManager.Run({"smartlist", "create", "--set=" + name, "--", "list of " + name});
        EXPECT_EQ(list.status, 0) << list.errors;
    }
    EXPECT_THAT(fontManager.Run({"activate", ""}).errors, HasSubstr("no font is called \"\""));
    EXPECT_EQ(fontManager.Run({"activate", "--", "-x", "[a,b]", "--no-start"}).status, 1)
        << "behind the two hyphens there are no options";
    EXPECT_EQ(fontManager.Run({"set", "create", "--workgroup=", "an option without a text"}).status, 0);
    EXPECT_EQ(fontManager.Run({"activate", "x", "--json=[a,b]"}).status, 2);
}

TEST(AwkwardNames, DoNothingToATerminal) {
    if (platform::kPathSeparator != '/')
        GTEST_SKIP() << "words and files have names that are text on this system";
    HostWorld world;
    const auto& fontManager = world.FontManager();
    // A document of a hostile name, in whose bytes there is another one.
    const std::string name = "a/FontName /" + kHostile + "/ >>";
    const std::string document = fontManager.Write(kHostile + ".ai", name);
    fontManager.Run({"add", world.FontManager().WriteFont("Sample-Bold")});
    ASSERT_EQ(fontManager.Run({"launch-info"}).status, 0);
    for (const char* words : {"activate X", "add D", "set show X", "set list --workgroup X", "X", "--X",
                              "standalone X", "smartlist fonts X", "login X", "workgroup create X",
                              "--json add D", "smartlist create X", "set create X", "remove X"}) {
        const auto result = fontManager.Run(CommandOf(words, document));
        EXPECT_NE(result.status, 0) << words;
        EXPECT_TRUE(IsHarmless(result.output + result.errors)) << words << result.output << result.errors;
        EXPECT_LE(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    }
    for (const char* words :
         {"fonts D", "fonts D D", "fonts X", "--json fonts D", "--json fonts \xFFX", "open D --close",
          "--json open D --close", "open X", "settings X", "settings CurrentWorkgroup X", "menu X",
          "menu --document D", "--X", "--core X settings", "--app X settings"}) {
        const auto result = world.RunHost(CommandOf(words, document));
        EXPECT_TRUE(IsHarmless(result.output + result.errors)) << words << result.output << result.errors;
    }
    // Programs read the names as they are.
    const auto result = world.RunHost({"--json", "fonts", document});
    EXPECT_EQ(json::parse(result.output)["file"], document);
    EXPECT_THAT(world.RunHost({"fonts", document, document}).output, HasSubstr("\\u{202E}fdp"));
}
