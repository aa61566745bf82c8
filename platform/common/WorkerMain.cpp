#include <exception>

#include "platform/ProgramArguments.h"
#include "platform/Worker.h"

namespace platform {

int RunWorker(int argumentCount, char** arguments, int (*work)(WorkerLine& line)) {
    ProgramArguments words(argumentCount, arguments);
    const auto line = WorkerLine::Open(words.Count(), words.Words());
    if (!line)
        return 2;  // people do not start it
    try {
        return work(*line);
    } catch (const std::exception&) {  // no memory is left: this is the answer
        return 1;
    }
}

}  // namespace platform
