// The extractor: a document of 64 MiB in the page cache, against reading it and looking at each byte once.

#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "GBinaryDocumentFontExtractor.h"
#include "platform/Utf8Path.h"

namespace {

/// A document that is gone with the program.
class LargeDocument {
public:
    LargeDocument() : mPath(std::filesystem::temp_directory_path() / "plugincore-bench.ai") {
        std::ofstream stream(mPath, std::ios::binary);
        const std::string block(1 << 20, '.');
        for (int index = 0; index < 64; ++index)
            stream << block << "<< /FontName /ABCDEF+Bench" << index << " /Flags 4 >>\n";
    }
    ~LargeDocument() {
        std::error_code ignored;
        std::filesystem::remove(mPath, ignored);
    }
    LargeDocument(const LargeDocument&) = delete;
    LargeDocument& operator=(const LargeDocument&) = delete;

    static const std::filesystem::path& Path() {
        static const LargeDocument document;
        return document.mPath;
    }

private:
    std::filesystem::path mPath;
};

void ExtractFontNames(benchmark::State& state) {
    GBinaryDocumentFontExtractor extractor{GFileSystemSpec(platform::Utf8Text(LargeDocument::Path()))};
    std::set<std::string> names;
    for (auto _ : state)
        benchmark::DoNotOptimize(extractor.ExtractFontNames(names));
    state.SetBytesProcessed(state.iterations() * (int64_t{64} << 20));
}
BENCHMARK(ExtractFontNames)->Unit(benchmark::kMillisecond);

void ReadAndScanOnce(benchmark::State& state) {
    std::string content(size_t{65} << 20, '\0');
    for (auto _ : state) {
        std::ifstream stream(LargeDocument::Path(), std::ios::binary);
        stream.read(content.data(), static_cast<std::streamsize>(content.size()));
        benchmark::DoNotOptimize(std::memchr(content.data(), '\x01', static_cast<size_t>(stream.gcount())));
    }
    state.SetBytesProcessed(state.iterations() * (int64_t{64} << 20));
}
BENCHMARK(ReadAndScanOnce)->Unit(benchmark::kMillisecond);

}  // namespace
