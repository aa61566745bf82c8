// What clients send to the agent: requests of every kind with arguments of right and wrong types, parts of
// several clients' requests between one another, and texts of any content. Every request has its answer, and
// afterwards the records agree with one another and with what programs see.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "Fuzz.h"
#include "HostileFonts.h"
#include "TarnwickPluginInterface.h"
#include "TestFonts.h"
#include "agent/Requests.h"
#include "agent/VaultCommands.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "ipc/FrameBuffer.h"
#include "platform/FontTable.h"
#include "platform/Processes.h"

using namespace pellwick;

namespace {

/// What is announced has to fit a message; who hears it is all the same.
class Nobody : public Audience {
public:
    void Announce(int32_t type, const Json& data) override {
        Require(EncodeMessage({{"notification", type}, {"data", data}}).has_value(),
                "notifications fit a message");
    }
    void KeepAlive() override {}
    void Note(const std::string& text) override { Require(!text.empty(), "the log has lines of text"); }
    void RequestStop() override {}
};

/// The system is not asked for its fonts: there may be many.
class NoFontTable : public platform::FontTable {
    bool IsFilledFromFolders() override { return true; }
    bool Add(const std::string&) override { return false; }
    bool Remove(const std::string&) override { return false; }
    void AnnounceChange() override {}
    platform::VisibleFonts Visible() override { return {}; }
};

/// What all inputs have in common: files that can be added, and the process that reads them.
struct FontLibrary {
    struct Known {
        std::string content;
        FontFile file;
        std::vector<FontFace> faces;
    };

    FontLibrary() {
        const std::string alpha = MakeTestFont({"Alpha-Regular", "Alpha"});
        known.push_back(Read("alpha.ttf", alpha));
        known.push_back(
            Read("pair.ttc", MakeTestFontCollection({{"Alpha-Bold", "Alpha", "Bold"}, {"Beta", "Beta"}})));
        for (const auto& [name, content] :
             {std::pair("fonts/other.ttf", MakeTestFont({"Alpha-Regular", "Alpha", "2"})),
              {"fonts/variable.ttf", hostile::Instances(1, 2)},
              {"fonts/cut.ttf", alpha.substr(0, 300)},
              {"fonts/letter", "Dear reader"}})
            paths.push_back(folder.Write(name, content));
        for (const char* path : {"absent", "fonts", "agent/vault"})
            paths.push_back(folder / path);
        places.dataFolder = folder / "agent";
        places.databasePath = ":memory:";
        places.vaultFolder = folder / "agent/vault";
        places.linkFolder = folder / "agent/active";
        places.previewFolder = folder / "agent/previews";
        places.ownFolders = {places.dataFolder};
    }
    Known Read(const std::string& name, const std::string& content) {
        paths.push_back(folder.Write("fonts/" + name, content));
        platform::ReadOnlyFile source;
        Require(!source.Open(paths.back()), "there are fonts");
        return {content,
                {0, FontVault::ChecksumOfContent(paths.back(), false), name, name.substr(name.rfind('.')),
                 content.size()},
                worker.Scan(source).faces};
    }

    ScratchFolder folder;
    FontWorker worker{FONT_WORKER_PROGRAM};
    std::vector<std::string> paths;
    std::vector<Known> known;  ///< those that an agent has when it begins
    Locations places;
    NoFontTable fontTable;
    platform::ScopedOverride<platform::FontTable> fontTableOverride{fontTable};
};

FontLibrary& Library() {
    static FontLibrary library;
    return library;
}

/// An agent as it is for one input, without its loop. As the real one, it carries out a part of one client's
/// command while the next part of another's is still to come.
class AgentWorld {
public:
    /// Two hosts, of which the second is a process that is gone, and a command line.
    static constexpr size_t kClients = 3;

