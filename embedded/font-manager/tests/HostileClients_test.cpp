// Clients that mean harm, or are broken: the agent stays up, serves its own clients, and its records are the
// same.
#include <gtest/gtest.h>

#include <cstdio>
#include <list>
#include <nlohmann/json.hpp>
#include <random>

#include "ipc/AgentConnection.h"
#include "ipc/FrameBuffer.h"
#include "ipc/Message.h"
#include "tests/support/RawClient.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

// A fixed seed: a failure can be had again.
class Noise {
public:
    size_t Below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(mEngine); }
    std::string Bytes(size_t size) {
        std::string bytes(size, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(Below(256));
        return bytes;
    }
    /// The bytes with a few of them changed, left out or added.
    std::string Mutated(std::string bytes) {
        for (size_t change = 0; change <= Below(4) && !bytes.empty(); ++change) {
            const size_t place = Below(bytes.size());
            switch (Below(3)) {
                case 0:
                    bytes[place] = static_cast<char>(Below(256));
                    break;
                case 1:
                    bytes.erase(place, 1 + Below(8));
                    break;
                default:
                    bytes.insert(place, Bytes(1 + Below(8)));
            }
        }
        return bytes;
    }
    Json Value(int depth = 0) {
        switch (Below(depth < 3 ? 7 : 5)) {
            case 0:
                return nullptr;
            case 1:
                return Below(2) == 0;
            case 2:
                return static_cast<int64_t>(Below(SIZE_MAX));
            case 3:
                return -static_cast<double>(Below(1000)) / 7;
            case 4:
                return Bytes(Below(40));
            case 5: {
                Json array = Json::array();
                for (size_t left = Below(4); left > 0; --left)
                    array.push_back(Value(depth + 1));
                return array;
            }
            default:
                return {{Bytes(Below(6)), Value(depth + 1)}};
        }
    }

private:
    std::mt19937_64 mEngine{20261121};
};

// What reads, and what there is not.
constexpr const char* kMethods[] = {"GetStatus", "ListFonts", "ListWorkgroups",
                                    "GetFont",   "GetFonts",  "FindByPostScriptName",
                                    "Hello",     "",          "Dance"};

std::string RandomRequest(Noise& noise) {
    Json request{{"id", noise.Value()}, {"method", kMethods[noise.Below(std::size(kMethods))]}};
    request["args"] = Json{{"font", noise.Value()},
                           {"fonts", noise.Value()},
                           {"name", noise.Value()},
                           {"workgroup", noise.Value()},
                           {"protocol", noise.Value()}};
    if (noise.Below(10) == 0)
        request["method"] = noise.Value();
    return EncodeMessage(request).value_or("");
}

std::string MutatedRequest(Noise& noise) {
    const std::string frame = RandomRequest(noise);
    if (noise.Below(4) == 0)
        return noise.Mutated(frame);  // its announced size as well
    const std::string payload = frame.size() > 4 ? frame.substr(4) : frame;
    return MakeFrame(noise.Below(4) == 0 ? noise.Bytes(noise.Below(200)) : noise.Mutated(payload))
        .value_or("");
}

class HostileClients : public testing::Test {
protected:
    HostileClients() {
        world.RunForJson({"add", world.WriteFont("Sample-Bold"), world.WriteFont("Sample-Italic")});
        world.RunForJson({"activate", "Sample-Bold"});
        world.RunForJson({"set", "create", "kept"});
        recordsBefore = Records();
        process = Status()["process"];
    }
    Json Status() { return world.RunForJson({"status"}); }
    Json Records() {
        return {world.RunForJson({"list"}), world.RunForJson({"workgroup", "list"}),
                world.RunForJson({"set", "list"})};
    }
    void ExpectUnharmed() {
        EXPECT_EQ(Status()["process"], process) << "the same agent";
        EXPECT_EQ(Records(), recordsBefore);
        EXPECT_EQ(world.ActiveFiles().size(), 1u);
    }

    TestWorld world;
    Json recordsBefore;
    Json process;
    Noise noise;
};

TEST_F(HostileClients, ThousandsOfFramesOfNonsense) {
    int sent = 0;
    for (int connection = 0; sent < FRAMES_OF_NONSENSE; ++connection) {
        // The first malformed frame ends a connection, so these are sent few at a time.
        const bool isMutated = connection % 10 != 0;
        std::string burst;
        for (int count = isMutated ? 3 : 173; count > 0; --count, ++sent)
            burst += isMutated ? MutatedRequest(noise) : RandomRequest(noise);
        RawClient().Send(burst);
    }
    std::printf("%d frames\n", sent);
    ExpectUnharmed();
}

TEST_F(HostileClients, FiveHundredConnectionsAtOnce) {
    std::list<RawClient> clients(500);
    for (RawClient& client : clients)
        client.Send(std::string("\x20\0\0\0ha", 6));  // half a frame
    AgentConnection good(std::chrono::seconds(30));
    Json result;
    EXPECT_EQ(good.Call("GetStatus", Json::object(), result), CoreErrorCodes::kSuccess);
    clients.clear();
    ExpectUnharmed();
}

}  // namespace
}  // namespace pellwick::test
