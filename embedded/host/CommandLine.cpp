#include "CommandLine.h"

#include "HostApplications.h"
#include "PrintableText.h"
#include "platform/Files.h"
#include "platform/System.h"

namespace {

constexpr char kExitStatusHelp[] =
    "Exit status: 0 done, 1 could not be done, 2 wrong usage, 3 fonts of a document are missing,\n"
    "5 the font manager cannot be reached, 128 and its number where a signal ended it.\n"
    "Set PLUGINCORE_DEBUG_OUTPUT to a file name (or - for standard error) to read what the core does.";

/// The texts behind options and commands, exactly as they were typed.
using command_line::AddOptionalText;
using command_line::AddRepeatedText;
using command_line::AddText;
using command_line::AddTexts;

constexpr char kRawHelp[] = "Know no formats: search the files' bytes for font names, as the core does";

constexpr char kOpenHelp[] =
    "plugincore-host open [FILE...] [--fonts NAME...] -- PROGRAM [ARGUMENT...]\n"
    "has the fonts activated and becomes PROGRAM, which keeps them for as long as it runs. \"{}\" among its "
    "arguments\n"
    "stands for the documents. The exit status is the program's; 127 when there is none of the name.";

/// What is wrong with the name of a host application; empty for nothing.
std::string RefusalOfHost(const std::string& name) {
    std::string names;
    for (const HostApplication& each : ServedHostApplications(platform::kIsLinux)) {
        if (name == each.name)
            return {};
        names.append(names.empty() ? "" : ", ").append(each.name);
    }
    return "name one of " + names;
}

/// `run` is what the command does once all the words are read.
CLI::App* AddCommand(CLI::App& program, CommandLine& line, const char* name, const char* description,
                     std::function<int()> run) {
    CLI::App* command = program.add_subcommand(name, description);
    command->callback([&line, run = std::move(run)] { line.run = run; });
    return command;
}

/// `what` happens when the time is over, on a signal, or else on Enter.
void AddTime(CLI::App& command, OpenTime& time, const std::string& what) {
    CLI::Option* seconds =
        command.add_option("--for", time.seconds, what + " after so many seconds; else on Enter")
            ->check(CLI::Range(0.0, 1e6));
    command
        .add_flag("--until-signal", time.isUntilSignal,
                  what +
                      " on Ctrl-C or a signal alone, whatever standard input is; the exit status is 128 and "
                      "its number")
        ->excludes(seconds);
}

void DescribeProgram(CLI::App& program, CommandLine& line) {
    program.failure_message([](const CLI::App*, const CLI::Error& error) {
        return "plugincore-host: " + command_line::FailureText(error) + "; see \"plugincore-host --help\"\n";
    });
    program.footer(kExitStatusHelp);
    program.require_subcommand(1);
    program.fallthrough();
    // A path that begins with "/" is not an option; subcommands take this over.
    program.allow_windows_style_options(false);
    AddText(program, "--app", line.host.app, "The host application to pass for")
        ->default_str(line.host.app)
        ->check(RefusalOfHost);
    AddText(program, "--core", line.host.corePath, "The core's library")
        ->default_str(PrintableText(line.host.corePath));
    AddText(program, "--answers", line.host.answers,
            "A JSON file of answers to the questions that dialogs ask");
    program.add_flag("--json", line.json, "Write JSON, one line for each file");
}

void DescribeDocumentCommands(CLI::App& program, CommandLine& line) {
    CLI::App* open =
        AddCommand(program, line, "open", "Open documents and have their fonts activated", [&line] {
            return line.open.program.empty() ? RunOpen(line.host, line.open)
                                             : RunProgram(line.host, line.open);
        });
    AddTexts(*open, "FILE", line.open.files, "The documents, also as file: URLs");
    open->add_flag("--paths", line.open.showsPaths, "Show the fonts' files");
    open->add_flag("--raw", line.open.searchesBytes, kRawHelp);
    AddTime(*open, line.open.time, "Close them");
    CLI::Option* close = open->add_flag("--close", line.open.closeAtOnce, "Close them at once");
    for (const char* time : {"--for", "--until-signal"})
        close->excludes(open->get_option(time));
    AddRepeatedText(*open, "--fonts", line.open.fontNames, "Have fonts of these names activated as well")
        ->expected(CLI::detail::expected_max_vector_size);
    open->footer(kOpenHelp);

    CLI::App* fonts = AddCommand(program, line, "fonts", "List the fonts that documents use",
                                 [&line] { return RunFonts(line.fonts); });
    AddTexts(*fonts, "FILE", line.fonts.files, "The documents")->required();
    fonts->add_flag("--where", line.fonts.showsPlaces, "Show where in the document each is used");
    fonts->add_flag("--raw", line.fonts.searchesBytes, kRawHelp);
}

void DescribeCollect(CLI::App& program, CommandLine& line) {
    CLI::App* collect =
        AddCommand(program, line, "collect", "Copy the fonts that documents use into a folder",
                   [&line] { return RunCollect(line.host, line.collect); });
    AddTexts(*collect, "FILE", line.collect.files, "The documents")->required();
    CLI::Option* folder = AddText(*collect, "--to", line.collect.folder, "The folder; made when missing");
    collect
        ->add_flag("--document-fonts", line.collect.besideDocuments,
                   "Into a folder \"Document fonts\" beside each document instead")
        ->excludes(folder);
    collect
        ->add_option_function<std::string>(
            "--restricted",
            [&line](const std::string& word) { line.collect.leavesOutRestricted = word == "skip"; },
            "Of fonts whose licence forbids embedding: copy them and warn, or leave them out")
        ->default_str("warn")
        ->check(CLI::IsMember({"warn", "skip"}));
}

void DescribeOtherCommands(CLI::App& program, CommandLine& line) {
    CLI::App* settings = AddCommand(program, line, "settings", "Show the preferences, or store one",
                                    [&line] { return RunSettings(line.host, line.settings); });
    AddText(*settings, "KEY", line.settings.key, "Show this one alone");
    AddOptionalText(*settings, "VALUE", line.settings.value, "Store this value");

    CLI::App* menu = AddCommand(program, line, "menu", "Show the plug-in menu, or choose from it",
                                [&line] { return RunMenu(line.host, line.menu); });
    AddText(*menu, "CHOICE", line.menu.choice, "The number or the text of a menu item");
    AddText(*menu, "--document", line.menu.document, "A document to open before");

    CLI::App* events =
        AddCommand(program, line, "events", "Print what the core tells panels, one JSON object a line",
                   [&line] { return RunEvents(line.host, line.events); });
    AddTime(*events, line.events.time, "End");

    AddCommand(
        program, line, "script",
        "Do what standard input says, one JSON object a line: {\"call\": …, \"args\": {…}} makes a call,\n"
        "{\"panel\": {\"messageID\": …}} sends a message as a panel does",
        [&line] { return RunScript(line.host); });
}

void DescribePanel(CLI::App& program, CommandLine& line) {
    CLI::App* panel = AddCommand(program, line, "panel", "Show the panel in a browser of this machine",
                                 [&line] { return RunPanel(line.host, line.panel); });
    AddTexts(*panel, "FILE", line.panel.files, "Documents to keep open meanwhile");
    panel->add_option("--port", line.panel.port, "Listen at this port; else at one that is free")
        ->check(CLI::Range(1, 65535));
    panel->add_flag("--open", line.panel.opensBrowser, "Open the browser");
    AddTime(*panel, line.panel.time, "End");
    AddText(*panel, "--record", line.panel.recording, "Write down all messages, one JSON object a line");
}

}  // namespace

