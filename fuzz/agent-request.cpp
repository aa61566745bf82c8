// What clients send to the agent: requests of every kind with arguments of right and wrong types, parts of
// several clients' requests between one another, and bytes of any content. Every request has its answer, and
// afterwards the records agree with one another and with what programs see.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <vector>

#include "AgentWorld.h"
#include "FontRecordKeys.h"
#include "Require.h"
#include "Seeds.h"
#include "TarnwickPluginInterface.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "ipc/FrameBuffer.h"

using namespace pellwick;

namespace {

constexpr const char* kMethods[] = {
#define NAME_OF_METHOD(name, arguments, result) #name,
    PELLWICK_METHODS(NAME_OF_METHOD)
#undef NAME_OF_METHOD
};

FontLibrary& Library() {
    static FontLibrary library;
    return library;
}

/// Makes values out of an input.
class ValueMaker {
public:
    explicit ValueMaker(FuzzedDataProvider& input) : mInput(input) {}

    Json Flag() { return OrOther(mInput.ConsumeBool()); }
    Json Number() { return OrOther(PlainNumber()); }
    Json Text() { return OrOther(PlainText()); }
    Json TextOrNumber() { return mInput.ConsumeBool() ? Text() : Number(); }
    Json Path() {
        const auto& paths = Library().Paths();
        return OrOther(paths[mInput.ConsumeIntegralInRange<size_t>(0, paths.size() - 1)]);
    }
    Json Numbers() {
        return OrOther(Repeated([this] { return Number(); }));
    }
    Json Fonts() {
        return OrOther(Repeated([this] { return mInput.ConsumeBool() ? Number() : Font(); }));
    }

private:
    static constexpr int kMaxDepth = 3;

    Json Font() {
        if (mInput.ConsumeBool())
            return PlainText();
        return {{kGS_DatabaseIDKey, Number()}, {kGS_PostScriptNameKey, Text()},
                {kGS_FamilyKey, Text()},       {"Style", Text()},
                {kGS_FoundryKey, Text()},      {kGS_FontKindKey, Text()}};
    }

    Json PlainNumber() {
        switch (mInput.ConsumeIntegralInRange(0, 9)) {
            case 0:
                return mInput.PickValueInArray<int64_t>({-2, -1, 0, INT32_MAX, int64_t{INT32_MAX} + 1,
                                                         UINT32_MAX, int64_t{UINT32_MAX} + 2, INT64_MIN,
                                                         INT64_MAX});
            case 1:
                return mInput.ConsumeIntegral<uint64_t>();
            case 2:
            case 3:
                return mInput.ConsumeIntegralInRange<int64_t>(1, AgentWorld::kLargestID);
            default:
                return mInput.ConsumeIntegralInRange<int64_t>(1, 3);
        }
    }

    std::string PlainText() {
        switch (mInput.ConsumeIntegralInRange(0, 9)) {
            case 0:
                return mInput.ConsumeRandomLengthString(40);
            case 1:
                return std::string(mInput.PickValueInArray<size_t>({kMaxNameSize, kMaxNameSize + 1}), 'x');
            default:
                return mInput.PickValueInArray<std::string>(
                    {"Alpha-Regular", "alpha-regular", "Alpha", "Alpha Bold", "Beta", "1", "Mine", "Yours",
                     "", " ", "\xFF", std::string("a\0b", 3), kAllWorkgroupsName, "System Fonts",
                     "Font Library (LOCALIZE ME)", "/doc.ai"});
        }
    }

    /// Now and then a value of whatever type.
    Json OrOther(Json value) { return mInput.ConsumeIntegralInRange(0, 15) != 0 ? value : Any(0); }

    Json Any(int depth) {
        switch (mInput.ConsumeIntegralInRange(0, depth < kMaxDepth ? 6 : 4)) {
            case 0:
                return nullptr;
            case 1:
                return mInput.ConsumeBool();
            case 2:
                return mInput.PickValueInArray({0.5, -1e300, std::numeric_limits<double>::infinity()});
            case 3:
                return PlainNumber();
            case 4:
                return PlainText();
            case 5:
                return Repeated([&] { return Any(depth + 1); });
            default:
                return {{PlainText(), Any(depth + 1)}, {kGS_DatabaseIDKey, Any(depth + 1)}};
        }
    }

    template <class Make>
    Json Repeated(const Make& make) {
        Json values = Json::array();
        for (int left = mInput.ConsumeIntegralInRange(0, 4); left > 0; --left)
            values.push_back(make());
        return values;
    }

