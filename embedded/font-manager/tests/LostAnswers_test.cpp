// A host's requests whose answers get lost come to one effect; nothing is held by a host that does not know it.
#include <thread>

#include "TestFiles.h"
#include "platform/Files.h"
#include "tests/support/ClientTest.h"
#include "tests/support/Peers.h"

namespace pellwick::test {
namespace {

/// A host's connection, as far as the test takes it.
class HostConnection : public RawClient {
public:
    /// `lastTaken`: the last request whose answer the host took over an earlier connection; nothing for a
    /// connection that only listens.
    explicit HostConnection(std::optional<long long> lastTaken = 0) {
        Json greeting = {{"protocol", kProtocolVersion}};
        if (lastTaken)
            greeting["taken"] = *lastTaken;
        EXPECT_EQ(IntegerMember(Ask(0, method::kHello, greeting), "code"), 0);
    }

    void Begin(long long id, const char* method, const Json& arguments, long long repeats = 0) {
        Json request = {{"id", id}, {"method", method}, {"args", arguments}};
        if (repeats != 0)
            request["repeats"] = repeats;
        Send(request);
    }
    void BeginToOpen(long long id) {
        Begin(id, method::kActivateDocumentFonts,
              {{"document", "/document"}, {"fonts", Json::array({"Sample-Bold"})}});
    }
    Json Ask(long long id, const char* method, const Json& arguments, long long repeats = 0) {
        Begin(id, method, arguments, repeats);
        return ReadMessage();
    }
    /// The state of the font before it was opened.
    int Opened() { return ReadMessage()["result"]["matched"][0][kGS_ActivationStateKey]; }
    int Open(long long id) {
        BeginToOpen(id);
        return Opened();
    }
    Json LetGo(long long id, long long repeats = 0) {
        return Ask(id, method::kDeactivateFonts, {{"fonts", {1}}}, repeats)["result"];
    }
    Json CreateSet(long long id, long long repeats = 0) {
        return Ask(id, method::kCreateSet, {{"name", "Poster"}}, repeats);
    }
    void Take(long long id) { Send({{"taken", id}}); }
};

class LostAnswers : public ClientTest {
protected:
    bool IsFontActive() const { return !mWorld.ActiveFiles().empty(); }
    bool GoesFont() const {
        return Eventually([this] { return !IsFontActive(); });
    }
    void ReplaceKilledAgent() {
        mWorld.KillAgent();
        mWorld.StartAgent();
    }