    AgentWorld() {
        std::filesystem::remove_all(Library().places.dataFolder);
        mManager = std::make_unique<FontManager>(Library().places);
        mManager->settings.LogIn("Somebody");
        for (const FontLibrary::Known& known : Library().known) {
            WriteScratch(mManager->vault.PathOf(known.file), known.content);
            for (const Font& font : mManager->fonts.FontsOfFile(mManager->fonts.Add(known.file, known.faces)))
                mManager->workgroups.AddFont(mManager->DefaultWorkgroup().id, font.id);
        }
        const int32_t workgroup = mManager->workgroups.Create("Mine", kWorkgroupType_FontLibrary);
        const int32_t set = mManager->sets.Create(workgroup, "Mine");
        mManager->sets.AddFont(set, 1);
        const int32_t list = mManager->smartLists.Create("Mine", {{}, {set}, {}});
        mManager->smartLists.Create("Yours", {{workgroup}, {}, {list}});
        const auto self = platform::CurrentProcessId();
        const uint64_t startTime = platform::ProcessStartTime(self);
        mCallers[0].client.process = mCallers[2].client.process = {self, startTime};
        mCallers[1].client.process = {self, startTime + 1};
        mCallers[0].client.isHost = mCallers[1].client.isHost = true;
    }

    /// Has the agent begin with a request. One that the client made before is finished first.
    void Request(size_t client, const Json& request) {
        Caller& caller = mCallers[client];
        Finish(client);
        caller.request = IntegerMember(request, "id");
        Proceed(caller, [&](CommandContext& context) { return BeginRequest(context, request); });
    }
    /// The next part of the client's request, if there is one under way.
    void GoOn(size_t client) {
        Caller& caller = mCallers[client];
        if (!caller.isAsking)
            return;
        const Deferral deferral = std::move(*caller.deferral);
        Continuation rest;
        try {
            rest = deferral.work(Library().worker);
        } catch (...) {
            rest = [problem = std::current_exception()](CommandContext&) -> Json {
                std::rethrow_exception(problem);
            };
        }
        Proceed(caller, [&](CommandContext& context) { return ContinueRequest(context, rest); });
    }
    /// The client has taken the answer to its last request.
    void Acknowledge(size_t client) {
        if (!mCallers[client].isAsking)
            mCallers[client].client.provisionalRequest = 0;
    }
    /// The client closes its connection and makes another; an answer that it has not taken is lost.
    void Reconnect(size_t client) {
        Finish(client);
        LoseAnswer(mCallers[client]);
        Client next;
        next.process = mCallers[client].client.process;
        next.isHost = mCallers[client].client.isHost;
        mCallers[client].client = next;
    }
    /// The agent looks at the next file of the vault.
    void CheckVault() { mCallers[kClients].isAsking ? GoOn(kClients) : RunOwn(CheckNextFile); }
    /// The agent looks for processes that are gone.
    void Sweep() { mManager->EndLeasesOfDeadProcesses(); }
    /// A file of the vault is gone, or has another content of the same size.
    void LoseFile(size_t number, bool isDamaged) {
        const FontLibrary::Known& known = Library().known[number % Library().known.size()];
        const std::string path = mManager->vault.PathOf(known.file);
        if (!isDamaged)
            std::filesystem::remove(path);
        else if (std::filesystem::exists(path))
            WriteScratch(path, std::string(known.content.size(), 'x'));
    }
    /// What is under way comes to its end; then the agent begins anew.
    void Restart() {
        for (size_t client = 0; client < kClients; ++client)
            Reconnect(client);
        Finish(kClients);
        mManager->EndLeasesOfEarlierEra();
        Sweep();
        mManager->RepairActiveFonts();
        const auto unknown = std::make_shared<std::vector<std::string>>(mManager->LookAroundVault().unknown);
        RunOwn([&](CommandContext& context) { return TakeBack(context, unknown); });
    }
    /// Finishes what is under way and has the hosts end. Checks what then has to hold.
    void End() {
        for (size_t client = 0; client <= kClients; ++client)
            Finish(client);
        CheckDatabase();
        Sweep();
        for (const HostProcess& host : mManager->activations.Hosts())
            Require(host == mCallers[0].client.process, "what is gone holds nothing");
        CheckDatabase();
    }

private:
    struct Caller {
        Client client;
        bool isAsking = false;
        long long request = 0;
        std::optional<Deferral> deferral;  ///< what is to be done next
    };

