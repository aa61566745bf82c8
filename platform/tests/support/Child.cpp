// A program that does as its first argument says: "exit STATUS", "sleep", "be-ready" (and sleep),
// "write FILE WORD...", "tell FILE" (its name and its working folder), "start FILE" (itself to sleep, and write its
// number), or "become WORD...".
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "platform/BecomeProgram.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/ProgramArguments.h"

int main(int count, char** words) {
    const platform::ProgramArguments arguments(count, words);
    const std::string task = arguments[1];
    if (task == "exit")
        return std::atoi(arguments[2].c_str());
    if (task == "write") {
        std::string text;
        for (int index = 3; index < arguments.Count(); ++index)
            text += arguments[index] + "|";
        return platform::WriteWholeFile(arguments[2], text) ? 1 : 0;
    }
    if (task == "tell") {
        const std::string name = platform::Current<platform::Processes>().CurrentName();
        return platform::WriteWholeFile(arguments[2], name + "|" + platform::AbsolutePath(".")) ? 1 : 0;
    }
    if (task == "start") {
        auto& processes = platform::Current<platform::Processes>();
        const std::string program = processes.CurrentExecutablePath();
        platform::SystemError error;
        const auto child = processes.Launch(program, "\"" + program + "\" sleep", error);
        return !child || platform::WriteWholeFile(arguments[2], std::to_string(child->Id())) ? 1 : 0;
    }
    if (task == "become") {
        std::vector<std::string> program;
        for (int index = 2; index < arguments.Count(); ++index)
            program.emplace_back(arguments[index]);
        int status = 1;
        return platform::BecomeProgram(program, status) ? 1 : status;
    }
    if (task == "be-ready")
        platform::NotifyReadyForInput();
    std::this_thread::sleep_for(std::chrono::seconds(30));
    return 0;
}