std::unique_ptr<CLI::App> DescribeCommandLine(CommandLine& line) {
    auto program = std::make_unique<CLI::App>(
        "Drives the font auto-activation core from the command line, as a host application would.",
        "plugincore-host");
    DescribeProgram(*program, line);
    DescribeDocumentCommands(*program, line);
    DescribeCollect(*program, line);
    DescribePanel(*program, line);
    DescribeOtherCommands(*program, line);
    return program;
}

void TakeProgram(OpenOptions& open, size_t wordsBehindDashes) {
    if (open.files.size() > wordsBehindDashes || !open.fontNames.empty()) {
        const auto program = open.files.end() - static_cast<ptrdiff_t>(wordsBehindDashes);
        open.program.assign(program, open.files.end());
        open.files.erase(program, open.files.end());
    }
    if (open.files.empty() && open.fontNames.empty())
        throw CLI::RequiredError("FILE");
    for (const std::string& name : open.fontNames) {
        if (platform::IsExistingFile(name))
            throw CLI::ValidationError("--fonts", name + " is a file; name documents before --fonts");
    }
    if (open.program.empty())
        return;
    if (open.program.front().empty() || open.program.front() == "{}")
        throw CLI::ValidationError("--", "name a program behind it");
    if (open.json || open.showsPaths || open.closeAtOnce || open.time.seconds || open.time.isUntilSignal)
        throw CLI::ValidationError("--",
                                   "with a program, nothing is shown and the program's end counts: leave out "
                                   "--json, --paths, --close, --for and --until-signal");
}