    void Finish(size_t client) {
        while (mCallers[client].isAsking)
            GoOn(client);
    }
    void RunOwn(const Continuation& command) {
        Proceed(mCallers[kClients],
                [&](CommandContext& context) { return ContinueRequest(context, command); });
    }
    template <class Step>
    void Proceed(Caller& caller, const Step& step) {
        Nobody audience;
        CommandContext context{*mManager, caller.client, audience, caller.request};
        caller.isAsking = true;
        const std::optional<CommandAnswer> answer = step(context);
        caller.deferral = std::move(context.deferral);
        if (!answer)
            return;
        CheckAnswer(*answer, caller.request);
        caller.isAsking = false;
        if (answer->code != 0 && caller.client.provisionalRequest == caller.request)
            LoseAnswer(caller);
    }
    void LoseAnswer(Caller& caller) {
        const long long request = std::exchange(caller.client.provisionalRequest, 0);
        if (request != 0)
            mManager->UndoRequests(caller.client.process, request, request);
    }
    static void CheckAnswer(const CommandAnswer& answer, long long request) {
        FrameBuffer buffer;
        buffer.Append(answer.frame.data(), answer.frame.size());
        const auto payload = buffer.Next();
        const auto message = payload ? DecodeMessage(*payload) : std::nullopt;
        Require(message && buffer.IsEmpty(), "an answer is one message");
        Require(IntegerMember(*message, "id") == request &&
                    IntegerMember(*message, "code") == static_cast<long long>(answer.code) &&
                    message->contains("result"),
                "an answer says what it answers");
        Require((answer.code == 0) == answer.problem.empty(), "a failure, and nothing else, has a reason");
        // Commands refuse what they cannot do: what comes from below them was not thought of.
        for (const ErrorCode code : {CoreErrorCodes::kExceptionThrownError, CoreErrorCodes::kDatabaseError,
                                     GSqliteDatabase::kConstraintViolation})
            Require(answer.code != code, answer.problem.c_str());
    }
    void CheckDatabase() {
        Require(!mManager->database.Prepare("PRAGMA foreign_key_check").Step(),
                "records refer to what is there");
        const ActiveFonts::Repairs repairs = mManager->RepairActiveFonts();
        Require(repairs.problem.empty() && repairs.added == 0, "programs see what the records call active");
        Require(repairs.removed == 0, "programs see nothing else");
    }

    std::unique_ptr<FontManager> mManager;
    std::array<Caller, kClients + 1> mCallers;  ///< the last is the agent itself
};

/// Makes values out of an input.
class ValueMaker {
public:
    explicit ValueMaker(FuzzedDataProvider& input) : mInput(input) {}

    int UpTo(int most) { return mInput.ConsumeIntegralInRange(0, most); }
    /// What a command may take for a member of its arguments; now and then a value of whatever type.
    Json For(std::string_view name) {
        using namespace member;
        const auto isOneOf = [name](std::initializer_list<std::string_view> names) {
            return std::find(names.begin(), names.end(), name) != names.end();
        };
        if (UpTo(15) == 0)
            return Any(0);
        if (name == kFonts)
            return Repeated([this] { return mInput.ConsumeBool() ? Number() : Font(); });
        if (name == kPath)
            return Library().paths[mInput.ConsumeIntegralInRange<size_t>(0, Library().paths.size() - 1)];
        if (isOneOf({kSets, kGS_WorkgroupIDsKey, kGS_SetIDsKey, kGS_SmartSetIDsKey}))
            return Repeated([this] { return Number(); });
        if (isOneOf({kOn, kEnable, kActivate, kReplace, kWholeFamily, kVisible}))
            return mInput.ConsumeBool();
        if (isOneOf({kName, kNewName, kDocument, kUsage, kGS_SmartListNameKey}) ||
            (name == kWorkgroup && mInput.ConsumeBool()))
            return Text();
        return Number();
    }
    Json Number() {
        if (UpTo(9) == 0)
            return mInput.PickValueInArray<int64_t>(
                {-1, 0, INT32_MAX, int64_t{INT32_MAX} + 1, int64_t{UINT32_MAX} + 2, INT64_MIN, INT64_MAX});
        return UpTo(6);  // IDs of what there is, and some more
    }

private:
    Json Font() {
        if (mInput.ConsumeBool())
            return Text();
        Json font = {{kGS_DatabaseIDKey, For({})}};
        for (const char* key :
             {kGS_PostScriptNameKey, kGS_FamilyKey, "Style", kGS_FoundryKey, kGS_FontKindKey})
            font[key] = UpTo(15) != 0 ? Json(Text()) : Any(0);
        return font;
    }
    std::string Text() {
        if (const int kind = UpTo(9); kind == 0)
            return mInput.ConsumeRandomLengthString(40);
        else if (kind == 1)
            return std::string(mInput.PickValueInArray<size_t>({kMaxNameSize, kMaxNameSize + 1}), 'x');
        return mInput.PickValueInArray<std::string>({"Alpha-Regular", "alpha-regular", "Alpha", "Alpha Bold",
                                                     "Beta", "1", "Mine", "Yours", "", "\xFF",
                                                     std::string("a\0b", 3), kAllWorkgroupsName, "/doc.ai"});
    }
    Json Any(int depth) {
        constexpr int kMaxDepth = 3;
        switch (UpTo(depth < kMaxDepth ? 6 : 4)) {
            case 0:
                return nullptr;
            case 1:
                return mInput.ConsumeBool();
            case 2:
                return mInput.PickValueInArray({0.5, -1e300, std::numeric_limits<double>::infinity()});
            case 3:
                return mInput.ConsumeIntegral<uint64_t>();
            case 4:
                return Text();
            case 5:
                return Repeated([&] { return Any(depth + 1); });
            default:
                return {{Text(), Any(depth + 1)}, {kGS_DatabaseIDKey, Any(depth + 1)}};
        }
    }
    template <class Make>
    Json Repeated(const Make& make) {
        Json values = Json::array();
        for (int left = UpTo(4); left > 0; --left)
            values.push_back(make());
        return values;
    }

