// Opening a document whose fonts the host tells as JSON text: everything that the core does, with a font
// manager that has its answer ready; against reading the same text and writing both answers with nlohmann
// JSON alone.

#include <CoreFoundation++/CFRef.h>
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include "DocumentEvents.h"
#include "FontListJSON.h"
#include "ProcessorTime.h"
#include "SilentWorld.h"

namespace {

using nlohmann::json;

constexpr char kPath[] = "/documents/bench.ai";

json RequestedFont(int index) {
    const std::string number = std::to_string(index);
    return {{kGS_PostScriptNameKey, "BenchSans-Bold" + number},
            {kGS_FamilyKey, "Bench Sans " + number},
            {kGS_FontKindKey, "OpenType - TT"},
            {kGS_FoundryKey, "Großgießerei"},
            {kGS_VersionKey, "Version 1.002"}};
}

/// As the font manager in this repository describes a font.
json MatchedFont(int index, int activationState) {
    json font = RequestedFont(index);
    font[kGS_DatabaseIDKey] = index + 1;
    font[kGS_ActivationStateKey] = activationState;
    font[kGS_ChecksumKey] = std::string(64, 'a');
    font[kGS_OutlineFileNameKey] = "BenchSans-Bold.otf";
    font[kGS_OutlineFileSizeKey] = 123456;
    font[kGS_PathKey] = "/home/user/.local/share/fonts/Vantorix/ab/BenchSans-Bold.otf";
    font[kGS_LocationKey] = 1;
    font[kGS_WorkgroupIDKey] = 7;
    font[kGS_WorkgroupNameKey] = "Library";
    font[kGS_WorkgroupTypeKey] = kWorkgroupType_FontLibrary;
    return font;
}

CFRef<CFMutableArrayRef> Records(const json& fonts) {
    CFRef<CFMutableArrayRef> records = cf::MutableArray();
    static_cast<void>(AppendFontsFromJSON(fonts.dump(), FontListForm::kArray, records.get()));
    return records;
}

/// Nine fonts of ten are matched.
struct Workload {
    explicit Workload(int64_t fontCount) {
        for (int index = 0; index < fontCount; ++index) {
            requested.push_back(RequestedFont(index));
            if (index % 10 == 9) {
                unmatched.push_back(RequestedFont(index));
            } else {
                matched.push_back(MatchedFont(index, kFontActivationState_Inactive));
                reported.push_back(MatchedFont(index, kFontActivationState_ActivatedByPlugin));
            }
        }
    }
    json requested = json::array();
    json matched = json::array();
    json reported = json::array();
    json unmatched = json::array();
};

/// What the font manager answers.
struct Reply {
    CFRef<CFMutableArrayRef> matched;
    CFRef<CFMutableArrayRef> unmatched;
    CFRef<CFMutableArrayRef> reported;
};
const Reply* readyReply = nullptr;

void AppendAll(CFMutableArrayRef array, const CFRef<CFMutableArrayRef>& more) {
    CFArrayAppendArray(array, more.get(), CFRangeMake(0, cf::Count(more.get())));
}

uint32_t GiveReadyReply(PluginFacadeRef, CFStringRef, CFArrayRef, CFMutableArrayRef matchedFonts,
                        CFMutableArrayRef unmatchedFonts, CFMutableArrayRef reportedFonts) {
    AppendAll(matchedFonts, readyReply->matched);
    AppendAll(unmatchedFonts, readyReply->unmatched);
    AppendAll(reportedFonts, readyReply->reported);
    return 0;
}

void OpenDocument(benchmark::State& state) {
    const Workload workload(state.range(0));
    const Reply reply{Records(workload.matched), Records(workload.unmatched), Records(workload.reported)};
    readyReply = &reply;
    SilentWorld world;
    world.framework.numbers["CloseFontsOnDocClose"] = 1;
    world.libraries.symbols["ActivateDocumentFontsByPath"] = reinterpret_cast<void*>(&GiveReadyReply);
    if (!world.MakeFunctional())
        return state.SkipWithError("the plug-in is not functional");

    const std::string fontsJSON = workload.requested.dump();
    std::string textA;
    std::string textB;
    std::vector<char> bufferA(size_t{1} << 23);
    std::vector<char> bufferB(bufferA.size());
    ProcessorTime ofCore;
    ProcessorTime ofJSON;
    for (auto _ : state) {
        size_t sizeA = bufferA.size();
        size_t sizeB = bufferB.size();
        int activatedCount = 0;
        state.SetIterationTime(ofCore.Add([&] {
            DocumentEvents::HandleOpenExistingDocument(kPath, fontsJSON, bufferA.data(), &sizeA,
                                                       bufferB.data(), &sizeB, &activatedCount);
        }));
        ofJSON.Add([&] {
            const json parsed = json::parse(fontsJSON);
            textA = workload.reported.dump();
            textB = workload.unmatched.dump();
        });
        if (textA != bufferA.data() || textB != bufferB.data())
            return state.SkipWithError("the core did not answer with what the font manager said");
        DocumentEvents::HandleCloseDocument(kPath, "");
        world.library.calls.clear();
    }
    const auto fontCount = static_cast<size_t>(state.range(0));
    state.counters["ns_per_font"] = ofCore.NanosecondsPer(fontCount);
    state.counters["json_ns_per_font"] = ofJSON.NanosecondsPer(fontCount);
    state.counters["ratio"] = ofCore.Seconds() / ofJSON.Seconds();
}
BENCHMARK(OpenDocument)->Arg(100)->Arg(1000)->Arg(2000)->Arg(10000)->UseManualTime()->MinTime(1);

}  // namespace
