// Words typed after the names of both programs: each text arrives as it was typed, where it belongs, and of
// words that mean nothing to the programs people are told in a line.
#include "CommandLine.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>

#include "Fuzz.h"
#include "PrintableText.h"
#include "cli/PellwickWords.h"

namespace {

using Words = std::vector<std::string>;

void Parse(CLI::App& app, const Words& words) {
    std::vector<const char*> pointers{"program"};
    for (const std::string& word : words)
        pointers.push_back(word.c_str());
    exact_words::Parse(app, static_cast<int>(pointers.size()), pointers.data());
}

std::string Text(FuzzedDataProvider& input) {
    std::string text =
        input.ConsumeBool()
            ? input.ConsumeRandomLengthString(24)
            : input.PickValueInArray<std::string>(
                  {"",      "-",        "--",         "[a,b]",      "[]",      "{}",     "++",     "%%",
                   "a=b",   "--json",   "-h",         "list",       "--help",  "add",    "open",   "set",
                   "'q'",   "`q`",      "\\n",        "/x",         "@f",      "#",      ";",      "\x1F",
                   "menu",  "on",       "--json=1",   "--for",      "--for=1", "create", "events", "--app=x",
                   "\"q\"", "settings", "standalone", "--workgroup"});
    std::erase(text, '\0');  // which ends a word
    return text;
}

/// A right command line, with an option between its first words and its arguments.
void CheckTyped(FuzzedDataProvider& input, CLI::App& app, Words words, const std::string& option,
                const std::string& text, const Words& arguments) {
    const auto isOption = [](const std::string& word) { return word.size() > 1 && word[0] == '-'; };
    const auto command = words.begin() + (words[0] == "open" ? 0 : 2);  // the host has its options before it
    if (isOption(text) || input.ConsumeBool())
        words.insert(command, option + "=" + text);
    else
        words.insert(command, {option, text});
    if (std::any_of(arguments.begin(), arguments.end(), isOption) || input.ConsumeBool())
        words.push_back("--");
    words.insert(words.end(), arguments.begin(), arguments.end());
    try {
        Parse(app, words);
    } catch (const CLI::ParseError& error) {
        Require(false, error.what());
    }
}

/// Any words at all.
void CheckNonsense(FuzzedDataProvider& input, CLI::App& app) {
    Words words;
    while (input.remaining_bytes() > 0 && words.size() < 16)
        words.push_back(Text(input));
    try {
        Parse(app, words);
    } catch (const CLI::ParseError& error) {
        const std::string text = exact_words::FailureText(error);
        Require(!text.empty() && text.find('\n') == std::string::npos && IsPlainText(text),
                "what is wrong is a line for people");
    }
}

}  // namespace

std::vector<std::string> Seeds() {
    return {};
}

void TryInput(const std::string& bytes) {
    FuzzedDataProvider input(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    const int kind = input.ConsumeIntegralInRange(0, 4);
    pellwick::cli::Arguments ours;
    pellwick::cli::Action chosen;
    CommandLine hosts;
    const auto app = kind < 2 ? DescribeCommandLine(hosts) : pellwick::cli::DescribeCommandLine(ours, chosen);
    if (kind == 0 || kind == 2)
        return CheckNonsense(input, *app);
    const std::string text = Text(input);
    const Words arguments = {Text(input), Text(input)};
    const char* const kHolds = "texts arrive as they were typed, and none counts as an option";
    if (kind == 1) {
        CheckTyped(input, *app, {"open"}, "--answers", text, arguments);
        Require(hosts.answers == text && hosts.open.files == arguments, kHolds);
        Require(!hosts.json && !hosts.open.closeAtOnce && hosts.run, kHolds);
    } else if (kind == 3) {
        CheckTyped(input, *app, {"set", "add"}, "--workgroup", text, arguments);
        Require(ours.workgroup == text && ours.name == arguments[0], kHolds);
        Require(ours.words == Words{arguments[1]}, kHolds);
    } else {
        CheckTyped(input, *app, {"smartlist", "create"}, "--set", text, {arguments[0]});
        Require(ours.parts.sets == Words{text} && ours.name == arguments[0], kHolds);
    }
    Require(!ours.options.json && !ours.options.noStart, kHolds);
}
