#include "AgentWorld.h"

#include "FontRecordKeys.h"
#include "HostileFonts.h"
#include "Require.h"
#include "TestFonts.h"
#include "agent/VaultCommands.h"
#include "common/Protocol.h"
#include "ipc/FrameBuffer.h"
#include "platform/Files.h"
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

Locations PlacesIn(const ScratchFolder& folder) {
    Locations places;
    places.dataFolder = folder / "agent";
    places.databasePath = ":memory:";
    places.vaultFolder = folder / "agent/vault";
    places.linkFolder = folder / "agent/active";
    places.previewFolder = folder / "agent/previews";
    places.ownFolders = {places.dataFolder};
    return places;
}

Json MessageOf(const CommandAnswer& answer) {
    FrameBuffer buffer;
    buffer.Append(answer.frame.data(), answer.frame.size());
    const auto payload = buffer.Next();
    const auto message = payload ? DecodeMessage(*payload) : std::nullopt;
    Require(message && buffer.IsEmpty(), "an answer is one message");
    return *message;
}

/// Unless it is the answer of an earlier request.
void CheckFont(const CommandAnswer& answer, long long font) {
    const Json message = MessageOf(answer);
    const Json& record = ObjectMember(message, "result");
    Require(!record.contains(kGS_PathKey) || IntegerMember(record, kGS_DatabaseIDKey) == font,
            "a font is the one that was asked for");
}

void CheckAnswer(const CommandAnswer& answer, long long request) {
    const Json message = MessageOf(answer);
    Require(IntegerMember(message, "id") == request &&
                IntegerMember(message, "code") == static_cast<long long>(answer.code) &&
                message.contains("result"),
            "an answer says what it answers");
    Require((answer.code == 0) == answer.problem.empty(), "a failure, and nothing else, has a reason");
    // Commands refuse what they cannot do: what comes from below them was not thought of.
    Require(answer.code != CoreErrorCodes::kExceptionThrownError &&
                answer.code != CoreErrorCodes::kDatabaseError &&
                answer.code != GSqliteDatabase::kConstraintViolation,
            answer.problem.c_str());
}

}  // namespace

FontLibrary::FontLibrary() : mWorker(FONT_WORKER_PROGRAM) {
    std::filesystem::create_directory(mFolder / "fonts");
    const std::string alpha = MakeTestFont({"Alpha-Regular", "Alpha"});
    const std::string pair = MakeTestFontCollection({{"Alpha-Bold", "Alpha", "Bold"}, {"Beta", "Beta"}});
    const std::string other = MakeTestFont({"Alpha-Regular", "Alpha", "Regular", "2.0"});
    Write("alpha.ttf", alpha);
    Write("pair.ttc", pair);
    Write("other.ttf", other);
    Write("variable.ttf", hostile::Instances(1, 2));
    Write("cut.ttf", alpha.substr(0, 300));
    Write("letter", "Dear reader");
    mKnown = {Read(mPaths[0], alpha), Read(mPaths[1], pair)};
    mStranger = Read(mPaths[2], other);
    mPaths.push_back(mFolder / "absent");
    mPaths.push_back(mFolder / "fonts");
    mPaths.push_back(mFolder / "agent/vault");
}

void FontLibrary::Write(const std::string& name, const std::string& content) {
    mPaths.push_back(mFolder / "fonts/" + name);
    WriteScratch(mPaths.back(), content);
}

FontLibrary::Known FontLibrary::Read(const std::string& path, const std::string& content) {
    platform::ReadOnlyFile source;
    Require(!source.Open(path), "there are fonts");
    ScanResult scanned = mWorker.Scan(source);
    FontFile file;
    file.checksum = FontVault::ChecksumOfContent(path, false);
    file.name = platform::NamePart(path);
    file.extension = file.name.substr(file.name.rfind('.'));
    file.size = content.size();
    Require(!scanned.faces.empty(), "fonts can be read");
    return {content, file, std::move(scanned.faces)};
}

AgentWorld::AgentWorld(FontLibrary& library) : mLibrary(library) {
    const Locations places = PlacesIn(library.Folder());
    std::filesystem::remove_all(places.dataFolder);
    mManager = std::make_unique<FontManager>(places);
    mManager->settings.LogIn("Somebody");
    for (const FontLibrary::Known& known : library.KnownFonts()) {
        const int64_t id = mManager->fonts.Add(known.file, known.faces);
        const std::string path = mManager->vault.PathOf(known.file);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        WriteScratch(path, known.content);
        for (const Font& font : mManager->fonts.FontsOfFile(id))
            mManager->workgroups.AddFont(mManager->DefaultWorkgroup().id, font.id);
    }
    MakeLists();
    const auto self = platform::CurrentProcessId();
    const uint64_t startTime = platform::ProcessStartTime(self);
    mCallers[0].client.process = mCallers[2].client.process = {self, startTime};
    mCallers[1].client.process = {self, startTime + 1};
    mCallers[0].client.isHost = mCallers[1].client.isHost = true;
}

