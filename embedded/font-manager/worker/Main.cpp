// The process that reads fonts for the agent. It reads untrusted files, so it has access to nothing, and
// the agent starts another one when it ends.
#include "StringConversion.h"
#include "common/FontManagerLimits.h"
#include "platform/Worker.h"
#include "preview/PreviewRenderer.h"
#include "scan/FontScanner.h"
#include "workers/FontWorkMessages.h"

namespace pellwick {
namespace {

std::string AnswerTo(const FontWorkRequest& request, std::string_view file, FontScanner& scanner,
                     PreviewRenderer& renderer) {
    if (request.work == FontWork::kDraw)
        return EncodeImage(renderer.Render(file, request.font, request.scale));
    if (request.work == FontWork::kLicence)
        return EncodeLicence(scanner.ReadLicence(file, request.font.face));
    ScanResult result;
    result.faces = scanner.Scan(file, result.reason);
    return EncodeScanResult(result);
}

int Work(platform::WorkerLine& line) {
    FontScanner scanner;
    PreviewRenderer renderer;
    if (!KeepEncodingLoaded("MACINTOSH", "UTF-8") || !KeepEncodingLoaded("UTF-16BE", "UTF-8") ||
        !KeepEncodingLoaded("UTF-8", "UTF-32LE") || !line.Confine(kFontWorkerLimits))
        return platform::kUnfitStatus;
    std::string message;
    std::string_view file;
    while (line.Receive(message, file)) {
        const auto request = ParseRequest(message);
        if (!request || !line.Answer(AnswerTo(*request, file, scanner, renderer)))
            return 1;
    }
    return 0;
}

}  // namespace
}  // namespace pellwick

int main(int count, char** words) {
    return platform::RunWorker(count, words, pellwick::Work);
}
