// Agents and hosts that die, freeze or come back, and the notifications.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <mutex>
#include <nlohmann/json.hpp>
#include <sstream>
#include <vector>

#include "common/Locations.h"
#include "platform/Utf8Path.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

/// What the callbacks below were told, in order: the type, and the font ID or the kind of server where there
/// is one.
struct Notes {
    using Note = std::pair<int32_t, int64_t>;

    std::mutex notesLock;
    std::vector<Note> received;
    std::atomic<bool> reachedBySignals{false};

    void Clear() {
        const std::lock_guard guard(notesLock);
        received.clear();
        reachedBySignals = false;
    }
    void Add(int32_t type, const void* data) {
        const std::lock_guard guard(notesLock);
        int64_t about = 0;
        if (type == kPluginCallback_FontActivated || type == kPluginCallback_FontDeactivated ||
            type == kPluginCallback_FontMissing)
            about = *static_cast<const uint32_t*>(data);
        if (type == kPluginCallback_LoggedIn)
            about = cf::GetInt64(cf::As<CFDictionaryRef>(data), "serverType").value_or(-1);
        if (type == kPluginCallback_GoogleWebFontsEnabled)
            about = *static_cast<const bool*>(data);
        received.emplace_back(type, about);
        sigset_t blocked;
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        if (!sigismember(&blocked, SIGTERM) || !sigismember(&blocked, SIGALRM))
            reachedBySignals = true;
    }
    bool Has(int32_t type) {
        const std::lock_guard guard(notesLock);
        return std::find(received.begin(), received.end(), Note(type, 0)) != received.end();
    }
};
Notes notes;

void Note(int32_t type, const void* data) {
    notes.Add(type, data);
}

class RecoveryTest : public testing::Test {
protected:
    void SetUp() override {
        notes.Clear();
        mWorld.StartAgent();
        mWorld.WriteFont("Sample-Bold");
        mWorld.WriteFont("Sample-Italic");
        mWorld.RunForJson({"add", mWorld.Path("fonts")});
    }
    void TearDown() override { mLibrary.CleanUpOnShutdown(); }

    ErrorCode AskWhetherLoggedIn() {
        bool isLoggedIn = false;
        return mLibrary.GetIsLoggedIn(mLibrary.Facade(), &isLoggedIn);
    }

    TestWorld mWorld;
    TestLibrary mLibrary;
};

TEST_F(RecoveryTest, AKilledAgentIsUnavailableUntilTheFacadeIsResetAndLosesNothing) {
    const auto ids = mLibrary.Activate("/document", {"Sample-Bold"});
    mWorld.KillAgent(SIGKILL);
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);
    bool isRunning = true;
    EXPECT_EQ(mLibrary.GetIsCoreAgentProcessRunning(mLibrary.Facade(), &isRunning), 0u);
    EXPECT_FALSE(isRunning);
    mWorld.StartAgent();
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);  // still the old connection
    mLibrary.ResetPluginFacadeInstance();
    EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    // This process lives, so what it holds is still held, and it can let go of it.
    EXPECT_EQ(mLibrary.StateOf(ids[0]), kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(mWorld.LinkedFiles().size(), 1u);
    EXPECT_EQ(mLibrary.Deactivate(ids), 0u);
    EXPECT_TRUE(mWorld.LinkedFiles().empty());
}

TEST_F(RecoveryTest, AnAgentThatIsStoppedSaysSo) {
    ASSERT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    mWorld.KillAgent(SIGTERM);
    EXPECT_EQ(AskWhetherLoggedIn(), GAgentIF::kShutdown);
    EXPECT_EQ(AskWhetherLoggedIn(), GAgentIF::kShutdown);
    mLibrary.ResetPluginFacadeInstance();
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);
}

TEST_F(RecoveryTest, AFrozenAgentIsGivenUpOn) {
    ASSERT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    mWorld.SignalAgent(SIGSTOP);
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);
    mLibrary.ResetPluginFacadeInstance();
    EXPECT_EQ(AskWhetherLoggedIn(), GIPCClient::kServiceUnavailable);  // it does not even greet
    mWorld.SignalAgent(SIGCONT);
    mLibrary.ResetPluginFacadeInstance();
    EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
}

TEST_F(RecoveryTest, AHostThatDiesLeavesNothingBehind) {
    TestProcess first({TEST_HOST_PROGRAM, "/first", "Sample-Bold", "Sample-Italic"});
    ASSERT_EQ(first.ReadLine(), "2");
    TestProcess second({TEST_HOST_PROGRAM, "/second", "Sample-Bold"});
    ASSERT_EQ(second.ReadLine(), "1");
    first.Signal(SIGKILL);
    first.Finish();
    EXPECT_TRUE(Eventually([&] { return mWorld.LinkedFiles().size() == 1; }));  // which the second shares
    second.Finish();
    EXPECT_TRUE(Eventually([&] { return mWorld.LinkedFiles().empty(); }));
}

