// Every write, flush and rename by which the font manager changes its store fails once, or kills the agent:
// whatever was answered holds, the rest never happened, it is said in one line, and the next command works.
#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "FaultRun.h"
#include "TestFiles.h"
#include "ipc/AgentConnection.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
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
    Json List(const char* method, const char* key) { return ArrayMember(Ask(method), key); }

    Outcome Do(const std::string& change) {
        if (change == kOpen)
            return OpenDocument();
        if (change == kClose)
            return {Library().Deactivate({1, 2}) == CoreErrorCodes::kSuccess, {}, false};
        if (change == kStart)
            return Start();
        if (change == kLoseFiles)
            mWorld.EmptyVault();
        else if (change == kLeaveStray) {
            LeaveStrayFile();
            fs::remove(mWorld.ActiveFiles().at(0));
        } else {
            return DoCommand(change);
        }
        return {true, {}};
    }

    Outcome DoCommand(const std::string& words) {
        std::vector<std::string> command = WordsOf(words);
        for (std::string& word : command)
            word = word.ends_with(".ttf") ? mWorld.Path("fonts/" + word) : word;
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
        mAgent = mFaults.Start({BuiltFile(PELLWICK_PROGRAM)});
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

    /// Folders and regular files; a killed agent leaves its socket as well.
    void Copy(const std::string& from, const std::string& to) const {
        fs::remove_all(mWorld.Path(to));
        fs::create_directories(mWorld.Path(to));
        for (const auto& entry : fs::recursive_directory_iterator(mWorld.Path(from))) {
            const fs::path target = mWorld.Path(to) / fs::relative(entry.path(), mWorld.Path(from));
            if (entry.is_directory())
                fs::create_directory(target, entry.path());
            else if (entry.is_regular_file())
                fs::copy_file(entry.path(), target);
        }
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
        for (const Json& set : List(method::kListSets, "sets"))
            records["sets"].push_back(
                {set[member::kName], set[kGS_WorkgroupNameKey], Fonts({{"after", 0}, {"set", set["id"]}})});
        for (const Json& workgroup : List(method::kListWorkgroups, "workgroups"))
            records["workgroups"].push_back(workgroup[kGS_WorkgroupNameKey]);
        for (const Json& list : List(method::kListSmartLists, kGS_SmartListsKey))
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
    void ExpectNew(const char* when) {
        const Json state = State();
        EXPECT_EQ(state, mNew) << when << ": " << Json::diff(mNew, state);
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
        EXPECT_TRUE(Eventually([&] {
            state = State();
            return state == mOld || state == mNew;
        })) << "half of it is there: "
            << Json::diff(mOld, state);
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
        ExpectNew("when the fault is gone");
        StopAgent();
        EXPECT_TRUE(mWorld.AgentLog().ends_with(" ends\n"));
        LeaveStrayFile();
        StartAgentIfGone();
        ExpectNew("after the next start, which removes what was left half-way");
        const ProgramResult doctor = mWorld.Run({"doctor", "--no-start"});
        EXPECT_EQ(doctor.status, 0) << doctor.errors;
        StopAgent();
    }

    void Learn(const Outcome& outcome) {
        EXPECT_TRUE(outcome.isDone) << outcome.said;
        const bool isOfStore = IsAgentAlive() && !GetParam().IsStart();
        StartAgentIfGone();
        mNew = State();
        if (!isOfStore)
            mOld = mNew;
        EXPECT_TRUE(mOld != mNew || !isOfStore) << "the change does not show";
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
