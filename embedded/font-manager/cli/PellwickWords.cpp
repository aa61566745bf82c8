#include "cli/PellwickWords.h"

#include <nlohmann/json.hpp>

#include "agent/Agent.h"
#include "common/Protocol.h"

namespace pellwick::cli {
namespace {

ExitStatus Serve() {
    std::string problem;
    if (RunAgent(Locations::OfThisUser(), problem) != 0)
        throw Failure(kExit_CouldNot, problem);
    return kExit_Done;
}

void DescribeProgram(CLI::App& app, Arguments& arguments) {
    app.add_flag("--json", arguments.options.json, "Print JSON, for programs");
    app.add_flag("--no-start", arguments.options.noStart, "Do not start an agent when none runs");
    app.require_subcommand(0, 1);
    // A path that begins with "/" is not an option; subcommands take this over.
    app.allow_windows_style_options(false);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return "Pellwick: " + command_line::FailureText(error) + "; see \"Pellwick --help\"\n";
    });
}

}  // namespace

CLI::App* AddCommand(CLI::App& app, Action& chosen, const char* name, const char* description,
                     Action action) {
    CLI::App* command = app.add_subcommand(name, description)->fallthrough();
    command->callback([&chosen, action = std::move(action)] { chosen = action; });
    return command;
}

std::unique_ptr<CLI::App> DescribeCommandLine(Arguments& arguments, Action& chosen) {
    auto app =
        std::make_unique<CLI::App>("Pellwick, the font manager: without a command, its agent.", "Pellwick");
    chosen = [](AgentSession&) { return Serve(); };
    DescribeProgram(*app, arguments);
    AddCommand(*app, chosen, "serve", "Run the agent (as without a command)",
               [](AgentSession&) { return Serve(); });
    for (const auto describe :
         {DescribeAddCommand, DescribeFontCommands, DescribeSettingsCommands, DescribeDoctorCommand,
          DescribeWorkgroupCommands, DescribeSetCommands, DescribeSmartListCommands})
        describe(*app, arguments, chosen);
    return app;
}

}  // namespace pellwick::cli
