// Documents of any content, read in small chunks so that ranges are cut everywhere.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <set>
#include <string>

#include "GBinaryDocumentFontExtractor.h"

namespace {

class SmallChunkExtractor : public GBinaryDocumentFontExtractor {
public:
    SmallChunkExtractor(const std::string& path, size_t chunkSize)
        : GBinaryDocumentFontExtractor(GFileSystemSpec(path)), mChunkSize(chunkSize) {}

protected:
    size_t ChunkSize() const override { return mChunkSize; }

private:
    size_t mChunkSize;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    // No extension: every kind is tried.
    static const std::string path = "/dev/shm/plugincore-fuzz-" + std::to_string(getpid());
    std::FILE* file = std::fopen(path.c_str(), "wb");
    std::fwrite(data + 1, 1, size - 1, file);
    std::fclose(file);
    std::set<std::string> names;
    static_cast<void>(SmallChunkExtractor(path, 64 + data[0]).ExtractFontNames(names));
    std::remove(path.c_str());
    return 0;
}
