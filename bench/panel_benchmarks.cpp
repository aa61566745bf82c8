// Panels. A cheap request through the whole bridge, against YAJL alone parsing the request and generating the
// reply; a pop of many pending font events against YAJL generating the message; an idle tick with nothing to
// do, in reads of the clock.

#include <benchmark/benchmark.h>
#include <yajl/yajl_gen.h>
#include <yajl/yajl_tree.h>

#include <chrono>
#include <cstring>
#include <string>

#include "PanelManager.h"
#include "PlugPlug.h"
#include "ProcessorTime.h"
#include "SilentWorld.h"

namespace {

constexpr size_t kRequests = 10000;
constexpr char kRequest[] = R"({"messageID":16})";
constexpr uint32_t kFonts = 1000;
constexpr size_t kTicks = 100000;

/// A host whose panel looks at nothing but the size of what it gets.
struct CountingService : PlugPlugService {
    CountingService() : PlugPlugService{&Add, &Dispatch} {}

    static int32_t Add(PlugPlugService* self, const char*, PlugPlugEventListener listener, void* context) {
        static_cast<CountingService*>(self)->listener = listener;
        static_cast<CountingService*>(self)->context = context;
        return 0;
    }
    static int32_t Dispatch(PlugPlugService* self, const PlugPlugEvent* event) {
        static_cast<CountingService*>(self)->bytes += std::strlen(event->data);
        return 0;
    }
    void Deliver(const char* data) const {
        const PlugPlugEvent event{"com.vantorix.PanelToPlugin", 1, "HTML", nullptr, data};
        listener(&event, context);
    }

    PlugPlugEventListener listener = nullptr;
    void* context = nullptr;
    size_t bytes = 0;
};

class PanelWorld : public SilentWorld {
public:
    PanelWorld() {
        mIsReady = MakeFunctional() && panels.TryRegisterPlugPlug(&service);
        MarquellGlobals::SetConnectedToCore(true);
    }
    /// What the loops below rely on.
    bool IsReady(benchmark::State& state) const {
        if (!mIsReady)
            state.SkipWithError("the panel could not be registered");
        return mIsReady;
    }

    CountingService service;
    PanelManager panels;

private:
    bool mIsReady;
};

using Text = const unsigned char*;

void GenerateText(yajl_gen generator, const char* text) {
    yajl_gen_string(generator, reinterpret_cast<Text>(text), std::strlen(text));
}

/// The text that was generated: its size, so that nothing is left out.
size_t TakeText(yajl_gen generator) {
    Text text = nullptr;
    size_t size = 0;
    yajl_gen_get_buf(generator, &text, &size);
    const std::string copy(reinterpret_cast<const char*>(text), size);
    yajl_gen_free(generator);
    return copy.size();
}

size_t AnswerWithYajl() {
    char error[1024];
    const yajl_val tree = yajl_tree_parse(kRequest, error, sizeof error);
    yajl_gen generator = yajl_gen_alloc(nullptr);
    yajl_gen_map_open(generator);
    GenerateText(generator, "messageID");
    const char* path[] = {"messageID", nullptr};
    yajl_gen_integer(generator, YAJL_GET_INTEGER(yajl_tree_get(tree, path, yajl_t_number)));
    GenerateText(generator, "isWindows");
    yajl_gen_bool(generator, 0);
    yajl_gen_map_close(generator);
    yajl_tree_free(tree);
    return TakeText(generator);
}

size_t GenerateFontEvents() {
    yajl_gen generator = yajl_gen_alloc(nullptr);
    yajl_gen_map_open(generator);
    GenerateText(generator, "messageID");
    yajl_gen_integer(generator, 24);
    GenerateText(generator, "fontIDs");
    yajl_gen_array_open(generator);
    for (uint32_t fontID = 1; fontID <= kFonts; ++fontID)
        yajl_gen_integer(generator, fontID);
    yajl_gen_array_close(generator);
    yajl_gen_map_close(generator);
    return TakeText(generator);
}

void PanelRequest(benchmark::State& state) {
    PanelWorld world;
    if (!world.IsReady(state))
        return;
    ProcessorTime ofBridge;
    ProcessorTime ofYajl;
    for (auto _ : state) {
        state.SetIterationTime(ofBridge.Add([&] {
            for (size_t count = 0; count < kRequests; ++count)
                world.service.Deliver(kRequest);
        }));
        size_t bytes = 0;
        ofYajl.Add([&] {
            for (size_t count = 0; count < kRequests; ++count)
                bytes += AnswerWithYajl();
        });
        benchmark::DoNotOptimize(bytes);
    }
    state.counters["ns_per_request"] = ofBridge.NanosecondsPer(kRequests);
    state.counters["yajl_ns_per_request"] = ofYajl.NanosecondsPer(kRequests);
    state.counters["ratio"] = ofBridge.Seconds() / ofYajl.Seconds();
}

void PopFontEvents(benchmark::State& state) {
    PanelWorld world;
    if (!world.IsReady(state))
        return;
    constexpr size_t kPops = 20;
    ProcessorTime ofPop;
    ProcessorTime ofYajl;
    for (auto _ : state) {
        double seconds = 0;
        for (size_t count = 0; count < kPops; ++count) {
            for (uint32_t fontID = 1; fontID <= kFonts; ++fontID)
                world.panels.PushFontActivatedNotification(fontID);
            seconds += ofPop.Add([&] { world.panels.PopNotifications(); });
        }
        state.SetIterationTime(seconds);
        size_t bytes = 0;
        for (size_t count = 0; count < kPops; ++count)
            ofYajl.Add([&] { bytes += GenerateFontEvents(); });
        benchmark::DoNotOptimize(bytes);
    }
    state.counters["ns_per_font"] = ofPop.NanosecondsPer(kFonts);
    state.counters["yajl_ns_per_font"] = ofYajl.NanosecondsPer(kFonts);
    state.counters["ratio"] = ofPop.Seconds() / ofYajl.Seconds();
}

void IdleTick(benchmark::State& state) {
    PanelWorld world;
    if (!world.IsReady(state))
        return;
    ProcessorTime ofTick;
    ProcessorTime ofClock;
    for (auto _ : state) {
        state.SetIterationTime(ofTick.Add([&] {
            for (size_t count = 0; count < kTicks; ++count) {
                world.panels.SelectSocket(false);
                world.panels.PopNotifications();
                world.panels.TryRegisterPlugPlug(&world.service);
            }
        }));
        ofClock.Add([&] {
            for (size_t count = 0; count < kTicks; ++count)
                benchmark::DoNotOptimize(std::chrono::steady_clock::now());
        });
    }
    state.counters["ns_per_tick"] = ofTick.NanosecondsPer(kTicks);
    state.counters["clock_reads"] = ofTick.Seconds() / ofClock.Seconds();
}

BENCHMARK(PanelRequest)->UseManualTime()->MinTime(1);
BENCHMARK(PopFontEvents)->UseManualTime()->MinTime(0.3);
BENCHMARK(IdleTick)->UseManualTime()->MinTime(0.3);

}  // namespace
