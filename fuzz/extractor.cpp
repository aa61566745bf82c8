// Documents of any content, read through small windows so that markers are cut everywhere; what is found does
// not depend on them. The first three bytes choose the kind, the chunk size and the window size.

#include "Fuzz.h"
#include "SmallChunkExtractor.h"
#include "TemporaryFolder.h"

std::vector<std::string> Seeds() {
    return {};
}

void TryInput(const std::string& input) {
    constexpr const char* kExtensions[] = {"pdf", "psd", "aep", "eps", "none"};
    if (input.size() < 3)
        return;
    const auto choice = [&](size_t index) { return size_t{static_cast<uint8_t>(input[index])}; };
    const std::string extension = kExtensions[choice(0) % std::size(kExtensions)];
    const size_t chunkSize = 64 + choice(1) * (choice(1) % 3 == 0 ? 1 : 64);
    static const TemporaryFolder folder;
    const std::string path = folder.Write("document." + extension, input.substr(3));
    std::set<std::string> names, namesOfOneWindow;
    Require(SmallChunkExtractor(path, chunkSize, 1 + choice(2) * 4).ExtractFontNames(names) == 0 &&
                SmallChunkExtractor(path, chunkSize, 1 << 20).ExtractFontNames(namesOfOneWindow) == 0,
            "documents can be read");
    Require(names == namesOfOneWindow, "any window shows the same");
}
