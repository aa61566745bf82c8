// What the agent's commands do, without an agent around them: who is told of it, and who may ask for it.
#include <gmock/gmock.h>

#include "TestFonts.h"
#include "agent/Requests.h"
#include "ipc/FrameBuffer.h"
#include "platform/PrivateFolder.h"
#include "platform/Processes.h"
#include "scan/Checksum.h"
#include "tests/support/TestWorld.h"

namespace pellwick {
namespace {

using Told = std::vector<int32_t>;

class Ears : public Audience {
public:
    void Announce(int32_t type, const Json&) override { told.push_back(type); }
    void KeepAlive() override {}
    void Note(const std::string&) override {}
    void RequestStop() override {}

    Told told;
};

class CommandsTest : public testing::Test {
protected:
    CommandsTest() {
        mClient.process = {platform::CurrentProcessId(), 1};
        for (const char* name : {"Sample-Bold", "Other-Regular"}) {
            const std::string content = MakeTestFont({name, name});
            Checksum checksum;
            checksum.Append(content);
            const FontFile file{0, checksum.Digits(), "font.ttf", ".ttf", content.size()};
            mWorld.Write(mManager.vault.PathOf(file).substr(mWorld.Path("").size()), content);
            FontFace face;
            face.postScriptName = face.family = name;
            for (const Font& font : mManager.fonts.FontsOfFile(mManager.fonts.Add(file, {face})))
                mManager.workgroups.AddFont(mManager.DefaultWorkgroup().id, font.id);
        }
    }
    /// The answer's message.
    Json Do(Client& client, const char* method, const char* arguments) {
        mEars.told.clear();
        CommandContext context{mManager, client, mEars, ++mRequest};
        const auto answer = BeginRequest(context, {{member::kID, mRequest},
                                                   {member::kMethod, method},
                                                   {member::kArguments, Json::parse(arguments)}});
        FrameBuffer buffer;
        buffer.Append(answer->frame.data(), answer->frame.size());
        return DecodeMessage(*buffer.Next()).value();
    }
    ErrorCode CodeOf(const char* method, const char* arguments) {
        return Do(mClient, method, arguments)[member::kCode];
    }

