// plugincore-host: drives the core from the command line as a host application would.

#include "Commands.h"
#include "ExactWords.h"
#include "Output.h"
#include "PrintableText.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/ProgramArguments.h"

namespace {

constexpr char kExitStatusHelp[] =
    "Exit status: 0 done, 1 could not be done, 2 wrong usage, 3 fonts of a document are missing,\n"
    "5 the font manager cannot be reached.\n"
    "Set PLUGINCORE_DEBUG_OUTPUT to a file name (or - for standard error) to read what the core does.";

/// The texts behind options and commands, exactly as they were typed.
using exact_words::AddText;
using exact_words::AddTexts;

constexpr char kHostNamesHelp[] =
    "name a host application: it holds After, Illustrator, InCopy, InDesign, Photoshop or Sketch";

/// The core serves processes with such names alone.
bool NamesAHost(const std::string& name) {
    for (const char* word : {"After", "Illustrator", "InCopy", "InDesign", "Photoshop", "Sketch"}) {
        if (name.find(word) != std::string::npos)
            return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    platform::ProgramArguments arguments(argc, argv);
    CLI::App program{
        "Drives the font auto-activation core from the command line, as a host application would.",
        "plugincore-host"};
    program.failure_message([](const CLI::App*, const CLI::Error& error) {
        return "plugincore-host: " + exact_words::FailureText(error) + "; see \"plugincore-host --help\"\n";
    });
    program.footer(kExitStatusHelp);
    program.require_subcommand(1);
    program.fallthrough();
    // A path that begins with "/" is no option; subcommands take this over.
    program.allow_windows_style_options(false);

    HostOptions host{"Illustrator2025", CoreLibrary::DefaultPath()};
    std::string answers;
    bool json = false;
    AddText(program, "--app", host.app, "The host application to pass for")
        ->default_str(host.app)
        ->check([](const std::string& name) { return NamesAHost(name) ? "" : kHostNamesHelp; });
    AddText(program, "--core", host.corePath, "The core's library")
        ->default_str(PrintableText(host.corePath));
    AddText(program, "--answers", answers, "A JSON file of answers to the questions that dialogs ask");
    program.add_flag("--json", json, "Write JSON, one line for each file");

    OpenOptions open;
    double seconds = 0;
    CLI::App* openCommand = program.add_subcommand("open", "Open documents and have their fonts activated");
    AddTexts(*openCommand, "FILE", open.files, "The documents")->required();
    CLI::Option* closeOption = openCommand->add_flag("--close", open.closeAtOnce, "Close them at once");
    CLI::Option* forOption =
        openCommand->add_option("--for", seconds, "Close them after so many seconds; else on Enter")
            ->check(CLI::Range(0.0, 1e6));
    forOption->excludes(closeOption);

    std::vector<std::string> files;
    CLI::App* fontsCommand = program.add_subcommand("fonts", "List the font names that documents hold");
    AddTexts(*fontsCommand, "FILE", files, "The documents")->required();

    SettingsOptions settings;
    CLI::App* settingsCommand = program.add_subcommand("settings", "Show the preferences, or store one");
    std::string value;
    AddText(*settingsCommand, "KEY", settings.key, "Show this one alone");
    CLI::Option* valueOption = AddText(*settingsCommand, "VALUE", value, "Store this value");

    MenuOptions menu;
    CLI::App* menuCommand = program.add_subcommand("menu", "Show the plug-in menu, or choose from it");
    AddText(*menuCommand, "CHOICE", menu.choice, "The number or the text of a menu item");
    AddText(*menuCommand, "--document", menu.document, "A document to open before");

    double eventsSeconds = 0;
    CLI::App* eventsCommand =
        program.add_subcommand("events", "Print what the core tells panels, one JSON object a line");
    CLI::Option* eventsForOption =
        eventsCommand->add_option("--for", eventsSeconds, "End after so many seconds; else on Enter")
            ->check(CLI::Range(0.0, 1e6));

    CLI::App* scriptCommand = program.add_subcommand(
        "script",
        "Do what standard input says, one JSON object a line: {\"call\": …, \"args\": {…}} makes a call,\n"
        "{\"panel\": {\"messageID\": …}} sends a message as a panel does");

    try {
        exact_words::Parse(program, arguments.Count(), arguments.Words());
    } catch (const CLI::ParseError& error) {
        const int status = program.exit(error);
        return status == 0 ? exit_status::kDone : exit_status::kWrongUsage;
    }

    platform::SetCurrentProcessName(host.app);
    if (!answers.empty())
        platform::SetEnvironment("PLUGINCORE_ANSWERS", platform::AbsolutePath(answers));
    open.json = settings.json = menu.json = json;
    if (*forOption)
        open.seconds = seconds;
    if (*valueOption)
        settings.value = value;
    EventsOptions events;
    if (*eventsForOption)
        events.seconds = eventsSeconds;
    try {
        const int status = *fontsCommand      ? RunFonts(files, json)
                           : *scriptCommand   ? RunScript(host)
                           : *settingsCommand ? RunSettings(host, settings)
                           : *menuCommand     ? RunMenu(host, menu)
                           : *eventsCommand   ? RunEvents(host, events)
                                              : RunOpen(host, open);
        return FlushOutput() ? status : exit_status::kFailed;
    } catch (const std::exception& exception) {
        PrintError(exception.what());
        return exit_status::kFailed;
    }
}
