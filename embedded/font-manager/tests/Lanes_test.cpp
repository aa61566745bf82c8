// What the agent leaves to others: while they are at it, everybody else is served.
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <nlohmann/json.hpp>
#include <thread>

#include "HostileFonts.h"
#include "TestFonts.h"
#include "common/Protocol.h"
#include "ipc/AgentConnection.h"
#include "platform/DynamicLibrary.h"
#include "platform/Files.h"
#include "tests/support/TestWorld.h"
#include "workers/FontWorkMessages.h"

namespace pellwick::test {
namespace {

using std::chrono::milliseconds;

std::vector<platform::ProcessId> Workers() {
    std::vector<platform::ProcessInfo> processes;
    EXPECT_FALSE(platform::Current<platform::Processes>().List(processes));
    std::vector<platform::ProcessId> workers;
    for (const platform::ProcessInfo& process : processes) {
        if (platform::NamePart(process.executablePath) == platform::ProgramFileName(kFontWorkerProgram))
            workers.push_back(process.id);
    }
    return workers;
}

/// An agent whose process that reads fonts is there and does not move.
class LanesTest : public testing::Test {
protected:
    LanesTest() {
        world.StartAgent();
        EXPECT_EQ(world.RunForJson({"add", world.WriteFont("First-Bold")})["added"].size(), 1u);
        const auto workers = Workers();
        EXPECT_EQ(workers.size(), 1u);
        worker = workers.at(0);
        SuspendProcess(worker);
    }
    std::unique_ptr<TestProcess> BeginToAdd(const std::string& font) {
        return std::make_unique<TestProcess>(std::vector<std::string>{PELLWICK_PROGRAM, "add", font});
    }
    size_t FontCount() { return world.RunForJson({"list"})["fonts"].size(); }
    /// A copy has arrived, which waits to be read.
    bool IsAnyArriving() {
        return Eventually([&] { return !world.FilesBelow("data/Vantorix/Pellwick/vault/incoming").empty(); });
    }

    TestWorld world;
    platform::ProcessId worker = 0;
};

TEST_F(LanesTest, EverybodyElseIsServedWhileAFontIsRead) {
    const auto adding = BeginToAdd(world.WriteFont("Second-Bold"));
    ASSERT_TRUE(IsAnyArriving());
    AgentConnection other(milliseconds(1000));
    Json result;
    const Json fonts = {{"PostScriptName", "First-Bold"}};
    EXPECT_EQ(other.Call(method::kActivateDocumentFonts, {{"fonts", {fonts}}, {"document", "d"}}, result),
              0u);
    EXPECT_EQ(result["matched"].size(), 1u);
    EXPECT_EQ(other.Call(method::kListFonts, {{"after", 0}}, result), 0u);
    EXPECT_EQ(result["fonts"].size(), 1u) << "it is still being added";
    ResumeProcess(worker);
    EXPECT_EQ(adding->Finish().status, 0);
    EXPECT_EQ(FontCount(), 2u);
}

TEST_F(LanesTest, WhoWaitsSeesSignsOfLife) {
    std::thread later([this] {
        std::this_thread::sleep_for(milliseconds(1500));
        ResumeProcess(worker);
    });
    AgentConnection patient(milliseconds(1000));  // for each sign
    Json result;
    EXPECT_EQ(patient.Call(method::kAddFile, {{"path", world.WriteFont("Second-Bold")}}, result), 0u);
    later.join();
}

TEST_F(LanesTest, AWorkerThatIsEndedByOthersCostsNoFont) {
    KillProcess(worker);
    EXPECT_EQ(world.Run({"add", world.WriteFont("Second-Bold")}).status, 0);
    SuspendProcess(Workers().at(0));
    const auto adding = BeginToAdd(world.WriteFont("Third-Bold"));
    ASSERT_TRUE(IsAnyArriving());
    KillProcess(Workers().at(0));
    const ProgramResult result = adding->Finish();
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(FontCount(), 3u);
}

TEST_F(LanesTest, AFontThatTwoClientsAddUnderTwoNamesIsKeptOnce) {
    const std::string font = world.WriteFont("Third-Bold");
    const std::string other = world.Write("other.otf", MakeTestFont({"Third-Bold", "Third", "Bold"}));
    const auto before = BeginToAdd(world.WriteFont("Second-Bold"));
    ASSERT_TRUE(IsAnyArriving());
    const auto left = BeginToAdd(font);
    const auto right = BeginToAdd(other);
    std::this_thread::sleep_for(milliseconds(500));  // until both wait, so that neither finds the other's
    ResumeProcess(worker);
    EXPECT_EQ(left->Finish().status, 0);
    EXPECT_EQ(right->Finish().status, 0);
    EXPECT_EQ(FontCount(), 3u);
    EXPECT_TRUE(Eventually([&] { return world.FilesBelow("data/Vantorix/Pellwick/vault").size() == 3; }));
}

TEST_F(LanesTest, TheAgentEndsInOrderWhileAFontIsRead) {
    const auto adding = BeginToAdd(world.WriteFont("Second-Bold"));
    ASSERT_TRUE(IsAnyArriving());
    world.StopAgent();
    EXPECT_NE(adding->Finish().status, 0);
    EXPECT_TRUE(Eventually([] { return Workers().empty(); }));
    EXPECT_TRUE(world.FilesBelow("data/Vantorix/Pellwick/vault/incoming").empty());
}

TEST_F(LanesTest, ADeadClientsFontIsAddedAllTheSame) {
    const auto adding = BeginToAdd(world.WriteFont("Second-Bold"));
    ASSERT_TRUE(IsAnyArriving());
    adding->Kill();
    adding->Finish();
    ResumeProcess(worker);
    EXPECT_TRUE(Eventually([&] { return FontCount() == 2; }));
    EXPECT_EQ(world.Run({"doctor"}).status, 0);
}

// Each of these once kept the agent from answering anybody, or took all memory.
TEST(HostileFonts, AreAddedDrawnAndRemovedLikeOthers) {
    TestWorld world;
    world.StartAgent();
    AgentConnection connection(std::chrono::seconds(10));
    for (const hostile::Font& font : hostile::All()) {
        Json added;
        const std::string path = world.Write(std::string("fonts/") + font.name, font.content);
        ASSERT_EQ(connection.Call(method::kAddFile, {{"path", path}}, added), 0u) << font.name;
        Json result;
        const Json first = added["fonts"][0]["DatabaseID"];
        EXPECT_EQ(connection.Call(method::kRenderPreviews, {{"fonts", {first}}}, result), 0u) << font.name;
    }
    EXPECT_EQ(world.Run({"doctor"}).status, 0);
    // By one face of each file.
    std::map<std::string, std::string> faces;
    const Json fonts = world.RunForJson({"list"})["fonts"];
    for (const Json& font : fonts)
        faces[font["Checksum"]] = std::to_string(font["DatabaseID"].get<int>());
    for (const auto& [file, face] : faces)
        EXPECT_EQ(world.Run({"remove", face}).status, 0);
    EXPECT_TRUE(world.RunForJson({"list"})["fonts"].empty());
    EXPECT_TRUE(world.FilesBelow("data/Vantorix/Pellwick/vault").empty());
}

}  // namespace
}  // namespace pellwick::test