    const test::TestWorld mWorld;
    const Locations mPlaces = [] {
        Locations places = Locations::OfThisUser();
        EXPECT_FALSE(platform::MakePrivateFolder(places.dataFolder));
        return places;
    }();
    FontManager mManager{mPlaces};
    Client mClient;
    Ears mEars;
    long long mRequest = 0;
};

struct Command {
    const char* method;
    const char* arguments;
    Told told;
    bool needsLogIn = false;
};

// One after the other.
const Command kCommands[] = {
    {"SetStandalone", R"({"on":false})", {kPluginCallback_WentOnline}},
    {"SetStandalone", R"({"on":false})", {}},
    {"SetStandalone", R"({"on":true})", {kPluginCallback_WentOffline}},
    {"SetGoogleWebFonts", R"({"on":true})", {kPluginCallback_GoogleWebFontsEnabled}},
    {"CreateWorkgroup", R"({"name":"Print"})", {kPluginCallback_WorkgroupsChanged}},
    {"RenameWorkgroup", R"({"name":"Print","newName":"Web"})", {kPluginCallback_WorkgroupsChanged}},
    {"UseWorkgroup", R"({"name":"Web"})", {kPluginCallback_WorkgroupsChanged}},
    {"DeleteWorkgroup", R"({"name":"Web"})", {kPluginCallback_WorkgroupsChanged}},
    {"CreateSet", R"({"name":"Poster"})", {kPluginCallback_PanelDataChanged}, true},
    {"AddFontsToSets", R"({"fonts":[1],"sets":[1]})", {kPluginCallback_PanelDataChanged}, true},
    {"AddFontsToSets", R"({"fonts":[1],"sets":[1]})", {}, true},
    {"DeleteSet", R"({"set":1})", {kPluginCallback_PanelDataChanged}, true},
    {"CreateSmartList", R"({"smartListName":"All"})", {kPluginCallback_SmartListsChanged}, true},
    {"RenameSmartList",
     R"({"smartListID":1,"smartListName":"A"})",
     {kPluginCallback_SmartListsChanged},
     true},
    {"SetSmartListQuery", R"({"smartListID":1})", {kPluginCallback_SmartListsChanged}, true},
    {"TrySmartListQuery", R"({"smartListID":1})", {}},
    {"DeleteSmartList", R"({"smartListID":1})", {kPluginCallback_SmartListsChanged}, true},
    {"ActivateForUser", R"({"fonts":[1]})", {kPluginCallback_FontActivated}, true},
    {"ActivateForUser", R"({"fonts":[1]})", {}, true},
    {"DeactivateForUser", R"({"fonts":[1]})", {kPluginCallback_FontDeactivated}},
    {"ActivateFonts", R"({"fonts":[1],"document":"/a"})", {kPluginCallback_FontActivated}, true},
    {"KeepFonts", R"({"fonts":[1]})", {}, true},
    {"DeactivateForUser", R"({"fonts":[1]})", {}},
    {"DeactivateFonts", R"({"fonts":[1]})", {kPluginCallback_FontDeactivated}},
    {"ActivateDocumentFonts", R"({"fonts":["Sample-Bold"]})", {kPluginCallback_FontActivated}, true},
    {"DeactivateFonts", R"({"fonts":[1]})", {kPluginCallback_FontDeactivated}},
    {"EnableDesignActivation", R"({"font":1,"enable":true})", {kPluginCallback_FontActivated}, true},
    {"EnableDesignActivation", R"({"font":1,"enable":false})", {kPluginCallback_FontDeactivated}},
    {"PreviewActivateFonts", R"({"fonts":[1],"activate":true})", {kPluginCallback_FontActivated}, true},
    {"PreviewActivateFonts", R"({"fonts":[1],"activate":false})", {kPluginCallback_FontDeactivated}},
    {"PreferFont", R"({"font":1,"on":true})", {kPluginCallback_PanelDataChanged}},
    {"RemoveFonts", R"({"fonts":[1],"dryRun":true})", {}},
    {"RemoveFonts", R"({"fonts":[1]})", {kPluginCallback_PanelDataChanged}},
    {"LogOut", "{}", {kPluginCallback_LoggedOut}},
};

TEST_F(CommandsTest, TellOfWhatTheyChangeAndNothingElse) {
    EXPECT_EQ(CodeOf("LogIn", R"({"name":"ana"})"), 0u);
    EXPECT_EQ(mEars.told, Told{kPluginCallback_LoggedIn});
    EXPECT_EQ(Do(mClient, "GetFont", R"({"font":1})")[member::kResult][kGS_WorkgroupNameKey],
              mManager.DefaultWorkgroup().name);
    for (const auto& [method, arguments, told, needsLogIn] : kCommands) {
        EXPECT_EQ(CodeOf(method, arguments), 0u) << method << arguments;
        EXPECT_EQ(mEars.told, told) << method << arguments;
    }
}

TEST_F(CommandsTest, WhoIsLoggedOutChangesNoFontsSetsOrLists) {
    EXPECT_EQ(CodeOf("LogOut", "{}"), 0u);
    for (const auto& [method, arguments, told, needsLogIn] : kCommands) {
        if (!needsLogIn)
            continue;
        EXPECT_EQ(CodeOf(method, arguments), GZephyrinServerFacade::kNotLoggedIn) << method;
        EXPECT_EQ(mEars.told, Told()) << method;
    }
    EXPECT_EQ(CodeOf("EnableDesignActivation", R"({"font":1,"enable":false})"), 0u)
        << "may end what it began";
}

TEST_F(CommandsTest, WhatAHostDidNotTakeIsUndoneByWhatItAsksForNext) {
    CodeOf("LogIn", R"({"name":"ana"})");
    Client before = mClient, after = mClient;
    Do(before, "Hello", R"({"protocol":1,"taken":0})");
    Do(before, "ActivateFonts", R"({"fonts":[1]})");
    EXPECT_EQ(before.provisionalRequest, mRequest);
    Do(after, "Hello", R"({"protocol":1,"taken":0})");
    Do(after, "ActivateFonts", R"({"fonts":[2]})");
    EXPECT_THAT(mEars.told, testing::UnorderedElementsAre(kPluginCallback_FontActivated,
                                                          kPluginCallback_FontDeactivated));
    Do(after, "ActivateFonts", R"({"fonts":[1]})");
    EXPECT_EQ(mEars.told, Told{kPluginCallback_FontActivated}) << "once";
}

}  // namespace
}  // namespace pellwick
