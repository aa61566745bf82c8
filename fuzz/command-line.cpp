// Words typed after the names of both programs: each text arrives as it was typed, where it belongs, and of
// words that mean nothing to the programs people are told in a line.

#include <fuzzer/FuzzedDataProvider.h>

#include <string>
#include <vector>

#include "CommandLine.h"
#include "PrintableText.h"
#include "Require.h"
#include "cli/PellwickWords.h"

namespace {

/// A command line that is right, and what has to come of it.
class TypedLine {
public:
    explicit TypedLine(FuzzedDataProvider& input) : mInput(input) {}

    void AddWord(const std::string& word) { mWords.push_back(word); }

    /// An option with a text, now and then; the text, if any.
    std::string AddOption(const std::string& name) {
        if (mInput.ConsumeBool())
            return {};
        std::string text = Text();
        if (IsOption(text) || mInput.ConsumeBool()) {
            AddWord(name + "=" + text);
        } else {
            AddWord(name);
            AddWord(text);
        }
        return text;
    }
    /// One that may be repeated.
    std::vector<std::string> AddOptions(const std::string& name) {
        std::vector<std::string> texts;
        for (int left = mInput.ConsumeIntegralInRange(0, 2); left > 0; --left) {
            texts.push_back(Text());
            AddWord(name + "=" + texts.back());
        }
        return texts;
    }
    /// No option follows it.
    std::string AddArgument() {
        std::string text = Text();
        if (!mIsBehindMark && (IsOption(text) || mInput.ConsumeIntegralInRange(0, 7) == 0)) {
            AddWord("--");
            mIsBehindMark = true;
        }
        AddWord(text);
        return text;
    }
    std::vector<std::string> AddArguments() {
        std::vector<std::string> texts(mInput.ConsumeIntegralInRange<size_t>(1, 4));
        for (std::string& text : texts)
            text = AddArgument();
        return texts;
    }

    std::vector<const char*> Words() const {
        std::vector<const char*> words{"program"};
        for (const std::string& word : mWords)
            words.push_back(word.c_str());
        return words;
    }

private:
    static bool IsOption(const std::string& text) { return text.size() > 1 && text[0] == '-'; }

    std::string Text() {
        std::string text =
            mInput.ConsumeBool()
                ? mInput.ConsumeRandomLengthString(24)
                : mInput.PickValueInArray<std::string>(
                      {"",       "-",        "--",  "[a,b]",  "[]",   "{}",  "++",   "%%",  "a=b",
                       "--json", "--json=1", "-h",  "--help", "list", "add", "open", "set", "'q'",
                       "\"q\"",  "`q`",      "\\n", "/x",     "@f",   "#",   ";",    "\x1F"});
        std::erase(text, '\0');  // which ends a word
        return text;
    }

    FuzzedDataProvider& mInput;
    std::vector<std::string> mWords;
    bool mIsBehindMark = false;
};

void ParseWhole(CLI::App& app, const TypedLine& line) {
    const std::vector<const char*> words = line.Words();
    try {
        exact_words::Parse(app, static_cast<int>(words.size()), words.data());
    } catch (const CLI::ParseError& error) {
        Require(false, error.what());
    }
}

void CheckFontManager(FuzzedDataProvider& input) {
    using namespace pellwick::cli;
    Arguments arguments;
    Action chosen;
    const auto app = DescribeCommandLine(arguments, chosen);
    TypedLine line(input);
    Arguments typed;
    if (input.ConsumeBool()) {
        line.AddWord("set");
        line.AddWord("add");
        typed.workgroup = line.AddOption("--workgroup");
        typed.name = line.AddArgument();
        typed.words = line.AddArguments();
    } else {
        line.AddWord("smartlist");
        line.AddWord("create");
        typed.parts = {line.AddOptions("--workgroup"), line.AddOptions("--set"), {}};
        typed.name = line.AddArgument();
    }
    ParseWhole(*app, line);
    Require(arguments.words == typed.words && arguments.name == typed.name &&
                arguments.workgroup == typed.workgroup &&
                arguments.parts.workgroups == typed.parts.workgroups &&
                arguments.parts.sets == typed.parts.sets,
            "texts arrive as they were typed");
    Require(!arguments.options.json && !arguments.options.noStart, "no text counts as an option");
}

void CheckHost(FuzzedDataProvider& input) {
    CommandLine parsed;
    CommandLine typed;
    const auto app = DescribeCommandLine(parsed);
    TypedLine line(input);
    typed.answers = line.AddOption("--answers");
    line.AddWord("open");
    typed.open.files = line.AddArguments();
    ParseWhole(*app, line);
    Require(parsed.answers == typed.answers && parsed.open.files == typed.open.files && !parsed.json &&
                !parsed.open.closeAtOnce,
            "texts arrive as they were typed");
    Require(static_cast<bool>(parsed.run), "a command is chosen");
}

/// Any words at all.
void CheckNonsense(FuzzedDataProvider& input, CLI::App& app) {
    std::vector<std::string> words;
    while (input.remaining_bytes() > 0 && words.size() < 16) {
        words.push_back(
            input.ConsumeBool()
                ? input.ConsumeRandomLengthString(24)
                : input.PickValueInArray<std::string>(
                      {"add", "set", "list", "create", "open", "settings", "events", "menu", "standalone",
                       "--json", "--for", "--for=1", "--app=x", "--help", "--workgroup", "--", "-", "on"}));
    }
    std::vector<const char*> pointers{"program"};
    for (const std::string& word : words)
        pointers.push_back(word.c_str());
    try {
        exact_words::Parse(app, static_cast<int>(pointers.size()), pointers.data());
    } catch (const CLI::ParseError& error) {
        const std::string text = exact_words::FailureText(error);
        Require(!text.empty() && text.find('\n') == std::string::npos && IsPlainText(text),
                "what is wrong is a line for people");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    switch (input.ConsumeIntegralInRange(0, 3)) {
        case 0:
            CheckFontManager(input);
            break;
        case 1:
            CheckHost(input);
            break;
        case 2: {
            pellwick::cli::Arguments arguments;
            pellwick::cli::Action chosen;
            CheckNonsense(input, *pellwick::cli::DescribeCommandLine(arguments, chosen));
            break;
        }
        default: {
            CommandLine line;
            CheckNonsense(input, *DescribeCommandLine(line));
        }
    }
    return 0;
}
