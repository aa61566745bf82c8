// Clients that mean harm, or are broken: the agent stays up, serves its own clients, and its records are the
// same.
#include <gtest/gtest.h>

#include <list>
#include <nlohmann/json.hpp>
#include <random>

#include "ipc/AgentConnection.h"
#include "ipc/Message.h"
#include "tests/support/RawClient.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

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
};

// A fixed seed: a failure can be had again. Of requests of any content the fuzz targets try more.
TEST_F(HostileClients, NonsenseOverHundredsOfConnections) {
    std::mt19937 random{20261121};
    const std::string request = *EncodeMessage(
        {{"id", 1}, {"method", "ListFonts"}, {"args", {{"after", 0}, {"fonts", {1, "x", nullptr}}}}});
    std::list<RawClient> clients(500);
    for (RawClient& client : clients) {
        std::string burst = request + request;
        for (size_t change = 0; change < 4; ++change)
            burst[random() % burst.size()] = static_cast<char>(random());
        client.Send(burst + std::string("\x20\0\0\0ha", 6));  // and half a frame
    }
    AgentConnection good(std::chrono::seconds(30));
    Json result;
    EXPECT_EQ(good.Call("GetStatus", Json::object(), result), CoreErrorCodes::kSuccess);
    clients.clear();
    ExpectUnharmed();
}

}  // namespace
}  // namespace pellwick::test
