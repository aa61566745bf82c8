// What the agent leaves to others: while they are at it, everybody else is served.
#include <thread>

#include "HostileFonts.h"
#include "TestFiles.h"
#include "TestFonts.h"
#include "platform/DynamicLibrary.h"
#include "tests/support/AgentTest.h"
#include "workers/FontWorkMessages.h"

namespace pellwick::test {
namespace {

using std::chrono::milliseconds;

std::vector<platform::ProcessId> Workers() {
    std::vector<platform::ProcessInfo> processes;
    const auto isWorker = [](const std::string& name) {
        return name == platform::ProgramFileName(kFontWorkerProgram);
    };
    EXPECT_FALSE(platform::Current<platform::Processes>().List(isWorker, processes));
    std::vector<platform::ProcessId> workers;
    for (const platform::ProcessInfo& process : processes)
        workers.push_back(process.id);
    return workers;
}

/// An agent whose process that reads fonts is there and does not move.
class LanesTest : public AgentTest {
protected:
    LanesTest() {
        Add("First-Bold");
        worker = Workers().at(0);
        SuspendProcess(worker);
    }
    /// `waits`: until its copy has arrived, which waits to be read.
    std::unique_ptr<TestProcess> BeginToAdd(const std::string& font, bool waits = false) {
        auto adding =
            std::make_unique<TestProcess>(std::vector<std::string>{BuiltFile(PELLWICK_PROGRAM), "add", font});
        EXPECT_TRUE(!waits || Eventually([&] { return !Arriving().empty(); }));
        return adding;
    }
    std::unique_ptr<TestProcess> BeginToAddSecond() {
        return BeginToAdd(mWorld.WriteFont("Second-Bold"), true);
    }
    std::vector<std::string> Arriving() {
        const std::string session = mPlaces.session == 0 ? "" : "-" + std::to_string(mPlaces.session);
        return mWorld.FilesBelow("data/Vantorix/Pellwick/vault/incoming" + session);
    }

    platform::ProcessId worker = 0;
};

TEST_F(LanesTest, EverybodyElseIsServedWhileAFontIsReadAndWhoWaitsSeesSignsOfLife) {
    const auto adding = BeginToAddSecond();
    GoodClient other(milliseconds(1000));
    const Json fonts = {{"PostScriptName", "First-Bold"}};
    EXPECT_EQ(other.Call(method::kActivateDocumentFonts, {{"fonts", {fonts}}, {"document", "d"}}), 0u);
    EXPECT_EQ(other.result["matched"].size(), 1u);
    EXPECT_EQ(other.Call(method::kListFonts, {{"after", 0}}), 0u);
    EXPECT_EQ(other.result["fonts"].size(), 1u) << "it is still being added";
    RawClient waiting;
    waiting.Send({{"id", 1}, {"method", "AddFile"}, {"args", {{"path", mWorld.WriteFont("Fourth-Bold")}}}});
    std::thread later([this] {
        std::this_thread::sleep_for(milliseconds(1500));
        ResumeProcess(worker);
    });
    EXPECT_EQ(other.Call(method::kAddFile, {{"path", mWorld.WriteFont("Third-Bold")}}), 0u);
    later.join();
    EXPECT_EQ(adding->Finish().status, 0);
    int signs = 0;
    while (BoolMember(waiting.ReadMessage(), member::kWorking))
        ++signs;
    EXPECT_THAT(signs, testing::AllOf(testing::Ge(2), testing::Lt(500))) << "in 1.5 seconds or somewhat more";
    EXPECT_EQ(Fonts().size(), 4u);
}

TEST_F(LanesTest, AWorkerOrAClientThatIsEndedCostsNoFont) {
    KillProcess(worker);
    Add("Third-Bold");
    SuspendProcess(Workers().at(0));
    const auto adding = BeginToAddSecond();
    KillProcess(Workers().at(0));
    EXPECT_EQ(adding->Finish().status, 0);
    EXPECT_EQ(Fonts().size(), 3u);
    worker = Workers().at(0);
    SuspendProcess(worker);
    BeginToAdd(mWorld.WriteFont("Fourth-Bold"), true)->Kill();
    ResumeProcess(worker);
    EXPECT_TRUE(Eventually([&] { return Fonts().size() == 4; }));
    EXPECT_EQ(Run({"doctor"}), 0);
}

TEST_F(LanesTest, AFontThatTwoClientsAddUnderTwoNamesIsKeptOnce) {
    const std::string font = mWorld.WriteFont("Third-Bold");
    const std::string other = mWorld.Write("other.otf", MakeTestFont({"Third-Bold", "Third", "Bold"}));
    const auto before = BeginToAddSecond();
    const auto left = BeginToAdd(font);
    const auto right = BeginToAdd(other);
    std::this_thread::sleep_for(milliseconds(500));  // until both wait, so that neither finds the other's
    ResumeProcess(worker);
    EXPECT_EQ(left->Finish().status + right->Finish().status, 0);
    EXPECT_EQ(Fonts().size(), 3u);
    EXPECT_TRUE(Eventually([&] { return mWorld.VaultFiles().size() == 3; }));
}

TEST_F(LanesTest, TheAgentEndsInOrderWhileAFontIsRead) {
    const auto adding = BeginToAddSecond();
    mWorld.StopAgent();
    EXPECT_NE(adding->Finish().status, 0);
    EXPECT_TRUE(Eventually([] { return Workers().empty(); }));
    EXPECT_TRUE(Arriving().empty());
}

// Each of these once kept the agent from answering anybody, or took all memory.
TEST_F(AgentTest, AddsDrawsAndRemovesHostileFontsLikeOthers) {
    GoodClient client(std::chrono::seconds(10));
    for (const hostile::Font& font : hostile::All()) {
        const std::string path = mWorld.Write(std::string("fonts/") + font.name, font.content);
        ASSERT_EQ(client.Call(method::kAddFile, {{"path", path}}), 0u) << font.name;
        const Json first = client.result["fonts"][0][kGS_DatabaseIDKey];
        EXPECT_EQ(client.Call(method::kRenderPreviews, {{"fonts", {first}}}), 0u) << font.name;
    }
    EXPECT_EQ(Run({"doctor"}), 0);
    std::map<std::string, int> faces;  // one of each file
    const Json fonts = Fonts();
    for (const Json& font : fonts)
        faces[font[kGS_ChecksumKey]] = font[kGS_DatabaseIDKey];
    for (const auto& [file, face] : faces)
        EXPECT_EQ(Run({"remove", "--yes", std::to_string(face)}), 0);
    EXPECT_TRUE(Fonts().empty());
    EXPECT_TRUE(mWorld.VaultFiles().empty());
}

}  // namespace
}  // namespace pellwick::test
