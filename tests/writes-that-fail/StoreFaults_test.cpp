// Every write, flush and rename by which the font manager changes its store fails once, or kills the agent:
// whatever was answered holds, the rest never happened, it is said in one line, and the next command works.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>

#include "FaultPlan.h"
#include "common/Protocol.h"
#include "ipc/AgentConnection.h"
#include "platform/Environment.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
/// One way in which a write may go wrong.
struct Fault {
    const char* name;
    FaultPlan::Kind kind;
    bool lasts;  ///< until the fault is ended; else the next call works again

    bool IsKill() const { return kind == FaultPlan::kKill; }
};

/// The plan for the processes that it starts, in a file of its own. They have their writes below `folder` go
/// wrong as it says.
class FaultControl {
public:
    /// `path`: of the file, which is made.
    FaultControl(const std::string& path, std::string folder) : mPath(path), mFolder(std::move(folder)) {
        const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        void* memory = file >= 0 && ftruncate(file, sizeof(FaultPlan)) == 0
                           ? mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
                           : MAP_FAILED;
        close(file);
        if (memory == MAP_FAILED)
            throw std::runtime_error("no shared memory at " + path);
        mPlan = new (memory) FaultPlan{};
    }
    ~FaultControl() { munmap(mPlan, sizeof(FaultPlan)); }
    FaultControl(const FaultControl&) = delete;
    FaultControl& operator=(const FaultControl&) = delete;

    std::unique_ptr<TestProcess> Start(const std::vector<std::string>& command) const {
        const fs::path library = FAILING_WRITES_LIBRARY;
        // By its name alone: blanks separate the libraries in that list, and the checkout's path may have some.
        const std::pair<const char*, std::string> variables[] = {
            {"LD_PRELOAD", library.filename()},
            {"LD_LIBRARY_PATH", library.parent_path()},
            {"FAILING_WRITES_PLAN", mPath},
            {"FAILING_WRITES_BELOW", fs::weakly_canonical(mFolder)}};
        for (const auto& [name, value] : variables)
            platform::SetEnvironment(name, value);
        auto process = std::make_unique<TestProcess>(command);
        for (const auto& [name, value] : variables)
            platform::SetEnvironment(name, "");
        return process;
    }
    /// From now on the calls are counted, and the fault meets the one of that number; none with 0.
    void Begin(const Fault& fault, int at) {
        End();
        mPlan->at = at;
        mPlan->lasts = fault.lasts;
        mPlan->count = 0;
        mPlan->failedCalls = 0;
        mPlan->where[0] = '\0';
        mPlan->kind = at != 0 ? fault.kind : FaultPlan::kNothing;
    }
    void End() {
        mPlan->kind = FaultPlan::kNothing;
        mCount = mPlan->count;
    }

    int Count() const { return mCount; }
    bool HasHappened() const { return mPlan->failedCalls != 0; }
    std::string Where() const { return mPlan->where; }

    /// Calls `attempt` once without a fault to learn how many calls there are, then for each call and each
    /// kind of fault; unless PLUGINCORE_EVERY_FAULT is set, for a sample of these. Prints how many there were.
    void MeetEvery(const std::string& name, const std::function<void(const Fault&, int)>& attempt) {
        static constexpr Fault kFaults[] = {{"disk full once", FaultPlan::kDiskFull, false},
                                            {"disk stays full", FaultPlan::kDiskFull, true},
                                            {"I/O error once", FaultPlan::kInputOutputError, false},
                                            {"I/O errors from then on", FaultPlan::kInputOutputError, true},
                                            {"killed after it", FaultPlan::kKill, false}};
        const bool isEvery = !platform::EnvironmentVariable("PLUGINCORE_EVERY_FAULT").empty();
        attempt({"none", FaultPlan::kNothing, false}, 0);
        const int calls = mCount;
        ASSERT_GT(calls, 0) << name << ": no write was seen";
        int met = 0;
        for (int at = 1; at <= calls; ++at) {
            // Every other call and one kind of fault for it, each in turn; not the same sample for all.
            const size_t turn = static_cast<size_t>(at) + name.size();
            for (size_t kind = 0; kind < std::size(kFaults); ++kind) {
                if (!isEvery && (turn % 2 == 0 || turn / 2 % std::size(kFaults) != kind))
                    continue;
                SCOPED_TRACE(name + ", call " + std::to_string(at) + ": " + kFaults[kind].name);
                attempt(kFaults[kind], at);
                EXPECT_GE(mCount, at) << "it takes fewer writes than it did";
                ++met;
            }
        }
        std::printf("%s: %d writes, flushes and renames; %d faults\n", name.c_str(), calls, met);
    }

private:
    const std::string mPath;
    const std::string mFolder;
    FaultPlan* mPlan;
    int mCount = 0;
};