    FuzzedDataProvider& mInput;
};

/// No file outside the folder is to be looked at, whatever a request says.
Json InsideFolder(Json request) {
    const std::string path = StringMember(ObjectMember(request, "args"), "path");
    const auto& known = Library().paths;
    if (std::find(known.begin(), known.end(), path) != known.end() || path.empty())
        return request;
    std::string name = path;
    std::erase(name, '/');
    request["args"]["path"] = Library().folder / ("fonts/_" + name);
    return request;
}

Json MakeRequest(FuzzedDataProvider& input, long long& lastID) {
    static constexpr const char* kMethods[] = {
#define NAME_OF_METHOD(name, arguments, result) #name,
        PELLWICK_METHODS(NAME_OF_METHOD)
#undef NAME_OF_METHOD
    };
    ValueMaker values(input);
    const std::string method = input.PickValueInArray(kMethods);
    Json arguments = Json::object();
    for (const std::string_view name : FindMethod(method)->arguments.Names()) {
        if (!name.empty() && values.UpTo(15) != 0)
            arguments[std::string(name)] = values.For(name);
    }
    Json request = {
        {member::kID, ++lastID}, {member::kMethod, method}, {member::kArguments, std::move(arguments)}};
    if (const int change = values.UpTo(9); change == 0)
        request["repeats"] = lastID - 1;
    else if (change == 1)
        request[input.PickValueInArray({"id", "method", "args", "repeats"})] = values.Number();
    Require(DecodeMessage(EncodeMessage(request).value().substr(4)) == request,
            "a message arrives as it was sent");
    return request;
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
            if (input.ConsumeBool())  // as a host greets the agent
                world.Request(
                    client,
                    {{"id", 0},
                     {"method", method::kHello},
                     {"args", {{"protocol", int{kProtocolVersion}}, {"taken", ValueMaker(input).Number()}}}});
            return;
        case 3:
            return world.Sweep();
        case 4:
            return world.CheckVault();
        case 5:
            return world.LoseFile(input.ConsumeIntegral<uint8_t>(), input.ConsumeBool());
        case 6:
            return world.Restart();
        default:
            world.Request(client, InsideFolder(MakeRequest(input, lastID)));
    }
}

/// What is no request, or one that nobody would send.
void TakeBytes(FuzzedDataProvider& input, AgentWorld& world) {
    if (const auto message = DecodeMessage(input.ConsumeRandomLengthString(4096)))
        world.Request(0, InsideFolder(*message));
}

}  // namespace

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

void TryInput(const std::string& bytes) {
    FuzzedDataProvider input(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    AgentWorld world;
    long long lastID = 0;
    if (input.ConsumeIntegralInRange(0, 7) == 0)
        TakeBytes(input, world);
    while (input.remaining_bytes() > 0)
        TakeStep(input, world, lastID);
    world.End();
}
