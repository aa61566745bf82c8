// Compares the fast search for font names with the plain one over random documents.
//
//   differential-extractor [DOCUMENTS [SEED]]      exit status 1 when they differ

#include <cstdio>
#include <cstdlib>
#include <random>

#include "PlainFontExtractor.h"
#include "RandomDocument.h"
#include "ScratchFile.h"
#include "SmallChunkExtractor.h"

namespace {

/// Keeps the document that they differ on, and tells how to look at it again.
void Report(const RandomDocument& document, unsigned long seed, unsigned long index) {
    std::FILE* file = std::fopen(("differing." + document.extension).c_str(), "wb");
    if (file != nullptr) {
        std::fwrite(document.content.data(), 1, document.content.size(), file);
        std::fclose(file);
    }
    std::fprintf(stderr,
                 "document %lu of seed %lu differs (chunks of %zu bytes, windows of %zu); it is kept in "
                 "differing.%s\n",
                 index, seed, document.chunkSize, document.windowSize, document.extension.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    const unsigned long count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 200000;
    const unsigned long seed = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : std::random_device{}();
    std::mt19937_64 random(seed);
    size_t documentsWithNames = 0;
    for (unsigned long index = 0; index < count; ++index) {
        const RandomDocument document = MakeRandomDocument(random);
        const ScratchFile file(document.extension, document.content);
        std::set<std::string> names;
        SmallChunkExtractor extractor(file.Path(), document.chunkSize, document.windowSize);
        if (extractor.ExtractFontNames(names) != 0 ||
            names != PlainFontNames(document.extension, document.content, document.chunkSize)) {
            Report(document, seed, index);
            return 1;
        }
        documentsWithNames += names.empty() ? 0 : 1;
    }
    std::printf("%lu documents of seed %lu, %zu with names: no difference\n", count, seed,
                documentsWithNames);
    return 0;
}