    static constexpr int kBefore = kFontActivationState_Inactive;
    static constexpr int kHeld = kFontActivationState_ActivatedByPlugin;
};

TEST_F(LostAnswers, AnActivationStaysOnlyWhereItsAnswerWasTaken) {
    HostConnection first;
    first.BeginToOpen(5);
    EXPECT_TRUE(BoolMember(first.ReadMessage(), "provisional"));
    EXPECT_TRUE(IsFontActive());
    first.Close();
    EXPECT_TRUE(GoesFont());

    HostConnection second;
    EXPECT_EQ(second.Open(6), kBefore);
    second.Take(6);
    second.Close();
    HostConnection third(6);
    EXPECT_TRUE(IsFontActive());
    EXPECT_EQ(third.Open(7), kHeld);
    third.Close();
    mWorld.RunForJson({"status"});
    EXPECT_TRUE(IsFontActive()) << "what was held before the request that got lost stays";
}

TEST_F(LostAnswers, AnActivationIsUndoneAlsoWhenTheAgentDiedBeforeItsAnswerWasTaken) {
    for (const bool isTaken : {true, false}) {
        HostConnection connection;
        connection.Open(5);
        ReplaceKilledAgent();
        EXPECT_TRUE(IsFontActive()) << "the host may have taken it";
        HostConnection next(isTaken ? 5 : 4);
        EXPECT_TRUE(isTaken || GoesFont());
        EXPECT_EQ(IsFontActive(), isTaken);
        EXPECT_EQ(next.Open(6), isTaken ? kHeld : kBefore);
        next.Take(6);
        EXPECT_EQ(next.LetGo(7)["deactivated"].size(), 1u);
    }
}

TEST_F(LostAnswers, AnActivationIsKeptWhereTheAgentIsStoppedBeforeItHearsThatItsAnswerWasTaken) {
    HostConnection connection;
    connection.BeginToOpen(5);
    mWorld.StopAgent();  // the answer lies ready, and a goodbye behind it
    EXPECT_EQ(connection.Opened(), kBefore);
    mWorld.StartAgent();
    EXPECT_TRUE(IsFontActive());
    const Json states = HostConnection(5).Ask(6, method::kGetClientStates, {{"fonts", {1}}});
    EXPECT_EQ(states["result"]["states"][0]["isActive"], true);
}

TEST_F(LostAnswers, ARepeatedRequestIsAnsweredAsTheFirstTime) {
    HostConnection first;
    first.Open(5);
    first.Take(5);
    const Json deactivated = first.LetGo(6);
    EXPECT_EQ(deactivated["deactivated"].size(), 1u);
    HostConnection second(5);
    EXPECT_EQ(second.LetGo(7, 6), deactivated);
    const Json set = second.CreateSet(8)["result"];
    ReplaceKilledAgent();
    HostConnection third(7);
    for (const int time : {9, 10})
        EXPECT_EQ(third.CreateSet(time, time - 1)["result"], set);
    EXPECT_EQ(third.CreateSet(11)["code"], CoreErrorCodes::kItemAlreadyExists) << "a request of its own";
}

TEST_F(LostAnswers, WhatAnotherHostHoldsCountsAsInactiveSoThatEachReturnsWhatItTook) {
    TestProcess other({BuiltFile(TEST_HOST_PROGRAM), "/other", "Sample-Bold"});
    ASSERT_EQ(other.ReadLine(), "1");
    HostConnection connection;
    EXPECT_EQ(connection.Open(5), kBefore);
    connection.Take(5);
    other.Finish();
    mWorld.RunForJson({"status"});
    EXPECT_TRUE(IsFontActive());
    connection.LetGo(6);
    EXPECT_TRUE(GoesFont());
    mWorld.RunForJson({"activate", "Sample-Bold"});
    EXPECT_EQ(connection.Open(7), kFontActivationState_ActivatedByUser);
}

TEST(LostAnswersOfTheLibrary, ARequestIsTheSameThoughTheAgentWasAskedHowItIsInBetween) {
    const TestWorld world;
    const TestLibrary library;
    const std::string address =
        platform::LocalStreamAddresses("Test", "Scripted", world.Path("scripted")).front();
    const std::string note = platform::NamePart(Locations::OfThisUser().addressPath);
    world.Write("data/Vantorix/Pellwick/" + note, address);
    WaitingStream agent;
    agent.Listen(address);
    const auto answer = [&](const Json& request) {
        agent.Send({{"id", request["id"]}, {"code", 0}, {"result", {{"loggedIn", true}}}});
    };
    Json first, second;
    std::thread script([&] {
        agent.Accept();
        answer(agent.ReadMessage());  // the greeting
        first = agent.ReadMessage();
        agent.Close();
        agent.Accept();
        answer(agent.ReadMessage());
        answer(agent.ReadMessage());  // the question
        second = agent.ReadMessage();
        answer(second);
    });
    int32_t set = 0;
    bool isLoggedIn = false;
    const auto create = [&] { return library.CreateTopLevelSet(library.Facade(), CFSTR("Poster"), 1, &set); };
    EXPECT_EQ(create(), GIPCClient::kServiceUnavailable);
    EXPECT_EQ(library.GetIsLoggedIn(library.Facade(), &isLoggedIn), 0u);
    EXPECT_EQ(create(), 0u);
    script.join();
    library.CleanUpOnShutdown();
    EXPECT_EQ(second["repeats"], first["id"]);
    EXPECT_GT(second["id"], first["id"]);
}

}  // namespace
}  // namespace pellwick::test
