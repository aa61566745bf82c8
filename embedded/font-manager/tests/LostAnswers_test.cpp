// Requests of a host whose answers get lost: they come to one effect and one answer, and nothing is held by a
// host that does not know it.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "FontRecordKeys.h"
#include "common/Locations.h"
#include "common/Protocol.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"
#include "tests/support/WaitingStream.h"

namespace pellwick::test {
namespace {

/// A host's connection, as far as the test takes it.
class HostConnection {
public:
    /// `lastTaken`: the last request whose answer the host took over an earlier connection; nothing for a
    /// connection that only listens.
    explicit HostConnection(std::optional<long long> lastTaken = 0) {
        mStream.Connect(Locations::OfThisUser().AgentAddress());
        Json greeting = {{"protocol", kProtocolVersion}};
        if (lastTaken)
            greeting["taken"] = *lastTaken;
        Ask(0, method::kHello, greeting);
        EXPECT_EQ(IntegerMember(Read(), "code"), 0);
    }

    void Send(const Json& message) { mStream.Write(*EncodeMessage(message)); }
    void Ask(long long id, const char* method, const Json& arguments, long long repeats = 0) {
        Json request = {{"id", id}, {"method", method}, {"args", arguments}};
        if (repeats != 0)
            request["repeats"] = repeats;
        Send(request);
    }
    void AskForFont(long long id) {
        Ask(id, method::kActivateDocumentFonts,
            {{"document", "/document"}, {"fonts", Json::array({"Sample-Bold"})}});
    }
    Json Read() { return mStream.ReadMessage(); }
    Json ReadResult() { return Read()["result"]; }
    void Take(long long id) { Send({{"taken", id}}); }
    void Close() { mStream.Close(); }

private:
    WaitingStream mStream;
};

int StateBefore(const Json& result) {
    return result["matched"][0][kGS_ActivationStateKey];
}

class LostAnswers : public testing::Test {
protected:
    LostAnswers() {
        mWorld.WriteFont("Sample-Bold");
        mWorld.StartAgent();
        mWorld.RunForJson({"add", mWorld.Path("fonts")});
    }

    bool IsFontActive() const { return !mWorld.ActiveFiles().empty(); }
    bool GoesFont() const {
        return Eventually([this] { return !IsFontActive(); });
    }
    size_t CountSets() const { return mWorld.RunForJson({"set", "list"}).at("sets").size(); }

