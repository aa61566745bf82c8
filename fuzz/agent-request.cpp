// Requests of every kind with any arguments have their answer, and leave records that agree with one another.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <limits>
#include <random>

#include "Fuzz.h"
#include "HostileFonts.h"
#include "TemporaryFolder.h"
#include "TestFonts.h"
#include "agent/Requests.h"
#include "ipc/FrameBuffer.h"
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
    std::map<std::string, int> Added() override { return {}; }
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

    TemporaryFolder folder;
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

/// An agent as it is for one input, without its loop, and what the input has clients ask it for.
class AgentWorld {
public:
    explicit AgentWorld(FuzzedDataProvider& input) : mInput(input) {
        std::filesystem::remove_all(Library().places.dataFolder);
        mManager = std::make_unique<FontManager>(Library().places);
        mManager->settings.LogIn("Somebody");
        for (const FontLibrary::Known& known : Library().known) {
            Library().folder.Write(mManager->vault.PathOf(known.file), known.content);
            for (const Font& font : mManager->fonts.FontsOfFile(mManager->fonts.Add(known.file, known.faces)))
                mManager->workgroups.AddFont(mManager->DefaultWorkgroup().id, font.id);
        }
        const int32_t set = mManager->sets.Create(mManager->DefaultWorkgroup().id, "Mine");
        mManager->smartLists.Create("Mine", {{}, {set}, {}});
        const auto self = platform::CurrentProcessId();
        for (Client& client : mClients)
            client.process = {self, platform::ProcessStartTime(self)};
        mClients[0].isHost = true;
    }

    void CarryOutRequest() {
        const Json request = MakeRequest();
        const long long id = IntegerMember(request, "id");
        Client& client = mClients[mInput.ConsumeBool() ? 1 : 0];
        Nobody audience;
        CommandContext context{*mManager, client, audience, id};
        std::optional<CommandAnswer> answer = BeginRequest(context, request);
        while (!answer) {
            const Deferral deferral = *std::exchange(context.deferral, std::nullopt);
            Continuation rest;
            try {
                rest = deferral.work(Library().worker);
            } catch (...) {  // as a lane hands it on
                rest = [problem = std::current_exception()](CommandContext&) -> Json {
                    std::rethrow_exception(problem);
                };
            }
            answer = ContinueRequest(context, rest);
        }
        CheckAnswer(*answer, id);
        // Every other answer is lost, with what was done for it.
        const long long provisional = std::exchange(client.provisionalRequest, 0);
        if (provisional != 0 && (answer->code != 0 || mInput.ConsumeBool()))
            mManager->UndoRequests(client.process, provisional, provisional);
    }
    void CheckRecords() {
        Require(!mManager->database.Prepare("PRAGMA foreign_key_check").Step(),
                "records refer to what is there");
        const ActiveFonts::Repairs repairs = mManager->RepairActiveFonts();
        Require(repairs.problem.empty() && repairs.added == 0 && repairs.removed == 0,
                "programs see what the records call active, and nothing else");
    }

private:
    Json MakeRequest() {
        static constexpr const char* kMethods[] = {
#define NAME_OF_METHOD(name, arguments, result) #name,
            PELLWICK_METHODS(NAME_OF_METHOD)
#undef NAME_OF_METHOD
        };
        const std::string method = mInput.PickValueInArray(kMethods);
        Json arguments = Json::object();
        for (const std::string_view name : FindMethod(method)->arguments.Names()) {
            if (!name.empty() && UpTo(15) != 0)
                arguments[std::string(name)] = Argument(name);
        }
        Json request = {
            {member::kID, ++mLastID}, {member::kMethod, method}, {member::kArguments, std::move(arguments)}};
        if (const int change = UpTo(9); change == 0)
            request["repeats"] = mLastID - 1;
        else if (change == 1)
            request[mInput.PickValueInArray({"id", "method", "args", "repeats"})] = Number();
        return request;
    }
    int UpTo(int most) {
        return mInput.ConsumeIntegralInRange(0, most);
    }
    /// What commands may take for that member of their arguments; now and then a value of another type.
    Json Argument(std::string_view name) {
        if (name == member::kPath)  // none outside the folder
            return Library().paths[mInput.ConsumeIntegralInRange<size_t>(0, Library().paths.size() - 1)];
        if (UpTo(15) == 0)
            return mInput.PickValueInArray<Json>({nullptr, true, 0.5, -1e300, uint64_t{UINT64_MAX}, "text",
                                                  Json::array({Json::array()}), Json::object(),
                                                  std::numeric_limits<double>::infinity()});
        if (name.ends_with('s') && name != member::kReplacements) {  // which is how many
            Json values = Json::array();
            for (int left = UpTo(4); left > 0; --left)
                values.push_back(name == member::kFonts && mInput.ConsumeBool() ? RequestedFont() : Number());
            return values;
        }
        const int kind = UpTo(6);
        return kind == 0 ? Json(mInput.ConsumeBool()) : kind < 4 ? Number() : Text();
    }
    Json Number() {
        if (UpTo(9) == 0)
            return mInput.PickValueInArray<int64_t>(
                {-1, 0, INT32_MAX, int64_t{INT32_MAX} + 1, int64_t{UINT32_MAX} + 2, INT64_MIN, INT64_MAX});
        return UpTo(6);  // IDs of what there is, and some more
    }
    Json RequestedFont() {
        Json font = {{kGS_DatabaseIDKey, Number()}};
        for (const char* key : {kGS_PostScriptNameKey, kGS_FamilyKey, kGS_StyleKey, kGS_FontKindKey})
            font[key] = Text();
        return mInput.ConsumeBool() ? font : Text();
    }
    Json Text() {
        if (UpTo(9) == 0)
            return mInput.ConsumeRandomLengthString(40);
        return mInput.PickValueInArray<std::string>(
            {"Alpha-Regular", "alpha-regular", "Alpha", "Alpha Bold", "Beta", "1", "Mine", "Yours", "",
             "\xFF", std::string("a\0b", 3), std::string(kMaxNameSize + 1, 'x'), kAllWorkgroupsName,
             "/doc.ai"});
    }
    static void CheckAnswer(const CommandAnswer& answer, long long request) {
        FrameBuffer buffer;
        buffer.Append(answer.frame.data(), answer.frame.size());
        const auto message = DecodeMessage(buffer.Next().value());
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

    FuzzedDataProvider& mInput;
    std::unique_ptr<FontManager> mManager;
    Client mClients[2];  ///< a host and a command line
    long long mLastID = 0;
};

}  // namespace

/// Any bytes are requests; many requests are many bytes.
std::vector<std::string> Seeds() {
    std::mt19937 random;
    std::vector<std::string> seeds(64, std::string(1024, 0));
    for (std::string& seed : seeds)
        std::generate(seed.begin(), seed.end(), [&] { return static_cast<char>(random()); });
    return seeds;
}

void TryInput(const std::string& bytes) {
    FuzzedDataProvider input(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    AgentWorld world(input);
    while (input.remaining_bytes() > 0)
        world.CarryOutRequest();
    world.CheckRecords();
}
