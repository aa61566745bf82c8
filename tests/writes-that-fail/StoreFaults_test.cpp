// Every write, flush and rename by which the font manager changes its store fails once, or kills the agent:
// whatever was answered holds, the rest never happened, it is said in one line, and the next command works.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <thread>

#include "FaultyStore.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "tests/support/TestLibrary.h"

namespace pellwick::test {
namespace {

/// How a change was answered.
struct Outcome {
    bool isDone = false;
    std::string said;         ///< on standard error
    bool isForPeople = true;  ///< or for a plug-in, which gets a code
};

using Change = std::function<Outcome(FaultyStore&)>;

struct Case {
    std::string name;
    std::function<void(FaultyStore&)> prepare;  ///< what was before, with an agent
    Change change;
    bool beginsWithoutAgent = false;
    bool isEndedByKill = false;  ///< the agent before
};

void PrintTo(const Case& each, std::ostream* out) {
    *out << each.name;
}

const TestLibrary& Library() {
    static const TestLibrary* const library = new TestLibrary;
    return *library;
}

Change Command(const std::vector<std::string>& words) {
    return [words](FaultyStore& store) {
        std::vector<std::string> all = words;
        for (std::string& word : all) {
            if (word.ends_with(".ttf"))
                word = store.World().Path("fonts/" + word);
        }
        all.push_back("--no-start");
        const ProgramResult result = store.World().Run(all);
        return Outcome{result.status == 0, result.errors};
    };
}

void Do(FaultyStore& store, const std::vector<std::string>& words) {
    const Outcome outcome = Command(words)(store);
    EXPECT_TRUE(outcome.isDone) << words[0] << ": " << outcome.said;
}

std::function<void(FaultyStore&)> After(const std::vector<std::vector<std::string>>& commands) {
    return [commands](FaultyStore& store) {
        for (const auto& words : commands)
            Do(store, words);
    };
}

Outcome OpenDocument(FaultyStore&) {
    Library().ResetPluginFacadeInstance();
    CFRef<CFMutableArrayRef> matched;
    const ErrorCode code = Library().Activate("/document", {"Sample-Bold", "Sample-Italic"}, matched);
    return {code == CoreErrorCodes::kSuccess && cf::Count(matched.get()) == 2, {}, false};
}

Outcome CloseDocument(FaultyStore&) {
    Library().ResetPluginFacadeInstance();
    return {Library().Deactivate({1, 2}) == CoreErrorCodes::kSuccess, {}, false};
}

Outcome Start(FaultyStore& store) {
    Outcome outcome;
    outcome.isDone = store.StartAgent(outcome.said);
    return outcome;
}

/// So many small changes that the next one has SQLite move the log into the database.
void FillLog(FaultyStore& store) {
    Do(store, {"add", "Sample-Bold-1.0.ttf"});
    constexpr uint64_t kFullLog = 1000 * (4096 + 24);  // pages with their headers
    for (uint64_t size = 0; size < kFullLog * 99 / 100;) {
        ASSERT_EQ(store.TryToWrite(), 0u);
        platform::FileSize(store.World().Path("data/Vantorix/Pellwick/fonts.sqlite-wal"), size);
    }
}

void LoseFile(FaultyStore& store) {
    After({{"add", "Sample-Bold-1.0.ttf"}})(store);
    store.World().EmptyVault();
}

/// As a killed agent leaves it.
void LeaveStrayFile(const FaultyStore& store) {
    store.World().Write("data/Vantorix/Pellwick/vault/incoming/a1B2c3", "stray");
}

const std::vector<std::string> kAddBoth = {"add", "Sample-Bold-1.0.ttf", "Sample-Italic-1.0.ttf"};
const std::vector<std::string> kActivateBoth = {"activate", "Sample-Bold", "Sample-Italic"};

std::vector<Case> Cases() {
    return {
        {"Add", After({}), Command({"add", "Sample-Bold-1.0.ttf"})},
        {"AddWhatWasLost", LoseFile, Command({"add", "Sample-Bold-1.0.ttf"})},
        {"AddWhenTheLogIsFull", FillLog, Command({"add", "Sample-Italic-1.0.ttf"}), false, true},
        {"Activate", After({kAddBoth}), Command(kActivateBoth)},
        {"Deactivate", After({kAddBoth, kActivateBoth}), Command({"deactivate", "Sample-Bold"})},
        {"RemoveActive", After({kAddBoth, kActivateBoth}), Command({"remove", "Sample-Bold"})},
        {"LogIn", After({{"logout"}}), Command({"login", "someone"})},
        {"CreateWorkgroup", After({}), Command({"workgroup", "create", "Project"})},
        {"DeleteWorkgroup",
         After(
             {{"workgroup", "create", "Project"}, {"add", "Sample-Bold-1.0.ttf", "--workgroup", "Project"}}),
         Command({"workgroup", "delete", "Project"})},
        {"CreateSet", After({}), Command({"set", "create", "Poster"})},
        {"AddToSet", After({kAddBoth, {"set", "create", "Poster"}}),
         Command({"set", "add", "Poster", "Sample-Bold", "Sample-Italic"})},
        {"CreateSmartList", After({{"set", "create", "Poster"}}),
         Command({"smartlist", "create", "Posters", "--set", "Poster"})},
        {"OpenDocument", After({kAddBoth}), OpenDocument},
        {"CloseDocument",
         [](FaultyStore& store) {
             Do(store, kAddBoth);
             EXPECT_TRUE(OpenDocument(store).isDone);
         },
         CloseDocument},
        {"Stop", After({kAddBoth, kActivateBoth}), Command({"stop"})},
        {"FirstStart", nullptr, Start, true},
        {"StartAfterAStop", After({kAddBoth, kActivateBoth}), Start, true},
        {"StartAfterAKill",
         [](FaultyStore& store) {
             After({kAddBoth, kActivateBoth})(store);
             LeaveStrayFile(store);
             std::filesystem::remove(platform::Utf8Path(store.World().ActiveFiles().at(0)));
         },
         Start, true, true},
    };
}

class WritesThatFail : public testing::TestWithParam<Case> {
protected:
    void SetUp() override {
        mStore.World().WriteFont("Sample-Bold");
        mStore.World().WriteFont("Sample-Italic");
        if (GetParam().prepare)
            Prepare();
    }
    void Prepare() {
        mStore.StartAgent();
        GetParam().prepare(mStore);
        if (GetParam().isEndedByKill)
            mStore.KillAgent();
        else
            mStore.StopAgent();
        mStore.Keep();
    }

