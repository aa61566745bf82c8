// Pellwick: the font manager's agent and, with a command, its command line.
#include <cstdio>

#include "ForeignHome.h"
#include "cli/PellwickWords.h"
#include "platform/PrivateFolder.h"
#include "platform/ProgramArguments.h"

namespace pellwick::cli {
namespace {

/// Fails when the results could not be written.
ExitStatus AfterOutput(ExitStatus status) {
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (isWritten || status != kExit_Done)
        return status;
    throw Failure(kExit_CouldNot,
                  "done, but the results cannot be written to standard output; see whether its disk is full");
}

int Run(int count, char** words) {
    Arguments arguments;
    Action chosen;
    const auto app = DescribeCommandLine(arguments, chosen);
    try {
        command_line::Parse(*app, count, words);
    } catch (const CLI::ParseError& error) {
        return app->exit(error) == 0 ? kExit_Done : kExit_Usage;
    }
    if (const std::string refusal = command_line::RefusalOfForeignHome(); !refusal.empty())
        throw Failure(kExit_CouldNot, refusal);
    AgentSession session(arguments.options);
    return AfterOutput(chosen(session));
}

}  // namespace
}  // namespace pellwick::cli

int main(int count, char** words) {
    platform::ProgramArguments arguments(count, words);
    platform::KeepNewFilesPrivate();
    try {
        return pellwick::cli::Run(arguments.Count(), arguments.Words());
    } catch (const pellwick::cli::Failure& failure) {
        pellwick::cli::PrintError(failure.what());
        return failure.Status();
    } catch (const std::exception& error) {
        pellwick::cli::PrintError(error.what());
        return pellwick::cli::kExit_CouldNot;
    }
}
