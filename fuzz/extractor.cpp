// Documents of any content, read in small pieces so that markers are cut everywhere; the fast search has to
// find what the plain one does.
//
// The first three bytes choose the kind, the chunk size and the window size.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

#include "PlainFontExtractor.h"
#include "ScratchFile.h"
#include "SmallChunkExtractor.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr std::array<std::string_view, 5> kExtensions{"pdf", "psd", "aep", "eps", "none"};
    if (size < 3)
        return 0;
    const std::string extension(kExtensions[data[0] % kExtensions.size()]);
    const size_t chunkSize = 64 + size_t{data[1]} * (data[1] % 3 == 0 ? 1 : 64);
    const size_t windowSize = 1 + size_t{data[2]} * 4;
    const std::string content(reinterpret_cast<const char*>(data + 3), size - 3);
    const ScratchFile file(extension, content);
    std::set<std::string> names;
    if (SmallChunkExtractor(file.Path(), chunkSize, windowSize).ExtractFontNames(names) != 0 ||
        names != PlainFontNames(extension, content, chunkSize))
        std::abort();
    return 0;
}