using Commands = std::vector<std::string>;  ///< with blanks between the words

/// How a change was answered.
struct Outcome {
    bool isDone = false;
    std::string said;         ///< on standard error
    bool isForPeople = true;  ///< or for a plug-in, which gets a code
};

// What is done beside commands.
constexpr char kOpen[] = "(open a document)";
constexpr char kClose[] = "(close it)";
constexpr char kStart[] = "(start)";
constexpr char kLoseFiles[] = "(lose the vault)";
constexpr char kLeaveStray[] = "(leave what a killed agent leaves)";
constexpr char kAddBoth[] = "add Sample-Bold-1.0.ttf Sample-Italic-1.0.ttf";
constexpr char kActivateBoth[] = "activate Sample-Bold Sample-Italic";

struct Case {
    const char* name;
    Commands before;  ///< done by an agent that has then been ended
    const char* change;
    bool isEndedByKill = false;  ///< the agent before

    bool IsStart() const { return change == kStart; }  ///< which no agent is there for
};

void PrintTo(const Case& each, std::ostream* out) {
    *out << each.name;
}

const Case kCases[] = {
    {"Add", {}, "add Sample-Bold-1.0.ttf"},
    {"AddWhatWasLost", {"add Sample-Bold-1.0.ttf", kLoseFiles}, "add Sample-Bold-1.0.ttf"},
    {"Activate", {kAddBoth}, kActivateBoth},
    {"Deactivate", {kAddBoth, kActivateBoth}, "deactivate Sample-Bold"},
    {"RemoveActive", {kAddBoth, kActivateBoth}, "remove Sample-Bold"},
    {"LogIn", {"logout"}, "login someone"},
    {"CreateWorkgroup", {}, "workgroup create Project"},
    {"DeleteWorkgroup",
     {"workgroup create Project", "add Sample-Bold-1.0.ttf --workgroup Project"},
     "workgroup delete Project"},
    {"CreateSet", {}, "set create Poster"},
    {"AddToSet", {kAddBoth, "set create Poster"}, "set add Poster Sample-Bold Sample-Italic"},
    {"CreateSmartList", {"set create Poster"}, "smartlist create Posters --set Poster"},
    {"OpenDocument", {kAddBoth}, kOpen},
    {"CloseDocument", {kAddBoth, kOpen}, kClose},
    {"Stop", {kAddBoth, kActivateBoth}, "stop"},
    {"FirstStart", {}, kStart},
    {"StartAfterAStop", {kAddBoth, kActivateBoth}, kStart},
    {"StartAfterAKill", {kAddBoth, kActivateBoth, kLeaveStray}, kStart, true},
};

const TestLibrary& Library() {
    static const TestLibrary* const library = new TestLibrary;
    library->ResetPluginFacadeInstance();
    return *library;
}

class WritesThatFail : public testing::TestWithParam<Case> {
protected:
    void SetUp() override {
        fs::create_directories(mWorld.Path("data"));
        for (const char* font : {"Sample-Bold", "Sample-Italic"})
            mWorld.WriteFont(font);
        if (std::string(GetParam().name) != "FirstStart") {
            EXPECT_TRUE(Start().isDone);
            for (const std::string& command : GetParam().before)
                EXPECT_TRUE(Do(command).isDone) << command;
            if (GetParam().isEndedByKill)
                KillAgent();
            else
                StopAgent();
        }
        Copy("data", "kept");
    }

    bool IsAgentAlive() const { return mAgent && platform::ProcessStartTime(mAgent->Id()) != 0; }
    void LeaveStrayFile() { mWorld.Write("data/Vantorix/Pellwick/vault/incoming/a1B2c3", "stray"); }
    Outcome Do(const std::string& change) {
        if (change == kOpen)
            return OpenDocument();
        if (change == kClose)
            return {Library().Deactivate({1, 2}) == CoreErrorCodes::kSuccess, {}, false};
        if (change == kStart)
            return Start();
        if (change != kLoseFiles && change != kLeaveStray)
            return DoCommand(change);
        if (change == kLoseFiles)
            mWorld.EmptyVault();
        else
            fs::remove(mWorld.ActiveFiles().at(0));
        LeaveStrayFile();
        return {true, {}};
    }

