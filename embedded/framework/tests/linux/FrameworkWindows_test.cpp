// The library's dialogs as the core gets them, used with the keyboard on a screen that nobody sees. DIALOG_PICTURE=COMMAND
// [DIALOG_LANGUAGE=en] has a picture of each taken as well.
#include <gmock/gmock.h>

#include <cstdio>

#include "HelperDialogs.h"
#include "ScopedVariable.h"
#include "TemporaryFolder.h"
#include "linux/DialogUser.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "platform/Utf8Path.h"
#include "tests/ShownDialogs.h"

namespace {

using testing::HasSubstr, testing::IsEmpty;

const std::string kProgram = BuiltFile(DIALOGS_PROGRAM);
constexpr int kSkipped = 77;

/// A framework that asks in windows, and what became of its questions.
class FrameworkWindows : public testing::Test {
protected:
    FrameworkWindows() {
        for (const char* folder : {"Jobs/Annual report", "Jobs/Poster", "Jobs/Web site"})
            std::filesystem::create_directories(platform::Utf8Path(mFolder / folder));
    }

    /// The framework's record of its questions, the answers alone.
    std::string TakeAnswers() {
        std::string answers;
        std::istringstream lines(ContentOf(mFolder / "log"));
        for (std::string line; std::getline(lines, line);)
            answers += line.substr(line.rfind("\"answer\":"));
        std::filesystem::remove(platform::Utf8Path(mFolder / "log"));
        return answers;
    }

    const TemporaryFolder mFolder;
    const ScopedVariable mConfiguration{"XDG_CONFIG_HOME", mFolder / "configuration"};
    const ScopedVariable mProposed{"XDG_DATA_DIRS", (mFolder / "Jobs/Poster") + ":/usr/share"};
    const ScopedVariable mLog{"PLUGINCORE_ANSWERS_LOG", mFolder / "log"};
    const ScopedVariable mAnswers{"PLUGINCORE_ANSWERS", ""}, mPresenter{"PLUGINCORE_PRESENTER", ""};
    const std::string mLanguage = platform::EnvironmentVariable("DIALOG_LANGUAGE");
    const ScopedVariable mLocale{"LC_ALL", mLanguage.empty() ? "en" : mLanguage};
    platform::HelperDialogs mDialogs{kProgram, {}};
    const platform::ScopedOverride<platform::NativeDialogs> mOverride{mDialogs};
};

TEST_F(FrameworkWindows, AreUsedWithTheKeyboard) {
    // The dialog, the keys, and how the recorded answers end.
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"message", "Return", "1}"},
        {"question", "Return", "2}"},
        {"question", "alt+y", "1}"},
        {"question", "Tab Return", "1}"},
        {"question", "Escape", "2}"},
        {"about", "Escape", "true}"},
        {"preferences", "space Down Down space Return",
         R"("EnablePlugin":true,"PickBestMatch":false,"SupportEmbeddedObjects":false}})"},
        {"preferences", "space Escape", "false}"},
        {"select-workgroup", "Down Return", R"({"workgroupID":8}})"},
        {"select-workgroup", "Down space alt+c", "false}"},
        {"command-box", "alt+p", R"({"command":6}})"},
        {"command-box", "Tab Tab Tab Tab Tab End Return", R"({"command":11}})"},
        {"command-box", "Escape", "false}"},
        {"resolve-fonts", "Down Tab Down Down Return", R"("Helvetica":"LiberationSans"}}})"},
        {"resolve-fonts", "Escape", "false}"},
        {"restricted-fonts", "Down Return", "true}"},
        {"restricted-fonts", "Escape", "false}"},
        {"choose-folder", "alt+s", R"(/Jobs/Poster"}})"},
        {"choose-folder", "Escape", "false}"},
        {"progress", "Escape", "false}"},
        {"notice", "Return", ""}};
    const OwnedFramework framework = LoadFramework(shown_dialogs::kLibrary);
    ASSERT_TRUE(framework);
    for (const auto& [name, keys, answer] : cases) {
        std::string title;
        {
            const DialogUser user([&, keys = keys](const std::string& window) {
                title = XDoTool("getwindowname " + window);
                XDoTool(std::string("key ") + keys);
            });
            shown_dialogs::kAll.at(name)(*framework);
        }
        EXPECT_THAT(TakeAnswers(), testing::EndsWith(answer)) << name << ": " << keys;
        EXPECT_THAT(title, testing::EndsWith(platform::Current<platform::Processes>().CurrentName() + "\n"))
            << name;
    }
}

TEST_F(FrameworkWindows, WhateverNamesHoldTheWindowFitsTheScreenAndAnswers) {
    const std::vector<std::string> names = {"<b>bold</b> &amp; _under_score", "a\x1B[31mred\a\tb\nc",
                                            "\u202E\u05E9\u05DC\u05D5\u05DD", "ill-formed \xFF\xC3",
                                            std::string(10'000, 'N'),         "%s%n \u5B57"};
    platform::Form form{names[4], {platform::FormList{names, 4}}, {{1, names[0]}, {0, "Cancel"}}, 1};
    platform::FormChoices choices;
    for (const std::string& name : names) {
        form.controls.emplace_back(platform::FormText{name});
        form.controls.emplace_back(platform::FormCheckBox{name, true});
        choices.rows.push_back({name, names, 5});
    }
    form.controls.emplace_back(std::move(choices));
    const DialogUser user([](const std::string& window) {
        // WIDTH=PIXELS and HEIGHT=PIXELS, a line each
        EXPECT_THAT(XDoTool("getwindowgeometry --shell " + window),
                    testing::ContainsRegex("WIDTH=[1-8]?[0-9]?[0-9]\nHEIGHT=[1-8]?[0-9]?[0-9]\n"));
        XDoTool("key Down Return");
    });
    EXPECT_EQ(mDialogs.ShowForm(nullptr, form), 1);
    EXPECT_EQ(mDialogs.TakeFailure(), "");
    EXPECT_EQ(std::get<platform::FormList>(form.controls.front()).selected, 5u);
    EXPECT_EQ(std::get<platform::FormChoices>(form.controls.back()).rows[5].selected, 5u);
}

TEST_F(FrameworkWindows, PicturesAreTaken) {
    if (!shown_dialogs::AreToBePictured())
        GTEST_SKIP() << "nobody wants pictures";
    const OwnedFramework framework = LoadFramework(shown_dialogs::kLibrary);
    ASSERT_TRUE(framework);
    for (const char* preference : {"EnablePlugin", "PickBestMatch", "CloseFontsOnDocClose"})
        framework->SetBoolPreference(preference, true);
    for (const auto& [name, open] : shown_dialogs::kAll) {
        const DialogUser user([&name = name](const std::string&) {
            shown_dialogs::TakePicture(name);
            XDoTool("key Escape");
        });
        open(*framework);
    }
}

}  // namespace

int main(int argc, char** argv) {
    platform::SetEnvironment("PLUGINCORE_DIALOG_TIMEOUT", "10");
    testing::InitGoogleTest(&argc, argv);
    if (!platform::HelperDialogs(kProgram, {}).IsAvailable() ||
        !platform::IsExistingFile("/usr/bin/xdotool")) {
        std::puts("SKIPPED: there is no screen for windows, which Xvfb provides, or no xdotool");
        return kSkipped;
    }
    return RUN_ALL_TESTS();
}