    TestWorld mWorld;
};

TEST_F(LostAnswers, AnActivationStaysOnlyWhereItsAnswerWasTaken) {
    HostConnection first;
    first.AskForFont(5);
    const Json answer = first.Read();
    EXPECT_TRUE(BoolMember(answer, "provisional"));
    EXPECT_TRUE(IsFontActive());
    first.Close();
    EXPECT_TRUE(GoesFont());

    HostConnection second;
    second.AskForFont(6);
    EXPECT_EQ(StateBefore(second.ReadResult()), kFontActivationState_Inactive);
    second.Take(6);
    second.Close();
    HostConnection third(6);
    EXPECT_TRUE(IsFontActive());
    third.AskForFont(7);
    EXPECT_EQ(StateBefore(third.ReadResult()), kFontActivationState_ActivatedByPlugin);
    third.Close();
    mWorld.RunForJson({"status"});
    EXPECT_TRUE(IsFontActive()) << "what was held before the request that got lost stays";
}

TEST_F(LostAnswers, AnActivationIsUndoneAlsoWhenTheAgentDiedBeforeItsAnswerWasTaken) {
    for (const bool isTaken : {true, false}) {
        HostConnection connection;
        connection.AskForFont(5);
        connection.Read();
        mWorld.KillAgent();
        mWorld.StartAgent();
        EXPECT_TRUE(IsFontActive()) << "the host may have taken it";
        HostConnection next(isTaken ? 5 : 4);
        EXPECT_TRUE(isTaken || GoesFont());
        EXPECT_EQ(IsFontActive(), isTaken);
        next.AskForFont(6);
        EXPECT_EQ(StateBefore(next.ReadResult()),
                  isTaken ? kFontActivationState_ActivatedByPlugin : kFontActivationState_Inactive);
        next.Take(6);
        next.Ask(7, method::kDeactivateFonts, {{"fonts", {1}}});
        EXPECT_EQ(next.ReadResult()["deactivated"].size(), 1u);
    }
}

TEST_F(LostAnswers, AnActivationIsKeptWhereTheAgentIsStoppedBeforeItHearsThatItsAnswerWasTaken) {
    HostConnection connection;
    connection.AskForFont(5);
    mWorld.StopAgent();  // the answer lies ready, and a goodbye behind it
    EXPECT_EQ(StateBefore(connection.ReadResult()), kFontActivationState_Inactive);
    mWorld.StartAgent();
    EXPECT_TRUE(IsFontActive());
    HostConnection next(5);
    next.Ask(6, method::kGetClientStates, {{"fonts", {1}}});
    EXPECT_EQ(next.ReadResult()["states"][0]["isActive"], true);
}

TEST_F(LostAnswers, WhatIsUndoneAndDoneAgainIsNoNews) {
    HostConnection first;
    first.AskForFont(5);
    first.Read();
    mWorld.KillAgent();
    mWorld.StartAgent();
    HostConnection listener(std::nullopt);
    listener.Ask(1, method::kSubscribe, Json::object());
    listener.Read();
    HostConnection second;
    second.AskForFont(6);
    EXPECT_EQ(StateBefore(second.ReadResult()), kFontActivationState_Inactive);
    mWorld.RunForJson({"logout"});
    EXPECT_EQ(IntegerMember(listener.Read(), "notification"), kPluginCallback_LoggedOut);
}

TEST_F(LostAnswers, ARepeatedRequestIsAnsweredAsTheFirstTime) {
    HostConnection first;
    first.AskForFont(5);
    first.Read();
    first.Take(5);
    first.Ask(6, method::kDeactivateFonts, {{"fonts", {1}}});
    const Json deactivated = first.ReadResult();
    EXPECT_EQ(deactivated["deactivated"].size(), 1u);
    HostConnection second(5);
    second.Ask(7, method::kDeactivateFonts, {{"fonts", {1}}}, 6);
    EXPECT_EQ(second.ReadResult(), deactivated);

    second.Ask(8, method::kCreateSet, {{"name", "Poster"}});
    const Json set = second.ReadResult();
    mWorld.KillAgent();
    mWorld.StartAgent();
    HostConnection third(7);
    third.Ask(9, method::kCreateSet, {{"name", "Poster"}}, 8);
    EXPECT_EQ(third.ReadResult(), set);
    third.Ask(10, method::kCreateSet, {{"name", "Poster"}}, 9);
    EXPECT_EQ(third.ReadResult(), set) << "a second time";
    third.Ask(11, method::kCreateSet, {{"name", "Poster"}});
    EXPECT_EQ(IntegerMember(third.Read(), "code"), CoreErrorCodes::kItemAlreadyExists)
        << "a request of its own";
    EXPECT_EQ(CountSets(), 1u);
}

TEST_F(LostAnswers, ARequestWhoseClientHasGoneIsNotBegun) {
    HostConnection connection;
    SuspendProcess(mWorld.AgentProcess());
    connection.Ask(5, method::kCreateSet, {{"name", "Poster"}});
    connection.Close();
    ResumeProcess(mWorld.AgentProcess());
    EXPECT_EQ(CountSets(), 0u);
}

TEST_F(LostAnswers, WhatAnotherHostHoldsCountsAsInactiveSoThatEachReturnsWhatItTook) {
    TestProcess other({TEST_HOST_PROGRAM, "/other", "Sample-Bold"});
    ASSERT_EQ(other.ReadLine(), "1");
    HostConnection connection;
    connection.AskForFont(5);
    EXPECT_EQ(StateBefore(connection.ReadResult()), kFontActivationState_Inactive);
    connection.Take(5);
    other.Finish();
    mWorld.RunForJson({"status"});
    EXPECT_TRUE(IsFontActive());
    connection.Ask(6, method::kDeactivateFonts, {{"fonts", {1}}});
    connection.Read();
    EXPECT_TRUE(GoesFont());
    mWorld.RunForJson({"activate", "Sample-Bold"});
    connection.AskForFont(7);
    EXPECT_EQ(StateBefore(connection.ReadResult()), kFontActivationState_ActivatedByUser);
}

/// The next request over a connection that is about to be greeted.
Json AcceptRequest(WaitingStream& agent) {
    agent.Accept();
    agent.ReadMessage();
    agent.Write(*EncodeMessage({{"id", 0}, {"code", 0}, {"result", Json::object()}}));
    return agent.ReadMessage();
}

void Answer(WaitingStream& agent, const Json& request) {
    agent.Write(*EncodeMessage({{"id", request["id"]}, {"code", 0}, {"result", {{"loggedIn", true}}}}));
}

TEST(LostAnswersOfTheLibrary, ARequestIsTheSameThoughTheAgentWasAskedHowItIsInBetween) {
    TestWorld world;
    WaitingStream agent;
    const std::string address =
        platform::LocalStreamAddresses("Test", "Scripted", world.Path("scripted")).front();
    agent.Listen(address);
    world.Write("data/Vantorix/Pellwick/agent.address", address);
    Json first;
    Json second;
    std::thread scripted([&] {
        first = AcceptRequest(agent);
        agent.Close();
        Answer(agent, AcceptRequest(agent));
        second = agent.ReadMessage();
        Answer(agent, second);
    });
    const TestLibrary library;
    int32_t set = 0;
    const auto name = cf::String("Poster");
    EXPECT_EQ(library.CreateTopLevelSet(library.Facade(), name.get(), 1, &set),
              GIPCClient::kServiceUnavailable);
    bool isLoggedIn = false;
    EXPECT_EQ(library.GetIsLoggedIn(library.Facade(), &isLoggedIn), 0u);
    EXPECT_EQ(library.CreateTopLevelSet(library.Facade(), name.get(), 1, &set), 0u);
    scripted.join();
    library.CleanUpOnShutdown();
    EXPECT_EQ(second["repeats"], first["id"]);
    EXPECT_GT(second["id"], first["id"]);
}

}  // namespace
}  // namespace pellwick::test