    Outcome DoCommand(const std::string& words) {
        std::istringstream line(words);
        std::vector<std::string> command;
        for (std::string word; line >> word;)
            command.push_back(word.ends_with(".ttf") ? mWorld.Path("fonts/" + word) : word);
        command.push_back("--no-start");
        const ProgramResult result = mWorld.Run(command);
        return {result.status == 0, result.errors};
    }

    Outcome OpenDocument() {
        CFRef<CFMutableArrayRef> matched;
        const ErrorCode code = Library().Activate("/document", {"Sample-Bold", "Sample-Italic"}, matched);
        return {code == CoreErrorCodes::kSuccess && cf::Count(matched.get()) == 2, {}, false};
    }

    Outcome Start() {
        mAgent = mFaults.Start({PELLWICK_PROGRAM});
        const bool isServing = Eventually([this] {
            Json status;
            AgentConnection connection(std::chrono::seconds(30));
            return !IsAgentAlive() || connection.Call(method::kGetStatus, Json::object(), status) == 0;
        });
        if (isServing && IsAgentAlive())
            return {true, {}};
        return {false, CollectAgent().errors};
    }

    void StopAgent() {
        EXPECT_EQ(mWorld.Run({"stop", "--no-start"}).status, 0);
        EXPECT_EQ(CollectAgent().status, 0);
    }
    void KillAgent() {
        mAgent->Kill();
        CollectAgent();
    }
    /// Waits for the end of one that ends or has ended.
    ProgramResult CollectAgent() {
        const auto agent = std::exchange(mAgent, nullptr);
        return agent ? agent->Finish() : ProgramResult();
    }

    void StartAgentIfGone() {
        if (IsAgentAlive())
            return;
        CollectAgent();
        const Outcome outcome = Start();
        EXPECT_TRUE(outcome.isDone) << outcome.said;
    }

    void Copy(const std::string& from, const std::string& to) const {
        fs::remove_all(mWorld.Path(to));
        TestProcess copying({"/bin/cp", "-a", mWorld.Path(from), mWorld.Path(to)});
        EXPECT_EQ(copying.Finish().status, 0);
    }

    Json Ask(const char* method, const Json& arguments = Json::object()) {
        Json answer;
        const ErrorCode code = AgentConnection(std::chrono::seconds(30)).Call(method, arguments, answer);
        EXPECT_EQ(code, 0u) << method << ": " << FailureText(code, answer);
        return answer;
    }

    Json Fonts(const Json& filter) {
        Json fonts = Ask(method::kListFonts, filter)["fonts"];
        for (Json& font : fonts) {
            for (const char* key : {kGS_DatabaseIDKey, kGS_WorkgroupIDKey})
                font.erase(key);
            font.erase(kGS_OutlineFileNameKey);  // one that was taken back has lost it
        }
        std::sort(fonts.begin(), fonts.end());
        return fonts;
    }

    /// Everything that users and plug-ins can see of the store; IDs left out.
    Json Records() {
        Json records = {{"fonts", Fonts({{"after", 0}})}};
        for (const Json all = Ask(method::kListSets)["sets"]; const Json& set : all)
            records["sets"].push_back(
                {set[member::kName], set[kGS_WorkgroupNameKey], Fonts({{"after", 0}, {"set", set["id"]}})});
        for (const Json all = Ask(method::kListWorkgroups)["workgroups"]; const Json& workgroup : all)
            records["workgroups"].push_back(workgroup[kGS_WorkgroupNameKey]);
        for (const Json all = Ask(method::kListSmartLists)[kGS_SmartListsKey]; const Json& list : all)
            records["smartLists"].push_back(list[kGS_SmartListNameKey]);
        const Json status = Ask(method::kGetStatus);
        for (const char* member : {"userName", "standalone", "workgroup", "hosts", "activeFiles"})
            records["status"][member] = status[member];
        return records;
    }