    void Attempt(const Fault& fault, int at);
    void Learn();
    void ExpectToBeSaid(const Fault& fault, const Outcome& outcome, size_t logLines) const;
    void ExpectOldOrNew(const Outcome& outcome);
    void ExpectToGoOn();
    void ExpectNew(const char* when);
    Json State() { return mHasStrayFiles ? mStore.Records() : mStore.State(); }
    /// Whether it is what it was, or what it was to become.
    bool Is(Json state, Json expected) const;
    void StartAgentIfGone();

    FaultyStore mStore;
    Json mOld;
    Json mNew;
    bool mHasStrayFiles = false;  ///< that could not be removed; the next start will
};

void WritesThatFail::StartAgentIfGone() {
    if (mStore.IsAgentAlive())
        return;
    mStore.CollectAgent();
    mStore.StartAgent();
}

bool WritesThatFail::Is(Json state, Json expected) const {
    if (mHasStrayFiles)
        expected.erase("files");
    return state == expected;
}

void WritesThatFail::ExpectNew(const char* when) {
    const Json state = State();
    EXPECT_TRUE(Is(state, mNew)) << when << ": " << Json::diff(mNew, state);
}

void WritesThatFail::ExpectToBeSaid(const Fault& fault, const Outcome& outcome, size_t logLines) const {
    const bool isLogToo = fault.lasts || mStore.Faults().Where().ends_with(".log");
    const size_t expected = outcome.isDone || fault.kind == FaultPlan::kKill ? 0 : 1;
    EXPECT_LE(logLines, GetParam().beginsWithoutAgent ? 1 : expected);
    if (!GetParam().beginsWithoutAgent && !isLogToo) {
        EXPECT_EQ(logLines, expected);
    }
    if (outcome.isDone || !outcome.isForPeople) {
        EXPECT_EQ(outcome.said, "");
        return;
    }
    if (fault.kind == FaultPlan::kKill && GetParam().beginsWithoutAgent)
        return;  // nobody is left to say it
    EXPECT_EQ(std::count(outcome.said.begin(), outcome.said.end(), '\n'), 1) << outcome.said;
    if (fault.kind == FaultPlan::kKill) {
        EXPECT_THAT(outcome.said, testing::HasSubstr("no agent is running; start it"));
        return;
    }
    EXPECT_THAT(outcome.said, testing::HasSubstr(mStore.World().Path("data")));
    EXPECT_THAT(outcome.said, testing::HasSubstr("; ")) << "what to do";
    if (fault.kind == FaultPlan::kDiskFull) {
        EXPECT_THAT(outcome.said, testing::HasSubstr("disk is full"));
    }
}

void WritesThatFail::ExpectOldOrNew(const Outcome& outcome) {
    if (GetParam().beginsWithoutAgent)
        return;
    // What was in the vault when the agent died is taken back after the start.
    Json state;
    EXPECT_TRUE(Eventually([&] {
        state = State();
        return Is(state, mOld) || Is(state, mNew);
    })) << "half of it is there: "
        << Json::diff(mOld, state);
    // Without its files, the old state may look like the new one.
    const bool mayBeOld = !outcome.isDone && Is(state, mOld);
    if (Is(state, mNew) && !mayBeOld)
        return;
    EXPECT_FALSE(outcome.isDone) << "what was answered as done is not there: " << Json::diff(mNew, state);
    const Outcome again = GetParam().change(mStore);
    EXPECT_TRUE(again.isDone) << "the fault is gone: " << again.said;
}

void WritesThatFail::ExpectToGoOn() {
    EXPECT_EQ(mStore.TryToWrite(), CoreErrorCodes::kSuccess);
    // Links that a start could not make are made soon after.
    EXPECT_TRUE(Eventually([this] { return !GetParam().beginsWithoutAgent || Is(State(), mNew); }));
    ExpectNew("when the fault is gone");
    mStore.StopAgent();
    EXPECT_TRUE(mStore.IsEndLogged());
    LeaveStrayFile(mStore);
    mStore.StartAgent();
    mHasStrayFiles = false;
    ExpectNew("after the next start, which removes what was left half-way");
    EXPECT_EQ(mStore.CheckDatabase(), "ok");
    mStore.StopAgent();
}

void WritesThatFail::Learn() {
    const bool isOfStore = mStore.IsAgentAlive() && !GetParam().beginsWithoutAgent;
    StartAgentIfGone();
    mNew = mStore.State();
    if (!isOfStore)
        mOld = mNew;
    EXPECT_TRUE(mOld != mNew || !isOfStore) << "the change does not show";
}

void WritesThatFail::Attempt(const Fault& fault, int at) {
    mStore.BringBack();
    if (!GetParam().beginsWithoutAgent)
        mStore.StartAgent();
    if (at == 0 && !GetParam().beginsWithoutAgent)
        mOld = mStore.State();
    const size_t logLines = mStore.FailureLines();
    mStore.Faults().Begin(fault, at);
    const Outcome outcome = GetParam().change(mStore);
    mStore.Faults().End();
    if (fault.kind == FaultPlan::kKill && mStore.Faults().HasHappened()) {
        EXPECT_TRUE(Eventually([this] { return !mStore.IsAgentAlive(); }));
    }
    if (at == 0) {
        EXPECT_TRUE(outcome.isDone) << outcome.said;
        Learn();
        return;
    }
    SCOPED_TRACE(mStore.Faults().Where());
    EXPECT_GE(mStore.Faults().Count(), at) << "the change takes fewer writes than it did";
    ExpectToBeSaid(fault, outcome, mStore.FailureLines() - logLines);
    mHasStrayFiles = mStore.IsAgentAlive() && mStore.Faults().HasKeptFile();
    StartAgentIfGone();
    ExpectOldOrNew(outcome);
    ExpectToGoOn();
}

TEST_P(WritesThatFail, LeaveTheOldOrTheNewStateAndOneLine) {
    MeetEveryFault(GetParam().name, mStore.Faults(),
                   [this](const Fault& fault, int at) { Attempt(fault, at); });
}

INSTANTIATE_TEST_SUITE_P(Store, WritesThatFail, testing::ValuesIn(Cases()),
                         [](const testing::TestParamInfo<Case>& each) { return each.param.name; });

}  // namespace
}  // namespace pellwick::test