/// Workgroups, sets and smart lists that refer to one another.
void AgentWorld::MakeLists() {
    const int32_t workgroup = mManager->workgroups.Create("Mine", kWorkgroupType_FontLibrary);
    const int32_t set = mManager->sets.Create(workgroup, "Mine");
    mManager->sets.AddFont(set, 1);
    const int32_t list = mManager->smartLists.Create("Mine", {{}, {set}, {}});
    mManager->smartLists.Create("Yours", {{workgroup}, {}, {list}});
}

void AgentWorld::Request(size_t client, const Json& request) {
    Caller& caller = mCallers[client];
    while (caller.isAsking)
        GoOn(client);
    caller.isAsking = true;
    caller.request = IntegerMember(request, "id");
    Proceed(caller, [&](CommandContext& context) {
        auto answer = BeginRequest(context, request);
        if (answer && answer->code == 0 && StringMember(request, "method") == method::kGetFont)
            CheckFont(*answer, IntegerMember(ObjectMember(request, "args"), "font"));
        return answer;
    });
}

void AgentWorld::GoOn(size_t client) {
    Caller& caller = mCallers[client];
    if (!caller.isAsking)
        return;
    const Deferral deferral = std::move(*caller.deferral);
    Continuation rest;
    try {
        rest = deferral.work(mLibrary.Worker());
    } catch (...) {
        rest = [problem = std::current_exception()](CommandContext&) -> Json {
            std::rethrow_exception(problem);
        };
    }
    Proceed(caller, [&](CommandContext& context) { return ContinueRequest(context, rest); });
}

template <class Step>
void AgentWorld::Proceed(Caller& caller, const Step& step) {
    Nobody audience;
    CommandContext context{*mManager, caller.client, audience, caller.request};
    const std::optional<CommandAnswer> answer = step(context);
    caller.deferral = std::move(context.deferral);
    if (answer)
        Finish(caller, *answer);
}

void AgentWorld::Finish(Caller& caller, const CommandAnswer& answer) {
    CheckAnswer(answer, caller.request);
    caller.isAsking = false;
    if (answer.code != 0 && caller.client.provisionalRequest == caller.request)
        LoseAnswer(caller);
}

void AgentWorld::Acknowledge(size_t client) {
    if (!mCallers[client].isAsking)
        mCallers[client].client.provisionalRequest = 0;
}

void AgentWorld::LoseAnswer(Caller& caller) {
    const long long request = std::exchange(caller.client.provisionalRequest, 0);
    if (request != 0)
        mManager->UndoRequests(caller.client.process, request, request);
}

void AgentWorld::Reconnect(size_t client) {
    Caller& caller = mCallers[client];
    while (caller.isAsking)
        GoOn(client);
    LoseAnswer(caller);
    Client next;
    next.process = caller.client.process;
    next.isHost = caller.client.isHost;
    caller.client = next;
}

void AgentWorld::Sweep() {
    mManager->EndLeasesOfDeadProcesses();
}

void AgentWorld::CheckVault() {
    if (mCallers[kClients].isAsking)
        GoOn(kClients);
    else
        RunOwn(CheckNextFile);
}

void AgentWorld::RunOwn(const Continuation& command) {
    mCallers[kClients].isAsking = true;
    Proceed(mCallers[kClients], [&](CommandContext& context) { return ContinueRequest(context, command); });
}

void AgentWorld::AddStray(bool isFont) {
    const FontLibrary::Known& stranger = mLibrary.Stranger();
    const std::string path = mManager->vault.PathOf(stranger.file);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    if (!std::filesystem::exists(path))
        WriteScratch(path, isFont ? stranger.content : "Dear reader");
}

void AgentWorld::Restart() {
    FinishAll();
    for (size_t client = 0; client < kClients; ++client)
        Reconnect(client);
    mManager->EndLeasesOfEarlierEra();
    mManager->EndLeasesOfDeadProcesses();
    mManager->RepairActiveFonts();
    const FontVault::Survey survey = mManager->LookAroundVault();
    const auto unknown = std::make_shared<std::vector<std::string>>(survey.unknown);
    RunOwn([&](CommandContext& context) { return TakeBack(context, unknown); });
}

void AgentWorld::LoseFile(size_t number, bool isDamaged) {
    const FontLibrary::Known& known = mLibrary.KnownFonts()[number % mLibrary.KnownFonts().size()];
    const std::string path = mManager->vault.PathOf(known.file);
    if (!isDamaged)
        std::filesystem::remove(path);
    else if (std::filesystem::exists(path))
        WriteScratch(path, std::string(known.content.size(), 'x'));
}

void AgentWorld::FinishAll() {
    for (size_t client = 0; client < mCallers.size(); ++client) {
        while (mCallers[client].isAsking)
            GoOn(client);
    }
}

void AgentWorld::CheckDatabase() {
    Require(!mManager->database.Prepare("PRAGMA foreign_key_check").Step(), "records refer to what is there");
    const ActiveFonts::Repairs repairs = mManager->RepairActiveFonts();
    Require(repairs.problem.empty() && repairs.added == 0, "programs see what the records call active");
    Require(repairs.removed == 0, "programs see nothing else");
}

void AgentWorld::End() {
    FinishAll();
    CheckDatabase();
    Sweep();
    for (const HostProcess& host : mManager->activations.Hosts())
        Require(host == mCallers[0].client.process, "what is gone holds nothing");
    CheckDatabase();
}