    FuzzedDataProvider& mInput;
};

/// What a command may take for a member of its arguments.
Json ValueFor(ValueMaker& values, std::string_view name) {
    using Make = Json (ValueMaker::*)();
    using namespace member;
    static const auto& makers =
        *new std::map<std::string_view, Make>{{kFonts, &ValueMaker::Fonts},
                                              {kPath, &ValueMaker::Path},
                                              {kName, &ValueMaker::Text},
                                              {kNewName, &ValueMaker::Text},
                                              {kDocument, &ValueMaker::Text},
                                              {kUsage, &ValueMaker::Text},
                                              {kSets, &ValueMaker::Numbers},
                                              {kOn, &ValueMaker::Flag},
                                              {kEnable, &ValueMaker::Flag},
                                              {kActivate, &ValueMaker::Flag},
                                              {kReplace, &ValueMaker::Flag},
                                              {kWholeFamily, &ValueMaker::Flag},
                                              {kVisible, &ValueMaker::Flag},
                                              {kWorkgroup, &ValueMaker::TextOrNumber},
                                              {kGS_SmartListNameKey, &ValueMaker::Text},
                                              {kGS_WorkgroupIDsKey, &ValueMaker::Numbers},
                                              {kGS_SetIDsKey, &ValueMaker::Numbers},
                                              {kGS_SmartSetIDsKey, &ValueMaker::Numbers}};
    const auto found = makers.find(name);
    return (values.*(found != makers.end() ? found->second : &ValueMaker::Number))();
}

/// No file outside the folder is to be looked at, whatever a request says.
void StayInFolder(Json& request) {
    if (!request.contains("args") || !request["args"].is_object() || !request["args"].contains("path"))
        return;
    Json& path = request["args"]["path"];
    const auto& known = Library().Paths();
    if (!path.is_string() || std::find(known.begin(), known.end(), path) != known.end())
        return;
    std::string name = path.get<std::string>();
    std::erase(name, '/');
    path = Library().Folder() / ("fonts/_" + name);
}

Json MakeRequest(FuzzedDataProvider& input, long long& lastID) {
    ValueMaker values(input);
    const std::string method = input.PickValueInArray(kMethods);
    Json arguments = Json::object();
    for (const std::string_view name : FindMethod(method)->arguments.Names()) {
        if (!name.empty() && input.ConsumeIntegralInRange(0, 15) != 0)
            arguments[std::string(name)] = ValueFor(values, name);
    }
    Json request = {
        {member::kID, ++lastID}, {member::kMethod, method}, {member::kArguments, std::move(arguments)}};
    switch (input.ConsumeIntegralInRange(0, 9)) {
        case 0:
            request["repeats"] = lastID - 1;
            break;
        case 1:
            request[input.PickValueInArray({"id", "method", "args", "repeats"})] = values.Number();
            break;
        default:
            break;
    }
    return request;
}

/// As it arrives.
Json Sent(const Json& request) {
    const auto frame = EncodeMessage(request);
    Require(frame.has_value(), "requests fit a message");
    FrameBuffer buffer;
    buffer.Append(frame->data(), frame->size());
    auto message = DecodeMessage(buffer.Next().value());
    Require(message && *message == request, "a message arrives as it was sent");
    return *message;
}

/// As a host greets the agent.
Json Greeting(FuzzedDataProvider& input) {
    return {{"id", 0},
            {"method", method::kHello},
            {"args", {{"protocol", int{kProtocolVersion}}, {"taken", ValueMaker(input).Number()}}}};
}

void TakeStep(FuzzedDataProvider& input, AgentWorld& world, long long& lastID) {
    const auto client = input.ConsumeIntegralInRange<size_t>(0, AgentWorld::kClients - 1);
    switch (input.ConsumeIntegralInRange(0, 31)) {
        case 0:
            return world.GoOn(client);
        case 1:
            return world.Acknowledge(client);
        case 2:
            world.Reconnect(client);
            if (input.ConsumeBool())
                world.Request(client, Greeting(input));
            return;
        case 3:
            return world.Sweep();
        case 4:
            return world.CheckVault();
        case 5:
            return world.LoseFile(input.ConsumeIntegral<uint8_t>(), input.ConsumeBool());
        case 6:
            return world.AddStray(input.ConsumeBool());
        case 7:
            return world.Restart();
        default:
            Json request = MakeRequest(input, lastID);
            StayInFolder(request);
            world.Request(client, Sent(request));
    }
}

/// What is no text of a message, or one that nobody would send.
void TakeBytes(FuzzedDataProvider& input, AgentWorld& world) {
    FrameBuffer buffer;
    while (input.remaining_bytes() > 0 && !buffer.IsBroken()) {
        const std::string piece = input.ConsumeBytesAsString(input.ConsumeIntegralInRange<size_t>(1, 4096));
        buffer.Append(piece.data(), piece.size());
        while (const auto payload = buffer.Next()) {
            if (auto message = DecodeMessage(*payload)) {
                StayInFolder(*message);
                world.Request(0, *message);
            }
        }
    }
}

/// Any bytes are requests; many requests are many bytes.
std::vector<std::string> Seeds() {
    std::mt19937 random;
    std::vector<std::string> seeds(64);
    for (std::string& seed : seeds) {
        seed.resize(random() % 2048);
        std::generate(seed.begin(), seed.end(), [&] { return static_cast<char>(random()); });
    }
    return seeds;
}

}  // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned random) {
    static const auto* const seeds = new std::vector<std::string>(Seeds());
    return MutateOrSeed(*seeds, data, size, maxSize, random);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    AgentWorld world(Library());
    long long lastID = 0;
    if (input.ConsumeIntegralInRange(0, 7) == 0)
        TakeBytes(input, world);
    while (input.remaining_bytes() > 0)
        TakeStep(input, world, lastID);
    world.End();
    return 0;
}
