// plugincore-host: drives the core from the command line as a host application would.

#include <nlohmann/json.hpp>

#include "CommandLine.h"
#include "KnownPrograms.h"
#include "Output.h"
#include "platform/Console.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/ProgramArguments.h"

namespace {

/// The dialogs would be answered by default, and nobody be told why.
bool CanAnswer(const std::string& file) {
    constexpr uint64_t kLargest = uint64_t{16} << 20;
    std::string text;
    return !platform::ReadWholeFile(file, text, kLargest) &&
           nlohmann::json::parse(text, nullptr, false).is_array();
}

}  // namespace

int main(int argc, char** argv) {
    platform::ProgramArguments arguments(argc, argv);
    CommandLine line;
    const auto program = DescribeCommandLine(line);
    try {
        const size_t wordsBehindDashes = command_line::Parse(*program, arguments.Count(), arguments.Words());
        line.open.json = line.json;
        if (program->got_subcommand("open"))
            TakeProgram(line.open, wordsBehindDashes);
        if (program->count("--app") == 0)
            line.host.app = HostOfProgram(line.open.program, line.host.app);
    } catch (const CLI::ParseError& error) {
        const int status = program->exit(error);
        return status == 0 ? exit_status::kDone : exit_status::kWrongUsage;
    }

    platform::SetCurrentProcessName(line.host.app);
    if (!line.host.answers.empty() && !CanAnswer(line.host.answers)) {
        PrintError(line.host.answers + " holds no list of answers; docs/framework.md tells how to write one");
        return exit_status::kFailed;
    }
    if (!line.host.answers.empty())
        line.host.answers = platform::AbsolutePath(line.host.answers);
    line.fonts.json = line.collect.json = line.settings.json = line.menu.json = line.json;
    try {
        const int status = line.run();
        if (!FlushOutput())
            return exit_status::kFailed;
        const int interrupt = platform::InterruptStatus();
        return interrupt != 0 ? interrupt : status;
    } catch (const std::exception& exception) {
        PrintError(exception.what());
        return exit_status::kFailed;
    }
}
