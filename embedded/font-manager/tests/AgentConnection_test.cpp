// How a client gets on with agents that are slow, old or foreign.
#include "ipc/AgentConnection.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "common/Locations.h"
#include "common/Protocol.h"
#include "tests/support/TestWorld.h"
#include "tests/support/WaitingStream.h"

namespace pellwick::test {
namespace {

/// An agent that answers the greeting and then does as a script says.
class ScriptedAgent {
public:
    using Script = std::function<void(ScriptedAgent&)>;

    explicit ScriptedAgent(const TestWorld& world, Script script) {
        const std::string address =
            platform::LocalStreamAddresses("Test", "Scripted", world.Path("scripted")).front();
        mStream.Listen(address);
        world.Write("data/Vantorix/Pellwick/agent.address", address);
        mThread = std::thread([this, script] {
            mStream.Accept();
            Answer(Read(), CoreErrorCodes::kSuccess);
            script(*this);
            mStream.Close();
        });
    }
    ~ScriptedAgent() { mThread.join(); }

    Json Read() { return mStream.ReadMessage(); }
    void Send(const Json& message) { mStream.Write(*EncodeMessage(message)); }
    void Answer(const Json& request, ErrorCode code) {
        Send({{"id", request["id"]}, {"code", code}, {"result", {{"message", "as the script says"}}}});
    }
    void SendBytes(const std::string& bytes) { mStream.Write(bytes); }

private:
    WaitingStream mStream;
    std::thread mThread;
};

ErrorCode CallWith(const ScriptedAgent::Script& script,
                   std::chrono::milliseconds limit = std::chrono::seconds(30)) {
    const TestWorld world;
    ScriptedAgent agent(world, script);
    AgentConnection connection(limit);
    Json result;
    const ErrorCode code = connection.Call(method::kGetStatus, Json::object(), result);
    Json ignored;
    EXPECT_TRUE(code == CoreErrorCodes::kSuccess || code == CoreErrorCodes::kNotFound ||
                connection.Call(method::kGetStatus, Json::object(), ignored) == code);
    return code;
}

TEST(AgentConnection, WaitsForASlowAgentAsLongAsItGivesSignsOfLife) {
    EXPECT_EQ(CallWith(
                  [](ScriptedAgent& agent) {
                      const Json request = agent.Read();
                      for (int count = 0; count < 6; ++count) {
                          std::this_thread::sleep_for(std::chrono::milliseconds(500));
                          agent.Send({{"working", true}});
                      }
                      agent.Answer(request, CoreErrorCodes::kNotFound);
                  },
                  std::chrono::seconds(2)),
              CoreErrorCodes::kNotFound);
}

TEST(AgentConnection, LeavesOutWhatItDidNotAskFor) {
    EXPECT_EQ(CallWith([](ScriptedAgent& agent) {
                  const Json request = agent.Read();
                  agent.Send({{"id", 999}, {"code", 1}});
                  agent.Send({{"notification", 4}, {"data", nullptr}});
                  agent.Answer(request, CoreErrorCodes::kSuccess);
              }),
              CoreErrorCodes::kSuccess);
}

TEST(AgentConnection, TellsAGoodbyeFromABreakAndFromNonsense) {
    EXPECT_EQ(CallWith([](ScriptedAgent& agent) { agent.Send({{"goodbye", true}}); }), GAgentIF::kShutdown);
    EXPECT_EQ(CallWith([](ScriptedAgent& agent) { agent.Read(); }), GIPCClient::kServiceUnavailable);
    EXPECT_EQ(CallWith([](ScriptedAgent& agent) {
                  agent.Read();
                  agent.SendBytes(std::string("\4\0\0\0junk", 8));
              }),
              GIPCClient::kServiceUnavailable);
}

}  // namespace
}  // namespace pellwick::test
