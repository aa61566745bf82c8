// The system's own fonts: what fontconfig offers, which in a test is what its user has installed.
#include <sys/stat.h>

#include <fstream>
#include <thread>

#include "TestFonts.h"
#include "tests/support/AgentTest.h"

namespace pellwick::test {
namespace {

class SystemFonts : public AgentTest {
protected:
    std::string Install(const std::string& file, const TestFontNames& names) const {
        return mWorld.Write("data/fonts/" + file, MakeTestFont(names));
    }
    bool WaitFor(const std::vector<std::string>& names) const {
        return Eventually([&] { return NamesOf(mWorld.RunForJson({"list", "--system"})["fonts"]) == names; });
    }
    static Json Activate(GoodClient& client, const std::string& name) {
        client.Call(method::kActivateDocumentFonts,
                    {{member::kFonts, {{{kGS_PostScriptNameKey, name}}}}, {member::kDocument, "/a"}});
        return client.result;
    }
};

TEST_F(SystemFonts, AreActiveForDocumentsAndStayAsTheyAre) {
    const std::string path = Install("Plain.ttf", {"Plain-Bold", "Plain", "Bold"});
    ASSERT_TRUE(WaitFor({"Plain-Bold"}));
    GoodClient host;
    const Json matched = Activate(host, "Plain-Bold")[member::kMatched];
    ASSERT_EQ(matched.size(), 1u);
    EXPECT_EQ(matched[0][kGS_ActivationStateKey], kFontActivationState_SystemFont);
    EXPECT_EQ(matched[0][kGS_PathKey], path);
    EXPECT_EQ(matched[0][kGS_WorkgroupTypeKey], kWorkgroupType_System);
    EXPECT_EQ(matched[0][kGS_StyleKey], "Bold");

    const Json status = mWorld.RunForJson({"status"});
    EXPECT_EQ(status[member::kHosts], 0);
    EXPECT_EQ(status[member::kFonts], 0);
    EXPECT_EQ(status[member::kSystemFonts], 1);
    EXPECT_EQ(Fonts().size(), 0u) << "they are listed when they are asked for";
    for (const char* word : {"remove", "activate", "deactivate"})
        EXPECT_THAT(mWorld.Run({word, "Plain-Bold"}).errors, HasSubstr("Plain-Bold is the system's own"))
            << word;
    EXPECT_NE(host.Call(method::kRemoveFonts, {{member::kFonts, {matched[0][kGS_DatabaseIDKey]}}}), 0u);
    EXPECT_EQ(host.Call(method::kRenderPreviews, {{member::kFonts, {matched[0][kGS_DatabaseIDKey]}}}), 0u);
    EXPECT_EQ(host.result[member::kPreviews].size(), 1u);
    EXPECT_TRUE(fs::exists(platform::Utf8Path(path)));
    EXPECT_THAT(mWorld.ActiveFiles(), testing::IsEmpty());
}

TEST_F(SystemFonts, AreSeenAsTheyComeChangeAndGo) {
    const std::string path = Install("deep/er/One.ttf", {"One-Regular", "One"});
    ASSERT_TRUE(WaitFor({"One-Regular"}));
    Install("deep/er/Two.ttf", {"Two-Regular", "Two"});
    mWorld.Write("data/fonts/Broken.ttf", MakeTestFont({"Broken", "Broken"}).substr(0, 300));
    ASSERT_TRUE(WaitFor({"One-Regular", "Two-Regular"}));
    Install("deep/er/One.ttf", {"Other-Regular", "Another"});
    ASSERT_TRUE(WaitFor({"Two-Regular", "Other-Regular"}));
    fs::remove(platform::Utf8Path(path));
    ASSERT_TRUE(WaitFor({"Two-Regular"}));

    // Our own links stand in such a folder too. What changed while there was no agent is seen at its start.
    Add("Own-Regular");
    ASSERT_EQ(Run({"activate", "Own-Regular"}), 0);
    mWorld.StopAgent();
    Install("Three.ttf", {"Three-Regular", "Three"});
    mWorld.StartAgent();
    ASSERT_TRUE(WaitFor({"Two-Regular", "Three-Regular"}));
    EXPECT_EQ(mWorld.ActiveFiles().size(), 1u);
}

TEST_F(SystemFonts, AreReadBeforeTheFirstDocumentIsAnswered) {
    mWorld.StopAgent();
    Install("Plain.ttf", {"Plain-Bold", "Plain", "Bold"});
    // The system does not tell before it has read this.
    const std::string configuration = platform::EnvironmentVariable("FONTCONFIG_FILE");
    const std::string pipe = mWorld.Path("fonts.conf");
    const ScopedVariable slow("FONTCONFIG_FILE", pipe);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    mWorld.StartAgent();
    std::thread later([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        std::ofstream(pipe) << ContentOf(configuration);
        platform::WriteWholeFile(pipe, ContentOf(configuration));
    });
    GoodClient host;
    EXPECT_EQ(Activate(host, "Plain-Bold")[member::kMatched].size(), 1u);
    later.join();
}

TEST_F(SystemFonts, GiveWayToANewerVersionAlone) {
    Install("Plain.ttf", {"Plain-Regular", "Plain", "Regular", "2.0"});
    ASSERT_TRUE(WaitFor({"Plain-Regular"}));
    for (const auto& [version, expectedState] : {std::pair{"1.0", kFontActivationState_SystemFont},
                                                 {"2.0", kFontActivationState_SystemFont},
                                                 {"3.0", kFontActivationState_Inactive}}) {
        ASSERT_EQ(Run({"add", mWorld.WriteFont("Plain-Regular", version)}), 0);
        GoodClient host;
        const Json matched = Activate(host, "Plain-Regular")[member::kMatched];
        ASSERT_EQ(matched.size(), 1u);
        EXPECT_EQ(matched[0][kGS_ActivationStateKey], expectedState) << version;
    }
    // Until the user prefers another one of the name.
    const Json rivals = mWorld.RunForJson({"conflicts"})["fonts"];
    ASSERT_EQ(rivals.size(), 4u);
    EXPECT_THAT(mWorld.Run({"conflicts"}).output, HasSubstr(", same outlines and widths"));
    EXPECT_EQ(rivals[3][member::kIsChosen], true);
    const std::string systems = std::to_string(IntegerMember(rivals[0], kGS_DatabaseIDKey));
    EXPECT_EQ(Run({"prefer", "Plain-Regular"}), 1) << "four are called so";
    EXPECT_EQ(Run({"prefer", systems}), 0);
    GoodClient host;
    EXPECT_EQ(Activate(host, "Plain-Regular")[member::kMatched][0][kGS_ActivationStateKey],
              kFontActivationState_SystemFont);
    EXPECT_EQ(Run({"prefer", "--forget", systems}), 0);
    EXPECT_EQ(mWorld.RunForJson({"conflicts"})["fonts"][3][member::kIsChosen], true);
}

}  // namespace
}  // namespace pellwick::test
