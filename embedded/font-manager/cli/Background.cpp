// Starts the agent where it gets no console window, which Windows gives to its program when a user logs on.
#include "platform/Files.h"
#include "platform/Processes.h"

int main() {
    auto& processes = platform::Current<platform::Processes>();
    const std::string agent = platform::FolderPart(processes.CurrentExecutablePath()) + "Pellwick.exe";
    platform::SystemError error;
    return processes.Launch(agent, "\"" + agent + "\" serve", error) != nullptr ? 0 : 1;
}
