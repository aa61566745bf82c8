// The tracker: documents of 1,000 fonts each, half of which all documents share, registered and closed;
// against the two ordered maps that it keeps, filled and emptied in the same order. Read: nanoseconds per
// font, which should not grow with the number of fonts, and the ratio of the two.

#include <CoreFoundation++/CFRef.h>
#include <benchmark/benchmark.h>

#include <latch>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "FontActivationTracker.h"
#include "ProcessorTime.h"

namespace {

constexpr uint32_t kFontsPerDocument = 1000;
constexpr uint32_t kSharedFonts = kFontsPerDocument / 2;

struct Font {
    CFRef<CFDictionaryRef> record;
    CFRef<CFStringRef> postScriptName;
};

struct Document {
    std::string identifier;
    std::vector<uint32_t> databaseIDs;
};

struct Workload {
    explicit Workload(size_t registrationCount) : documents(registrationCount / kFontsPerDocument) {
        uint32_t nextOwnFont = kSharedFonts;
        for (Document& document : documents) {
            document.identifier = FontActivationTracker::GenerateUniqueIdentifier();
            for (uint32_t index = 0; index < kFontsPerDocument; ++index)
                document.databaseIDs.push_back(1 + (index < kSharedFonts ? index : nextOwnFont++));
        }
        for (uint32_t index = 0; index < kFontsPerDocument; ++index)
            fonts.push_back({cf::MutableDictionary(), cf::String("Bench-" + std::to_string(index))});
    }

    /// Each document finds the same few records, in the cache as a reply that just came is.
    const Font& FontOf(uint32_t databaseID) const { return fonts[databaseID % kFontsPerDocument]; }

    std::vector<Document> documents;
    std::vector<Font> fonts;
};

/// A second thread, asleep: with a single one the C library leaves out what makes its locks atomic, and hosts
/// have many.
class SleepingThread {
public:
    ~SleepingThread() { mEnd.count_down(); }

private:
    std::latch mEnd{1};
    std::jthread mThread{[this] { mEnd.wait(); }};
};

/// Takes everything at once and has nothing to say.
class SilentFontManager : public FontManagerAccess {
public:
    SilentFontManager() { SetFontManagerAccess(this); }
    ~SilentFontManager() override { SetFontManagerAccess(nullptr); }
    bool IsRunning() override { return true; }
    bool IsBatchMode() override { return true; }
    bool IsLoggedIn() override { return true; }
    ErrorCode ActivateDocumentFonts(const std::string&, const DocumentFontLists&) override { return 0; }
    ErrorCode ActivateFontsByID(CFArrayRef, const std::string&, CFMutableArrayRef) override { return 0; }
    PluginActivationStates GetPluginActivationStates(const std::vector<uint32_t>&) override { return {}; }
    int16_t XTDeactivateFont(CFDictionaryRef, uint64_t) override { return 0; }
    ErrorCode DeactivateFonts(CFArrayRef, uint64_t, CFMutableArrayRef) override { return 0; }
    bool SaveDocumentFonts(const std::string&, bool, CFStringRef) override { return true; }
};

void Register(FontActivationTracker& tracker, const Workload& workload) {
    for (const Document& document : workload.documents) {
        const FontActivationTracker::Registration registration{false, document.identifier, 0};
        for (const uint32_t databaseID : document.databaseIDs) {
            const Font& font = workload.FontOf(databaseID);
            tracker.RegisterFontWithDocument(font.record.get(), font.postScriptName.get(), databaseID,
                                             registration);
        }
    }
}

void Close(FontActivationTracker& tracker, const Workload& workload) {
    for (const Document& document : workload.documents)
        tracker.CloseAllFontsForIdentifier(document.identifier, true, nullptr);
}

/// The maps alone: nothing is retained, locked or logged.
class PlainMaps {
public:
    void Register(const Workload& workload) {
        for (const Document& document : workload.documents) {
            for (const uint32_t databaseID : document.databaseIDs) {
                ++mFonts.try_emplace(databaseID, workload.FontOf(databaseID)).first->second.referenceCount;
                mDocuments[document.identifier].push_back(databaseID);
            }
        }
    }
    void Close(const Workload& workload) {
        for (const Document& document : workload.documents) {
            const auto found = mDocuments.find(document.identifier);
            for (const uint32_t databaseID : found->second) {
                const auto font = mFonts.find(databaseID);
                if (--font->second.referenceCount == 0)
                    mFonts.erase(font);
            }
            mDocuments.erase(found);
        }
    }

private:
    struct Record {
        explicit Record(const Font& font)
            : record(font.record.get()), postScriptName(font.postScriptName.get()) {}

        CFDictionaryRef record;
        CFStringRef postScriptName;
        uint64_t deactivationContext = 0;
        bool isAlreadyActive = false;
        bool isPluginActivated = true;
        int32_t referenceCount = 0;
    };
    std::map<uint32_t, Record> mFonts;
    std::map<std::string, std::vector<uint32_t>> mDocuments;
};

void Compare(benchmark::State& state, const ProcessorTime& tracker, const ProcessorTime& maps) {
    const auto registrationCount = static_cast<size_t>(state.range(0));
    state.counters["ns_per_font"] = tracker.NanosecondsPer(registrationCount);
    state.counters["maps_ns_per_font"] = maps.NanosecondsPer(registrationCount);
    state.counters["ratio"] = tracker.Seconds() / maps.Seconds();
}

void RegisterFonts(benchmark::State& state) {
    const Workload workload(static_cast<size_t>(state.range(0)));
    const SleepingThread sleepingThread;
    ProcessorTime ofTracker;
    ProcessorTime ofMaps;
    for (auto _ : state) {
        FontActivationTracker tracker(nullptr);
        state.SetIterationTime(ofTracker.Add([&] { Register(tracker, workload); }));
        PlainMaps maps;
        ofMaps.Add([&] { maps.Register(workload); });
    }
    Compare(state, ofTracker, ofMaps);
}

void RegisterAndCloseFonts(benchmark::State& state) {
    const Workload workload(static_cast<size_t>(state.range(0)));
    const SleepingThread sleepingThread;
    const SilentFontManager fontManager;
    ProcessorTime ofTracker;
    ProcessorTime ofMaps;
    for (auto _ : state) {
        FontActivationTracker tracker(nullptr);
        state.SetIterationTime(ofTracker.Add([&] {
            Register(tracker, workload);
            Close(tracker, workload);
        }));
        PlainMaps maps;
        ofMaps.Add([&] {
            maps.Register(workload);
            maps.Close(workload);
        });
    }
    Compare(state, ofTracker, ofMaps);
}

BENCHMARK(RegisterFonts)->RangeMultiplier(10)->Range(1000, 1000000)->UseManualTime()->MinTime(1);
BENCHMARK(RegisterAndCloseFonts)->RangeMultiplier(10)->Range(1000, 1000000)->UseManualTime()->MinTime(1);

}  // namespace
