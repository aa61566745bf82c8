// Asks the system for its fonts, for the agent: on Linux the system reads fonts for that, of which a process
// may die.
#include "platform/FontTable.h"
#include "platform/Worker.h"
#include "workers/FontWorkMessages.h"

namespace {

int Work(platform::WorkerLine& line) {
    std::string request;
    std::string_view noFile;
    while (line.Receive(request, noFile)) {
        const auto fonts = platform::FindInstalledFonts();
        if (!line.Answer(fonts ? pellwick::EncodeInstalledFonts(*fonts) : std::string()))
            return 1;
    }
    return 0;
}

}  // namespace

int main(int count, char** words) {
    return platform::RunWorker(count, words, Work);
}