    /// With the files of the vault and those of active fonts, which `doctor` compares with their checksums.
    Json State() {
        Json state = Records();
        state["files"] = mWorld.VaultFiles();
        state["active"] = mWorld.ActiveFiles();
        for (const char* list : {"files", "active"})
            std::sort(state[list].begin(), state[list].end());
        return state;
    }
    /// What people are told is one line, of what is wrong and what to do; plug-ins get a code.
    void ExpectToBeSaid(const Fault& fault, const Outcome& outcome) const {
        if (outcome.isDone || !outcome.isForPeople) {
            EXPECT_EQ(outcome.said, "");
        } else if (!fault.IsKill()) {
            EXPECT_EQ(std::count(outcome.said.begin(), outcome.said.end(), '\n'), 1) << outcome.said;
            EXPECT_THAT(outcome.said, testing::AllOf(HasSubstr(mWorld.Path("data")), HasSubstr("; ")));
            EXPECT_THAT(outcome.said, HasSubstr(fault.kind == FaultPlan::kDiskFull ? "disk is full" : ""));
        } else if (!GetParam().IsStart()) {
            EXPECT_THAT(outcome.said, HasSubstr("no agent is running; start it"));
        }
    }

    void ExpectOldOrNew(const Outcome& outcome) {
        if (GetParam().IsStart())
            return;
        // What was in the vault when the agent died is taken back after the start.
        Json state;
        EXPECT_TRUE(Eventually([&] { return (state = State()) == mOld || state == mNew; }))
            << "half of it is there: " << Json::diff(mOld, state);
        if (state == mNew)
            return;
        EXPECT_FALSE(outcome.isDone) << "what was answered as done is not there: " << Json::diff(mNew, state);
        const Outcome again = Do(GetParam().change);
        EXPECT_TRUE(again.isDone) << "the fault is gone: " << again.said;
    }

    void ExpectToGoOn() {
        for (const bool isOn : {true, false})
            Ask(method::kSetGoogleWebFonts, {{"on", isOn}});
        // Links that a start could not make are made soon after.
        EXPECT_TRUE(Eventually([this] { return !GetParam().IsStart() || State() == mNew; }));
        EXPECT_EQ(State(), mNew) << "when the fault is gone";
        StopAgent();
        EXPECT_TRUE(mWorld.AgentLog().ends_with(" ends\n"));
        LeaveStrayFile();
        StartAgentIfGone();
        EXPECT_EQ(State(), mNew) << "after the next start, which removes what was left half-way";
        const ProgramResult doctor = mWorld.Run({"doctor", "--no-start"});
        EXPECT_EQ(doctor.status, 0) << doctor.errors;
        StopAgent();
    }

    void Learn(const Outcome& outcome) {
        EXPECT_TRUE(outcome.isDone) << outcome.said;
        const bool isOfStore = IsAgentAlive() && !GetParam().IsStart();
        StartAgentIfGone();
        mNew = State();
        mOld = isOfStore ? mOld : mNew;
        EXPECT_EQ(mOld != mNew, isOfStore) << "the change does not show";
    }

    void Attempt(const Fault& fault, int at) {
        if (mAgent)
            KillAgent();
        Copy("kept", "data");
        if (!GetParam().IsStart())
            StartAgentIfGone();
        if (at == 0 && !GetParam().IsStart())
            mOld = State();
        mFaults.Begin(fault, at);
        const Outcome outcome = Do(GetParam().change);
        mFaults.End();
        if (at == 0)
            return Learn(outcome);
        const bool isKilled = fault.IsKill() && mFaults.HasHappened();
        EXPECT_TRUE(Eventually([&] { return !isKilled || !IsAgentAlive(); }));
        SCOPED_TRACE(mFaults.Where());
        ExpectToBeSaid(fault, outcome);
        StartAgentIfGone();
        ExpectOldOrNew(outcome);
        ExpectToGoOn();
    }

    TestWorld mWorld;
    FaultControl mFaults{mWorld.Write("plan", ""), mWorld.Path("data")};
    std::unique_ptr<TestProcess> mAgent;
    Json mOld;
    Json mNew;
};

TEST_P(WritesThatFail, LeaveTheOldOrTheNewStateAndOneLine) {
    mFaults.MeetEvery(GetParam().name, [this](const Fault& fault, int at) { Attempt(fault, at); });
}

INSTANTIATE_TEST_SUITE_P(Store, WritesThatFail, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<Case>& each) { return each.param.name; });

}  // namespace
}  // namespace pellwick::test
