// The process that reads documents for the host program. It reads untrusted files, so it has access to
// nothing, and the program starts another one when it ends.
#include "DocumentLimits.h"
#include "Formats.h"
#include "platform/Worker.h"

namespace {

int Work(platform::WorkerLine& line) {
    documents::PrepareReaders();
    if (!line.Confine(documents::kDocumentWorkerLimits))
        return platform::kUnfitStatus;
    std::string extension;
    std::string_view content;
    while (line.Receive(extension, content)) {
        if (!line.Answer(EncodeDocumentFonts(documents::ReadDocumentFonts(content, extension))))
            return 1;
    }
    return 0;
}

}  // namespace

int main(int count, char** words) {
    return platform::RunWorker(count, words, Work);
}