TEST_F(RecoveryTest, AHostThatDiesWhileNoAgentRunsIsFoundOutAtTheNextStart) {
    TestProcess dying({TEST_HOST_PROGRAM, "/first", "Sample-Bold"});
    TestProcess living({TEST_HOST_PROGRAM, "/second", "Sample-Italic"});
    ASSERT_EQ(dying.ReadLine() + living.ReadLine(), "11");
    mWorld.KillAgent(SIGKILL);
    dying.Finish();
    mWorld.StartAgent();
    EXPECT_EQ(mWorld.LinkedFiles().size(), 1u);
    living.Finish();  // it has no connection to this agent
    EXPECT_TRUE(Eventually([&] { return mWorld.LinkedFiles().empty(); }));
}

TEST_F(RecoveryTest, WhatAHostHeldForDesignGoesWithIt) {
    const pid_t child = fork();
    if (child == 0) {
        const bool isHeld =
            mLibrary.EnableDesignActivation(mLibrary.Facade(), 1, false, true, nullptr) == 0 &&
            mLibrary.PreviewActivateFonts(mLibrary.Facade(), IDsArray({2}).get(), true) == 0 &&
            mWorld.LinkedFiles().size() == 2;
        _exit(isHeld ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(Eventually([&] { return mWorld.LinkedFiles().empty(); }));
}

TEST_F(RecoveryTest, AForkedProcessHasAConnectionOfItsOwn) {
    ASSERT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    const PluginFacadeRef parents = mLibrary.Facade();
    const pid_t child = fork();
    if (child == 0) {
        bool isLoggedIn = false;
        const bool isRight = mLibrary.GetIsLoggedIn(parents, &isLoggedIn) == GAgentIF::kAgentIFDestroyed &&
                             AskWhetherLoggedIn() == CoreErrorCodes::kSuccess;
        _exit(isRight ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
}

TEST_F(RecoveryTest, ActivatesThousandsOfFontsInOneCall) {
    std::vector<std::string> names;
    for (int number = 0; number < 300; ++number) {
        names.push_back("Many" + std::to_string(number) + "-Regular");
        mWorld.WriteFont(names.back());
    }
    mWorld.RunForJson({"add", mWorld.Path("fonts")});
    for (int number = 0; number < 2000; ++number)
        names.push_back("Absent" + std::to_string(number));
    const auto ids = mLibrary.Activate("/document", names);
    EXPECT_EQ(ids.size(), 300u);
    EXPECT_EQ(mWorld.LinkedFiles().size(), 300u);
    EXPECT_EQ(mLibrary.Deactivate(ids), 0u);
    EXPECT_TRUE(mWorld.LinkedFiles().empty());
}

TEST_F(RecoveryTest, AFontWhoseFileIsGoneIsNotified) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    std::filesystem::remove_all(platform::Utf8Path(Locations::OfThisUser().vaultFolder));
    EXPECT_TRUE(mLibrary.Activate("/document", {"Sample-Bold"}).empty());
    EXPECT_TRUE(mLibrary.Activate("/document", {"Sample-Bold"}).empty());
    mWorld.RunForJson({"logout"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedOut); }));
    EXPECT_EQ(mLibrary.UnregisterForNotifications(mLibrary.Facade(), Note), 0u);
    EXPECT_EQ(notes.received,
              (std::vector<Notes::Note>{{kPluginCallback_FontMissing, 1}, {kPluginCallback_LoggedOut, 0}}));
}

TEST_F(RecoveryTest, NotificationsArriveUntilTheyAreUnsubscribed) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    const int64_t font = mLibrary.Activate("/document", {"Sample-Bold"}).front();
    mLibrary.Deactivate({font});
    for (const char* command :
         {"logout", "login somebody", "workgroup create Project", "workgroup rename Project Done",
          "workgroup use Done", "workgroup delete Done", "standalone off", "standalone on", "standalone on",
          "set create Poster", "set add Poster Sample-Bold", "set add Poster Sample-Bold",
          "set delete Poster", "smartlist create Posters", "smartlist rename Posters Bills",
          "smartlist delete Bills", "logout"}) {
        std::istringstream words(command);
        mWorld.RunForJson({std::istream_iterator<std::string>(words), {}});
    }
    const std::vector<Notes::Note> expected = {
        {kPluginCallback_FontActivated, font},  {kPluginCallback_FontDeactivated, font},
        {kPluginCallback_LoggedOut, 0},         {kPluginCallback_LoggedIn, 0},
        {kPluginCallback_WorkgroupsChanged, 0}, {kPluginCallback_WorkgroupsChanged, 0},
        {kPluginCallback_WorkgroupsChanged, 0}, {kPluginCallback_WorkgroupsChanged, 0},
        {kPluginCallback_WentOnline, 0},        {kPluginCallback_WentOffline, 0},
        {kPluginCallback_PanelDataChanged, 0},  {kPluginCallback_PanelDataChanged, 0},
        {kPluginCallback_PanelDataChanged, 0},  {kPluginCallback_SmartListsChanged, 0},
        {kPluginCallback_SmartListsChanged, 0}, {kPluginCallback_SmartListsChanged, 0},
        {kPluginCallback_LoggedOut, 0}};
    EXPECT_TRUE(Eventually([&] {
        const std::lock_guard guard(notes.notesLock);
        return notes.received.size() >= expected.size();
    }));
    EXPECT_EQ(mLibrary.UnregisterForNotifications(mLibrary.Facade(), Note), 0u);
    EXPECT_EQ(notes.received, expected);  // each once, though it was registered twice
    EXPECT_FALSE(notes.reachedBySignals);
    mWorld.RunForJson({"login", "somebody"});
    EXPECT_EQ(notes.received, expected);
}

