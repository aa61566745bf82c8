// What clients can make the agent use of the machine's memory, and what becomes of it when there is none.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "common/FontManagerLimits.h"
#include "ipc/AgentConnection.h"
#include "ipc/FrameBuffer.h"
#include "tests/support/RawClient.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

constexpr size_t kMegabyte = size_t{1} << 20;

class AgentMemory : public testing::Test {
protected:
    void SetUp() override {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "sanitizers need memory of their own";
#endif
        mWorld.StartAgent();
    }
    /// A line of what the system says about the agent, in bytes.
    size_t Memory(const std::string& name) const {
        std::ifstream file("/proc/" + std::to_string(mWorld.AgentProcess()) + "/status");
        for (std::string line; std::getline(file, line);) {
            if (line.compare(0, name.size() + 1, name + ":") == 0)
                return std::stoul(line.substr(name.size() + 1)) << 10;
        }
        return 0;
    }
    void LeaveNoMoreThan(size_t size) const {
        const rlim_t limit = Memory("VmSize") + size;
        const rlimit limits{limit, RLIM_INFINITY};
        ASSERT_EQ(prlimit(static_cast<pid_t>(mWorld.AgentProcess()), RLIMIT_AS, &limits, nullptr), 0);
    }
    void ExpectIsServedOn() {
        AgentConnection client(std::chrono::seconds(30));
        Json status;
        ASSERT_EQ(client.Call("GetStatus", Json::object(), status), CoreErrorCodes::kSuccess);
        EXPECT_EQ(status["process"], mWorld.AgentProcess());
    }
    /// As many bytes in a message of as many values as there may be.
    static std::string LargeMessage() {
        const size_t count = kMaxMessageValues - 100;
        const Json texts = Json::array_t(count, std::string(kMaxMessageSize / count - 4, 'x'));
        return *EncodeMessage({{"id", 1}, {"method", "GetFonts"}, {"args", {{"fonts", texts}}}});
    }

    TestWorld mWorld;
};

TEST_F(AgentMemory, IsNotUsedUpByOneMessageAndIsGivenBack) {
    const size_t before = Memory("VmRSS");
    std::string nonsense =
        "\x81\xA4"
        "args"
        "\xDD";
    const size_t count = kMaxMessageSize - nonsense.size() - 4;
    for (int shift = 24; shift >= 0; shift -= 8)
        nonsense += static_cast<char>(count >> shift & 0xFF);
    nonsense.append(count, '\x90');
    RawClient client;
    client.Send(*MakeFrame(nonsense));
    EXPECT_TRUE(client.IsClosedByAgent());
    EXPECT_LT(Memory("VmHWM"), before + 180 * kMegabyte);
    const auto isGivenBack = [&] { return Memory("VmRSS") < before + 20 * kMegabyte; };
    EXPECT_TRUE(Eventually(isGivenBack)) << Memory("VmRSS");
    RawClient().Send(LargeMessage());
    ExpectIsServedOn();
    EXPECT_LT(Memory("VmHWM"), before + 220 * kMegabyte);
    EXPECT_TRUE(Eventually(isGivenBack)) << Memory("VmRSS");
}

TEST_F(AgentMemory, WhereThereIsNoneOneClientIsLetGoOfAndTheOthersAreServed) {
    AgentConnection other(std::chrono::seconds(30));
    Json status;
    ASSERT_EQ(other.Call("GetStatus", Json::object(), status), CoreErrorCodes::kSuccess);
    const std::string message = LargeMessage();
    // Enough for part of it: for the bytes, say, but not for the values.
    for (const size_t megabytes : {30, 20, 10, 5}) {
        LeaveNoMoreThan(megabytes * kMegabyte);
        RawClient client;
        try {
            client.Send(message);
        } catch (const std::exception&) {  // closed in the middle of it
        }
        EXPECT_TRUE(client.IsClosedByAgent()) << megabytes;
        EXPECT_EQ(other.Call("GetStatus", Json::object(), status), CoreErrorCodes::kSuccess) << megabytes;
        ExpectIsServedOn();
    }
    std::string log;
    for (const std::string& file : mWorld.FilesBelow("")) {
        if (file.ends_with("Pellwick.log"))
            std::getline(std::ifstream(file), log, '\0');
    }
    EXPECT_NE(log.find("out of memory"), std::string::npos);
}

}  // namespace
}  // namespace pellwick::test
