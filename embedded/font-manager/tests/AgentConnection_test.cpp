// How a client gets on with agents that are slow, old or foreign.
#include "ipc/AgentConnection.h"

#include <gtest/gtest.h>

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>
#include <nlohmann/json.hpp>
#include <thread>

#include "common/Locations.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

/// An agent that answers the greeting and then does as a script says.
class ScriptedAgent {
public:
    using Script = std::function<void(ScriptedAgent&)>;

    explicit ScriptedAgent(const TestWorld& world, Script script) {
        const std::string address = world.Path("scripted");
        mAcceptor.open(asio::local::stream_protocol());
        mAcceptor.bind(asio::local::stream_protocol::endpoint(address));
        mAcceptor.listen();
        world.Write("data/Vantorix/Pellwick/agent.address", address);
        mThread = std::thread([this, script] {
            mAcceptor.accept(mSocket);
            Answer(Read(), CoreErrorCodes::kSuccess);
            script(*this);
            asio::error_code ignored;
            mSocket.close(ignored);
        });
    }
    ~ScriptedAgent() { mThread.join(); }

    Json Read() {
        std::string header(4, '\0');
        asio::read(mSocket, asio::buffer(header));
        std::string payload(
            static_cast<unsigned char>(header[0]) | static_cast<unsigned char>(header[1]) << 8, '\0');
        asio::read(mSocket, asio::buffer(payload));
        return *DecodeMessage(payload);
    }
    void Send(const Json& message) {
        asio::error_code ignored;
        asio::write(mSocket, asio::buffer(*EncodeMessage(message)), ignored);
    }
    void Answer(const Json& request, ErrorCode code) {
        Send({{"id", request["id"]}, {"code", code}, {"result", {{"message", "as the script says"}}}});
    }
    void SendBytes(const std::string& bytes) { asio::write(mSocket, asio::buffer(bytes)); }

private:
    asio::io_context mLoop;
    asio::local::stream_protocol::acceptor mAcceptor{mLoop};
    asio::local::stream_protocol::socket mSocket{mLoop};
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
