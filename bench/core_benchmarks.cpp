// The core's own share of what hosts wait for. Each measurement stands beside one of the plainest way to do
// its inner work, so that a ratio can be read off one run.

#include <CoreFoundation++/CFRef.h>
#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "FontActivationTracker.h"
#include "GBinaryDocumentFontExtractor.h"
#include "platform/Utf8Path.h"

namespace {

// ---- The tracker: registering fonts with documents, against the two ordered maps that it keeps.

void RegisterFonts(benchmark::State& state) {
    const auto fontCount = static_cast<uint32_t>(state.range(0));
    const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
    const CFRef<CFStringRef> name = cf::String("Bench-Regular");
    FontActivationTracker tracker(nullptr);
    uint32_t next = 0;
    for (auto _ : state) {
        const std::string document = "document " + std::to_string(next % 1000);
        tracker.RegisterFontWithDocument(font.get(), name.get(), 1 + next++ % fontCount,
                                         {false, document, 0});
    }
}
BENCHMARK(RegisterFonts)->Arg(1000)->Arg(1000000);

void TwoMapOperations(benchmark::State& state) {
    const auto fontCount = static_cast<uint32_t>(state.range(0));
    std::map<uint32_t, int> fonts;
    std::map<std::string, std::vector<uint32_t>> documents;
    uint32_t next = 0;
    for (auto _ : state) {
        const std::string document = "document " + std::to_string(next % 1000);
        const uint32_t font = 1 + next++ % fontCount;
        ++fonts[font];
        documents[document].push_back(font);
    }
}
BENCHMARK(TwoMapOperations)->Arg(1000)->Arg(1000000);

// ---- The extractor: a document of 64 MiB in the page cache, against reading it and looking at each byte
// once.

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