/// While it lives, this process gets no further threads: none could have a stack of that size.
class NoFurtherThreads {
public:
    NoFurtherThreads() {
        pthread_getattr_default_np(&mSaved);
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, size_t{1} << 50);
        pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }
    ~NoFurtherThreads() {
        pthread_setattr_default_np(&mSaved);
        pthread_attr_destroy(&mSaved);
    }
    NoFurtherThreads(const NoFurtherThreads&) = delete;
    NoFurtherThreads& operator=(const NoFurtherThreads&) = delete;

private:
    pthread_attr_t mSaved;
};

std::atomic<int> callsOfAnother{0};

void CountCall(int32_t, const void*) {
    ++callsOfAnother;
}

TEST_F(RecoveryTest, TenThousandNotificationsArriveInOrder) {
    constexpr int kCount = 10'000;
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    for (int index = 0; index < kCount; ++index)
        ASSERT_EQ(mLibrary.SetGoogleWebFontsEnabled(mLibrary.Facade(), index % 2 == 0), 0u);
    mWorld.RunForJson({"logout"});
    ASSERT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedOut); }));
    mLibrary.UnregisterForNotifications(mLibrary.Facade(), Note);
    ASSERT_EQ(notes.received.size(), kCount + 1u);
    for (int index = 0; index < kCount; ++index)
        ASSERT_EQ(notes.received[static_cast<size_t>(index)],
                  Notes::Note(kPluginCallback_GoogleWebFontsEnabled, index % 2 == 0));
}

TEST_F(RecoveryTest, NotificationsWithoutAThreadAreRefusedAndCanBeAskedForAgain) {
    {
        const NoFurtherThreads noFurtherThreads;
        EXPECT_NE(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
        EXPECT_NE(mLibrary.RegisterForNotifications(mLibrary.Facade(), CountCall), 0u);
    }
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.RunForJson({"logout"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedOut); }));
    mWorld.RunForJson({"login", "somebody"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedIn); }));
    EXPECT_EQ(callsOfAnother, 0);

    mLibrary.ResetPluginFacadeInstance();
    {
        const NoFurtherThreads noFurtherThreads;
        EXPECT_NE(mLibrary.Facade(), nullptr);
        EXPECT_EQ(AskWhetherLoggedIn(), CoreErrorCodes::kSuccess);
    }
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.RunForJson({"standalone", "off"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_WentOnline); }));
}

TEST_F(RecoveryTest, TheEndOfTheAgentIsNotifiedAndANewOneIsHeardAfterAReset) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.KillAgent(SIGKILL);
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_AgentShutdown); }));
    mWorld.StartAgent();
    mLibrary.ResetPluginFacadeInstance();
    mLibrary.Facade();
    EXPECT_TRUE(Eventually([this] {
        mWorld.RunForJson({"login", "somebody"});
        return notes.Has(kPluginCallback_LoggedIn);
    }));
    mLibrary.CleanUpOnShutdown();
    mLibrary.CleanUpOnShutdown();
}

void UnregisterItself(int32_t type, const void* data) {
    notes.Add(type, data);
    static const TestLibrary library;
    library.UnregisterForNotifications(library.Facade(), UnregisterItself);
}

TEST_F(RecoveryTest, ACallbackMayUnregisterItself) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), UnregisterItself), 0u);
    mWorld.RunForJson({"logout"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedOut); }));
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Note), 0u);
    mWorld.RunForJson({"login", "somebody"});
    EXPECT_TRUE(Eventually([] { return notes.Has(kPluginCallback_LoggedIn); }));
    EXPECT_EQ(notes.received.size(), 2u);
}

TEST(InterfaceWithoutAgent, IsUnavailable) {
    TestWorld world;
    const TestLibrary library;
    bool isLoggedIn = false;
    EXPECT_EQ(library.GetIsLoggedIn(library.Facade(), &isLoggedIn), GIPCClient::kServiceUnavailable);
    EXPECT_EQ(library.RegisterForNotifications(library.Facade(), Note), GIPCClient::kServiceUnavailable);
}

}  // namespace
}  // namespace pellwick::test
