// Asks the system for its fonts, for the agent: on Linux the system reads fonts for that, of which a process
// may die.
#include "platform/FontTable.h"
#include "platform/ProgramArguments.h"
#include "platform/Worker.h"
#include "workers/FontWorkMessages.h"

int main(int count, char** words) {
    platform::ProgramArguments arguments(count, words);
    const auto line = platform::WorkerLine::Open(arguments.Count(), arguments.Words());
    if (!line)
        return 2;  // people do not start it
    std::string request;
    std::string_view noFile;
    try {
        while (line->Receive(request, noFile)) {
            const auto fonts = platform::FindInstalledFonts();
            if (!line->Answer(fonts ? pellwick::EncodeInstalledFonts(*fonts) : std::string()))
                return 1;
        }
        return 0;
    } catch (const std::exception&) {  // no memory is left: this is the answer
        return 1;
    }
}
