// The library's dialogs as the core gets them, used with the keyboard on a screen that nobody sees. DIALOG_PICTURES=FOLDER
// [DIALOG_LANGUAGE=en] has a picture of each taken as well, as PNG files.
#include <gmock/gmock.h>

#include <cstdio>

#include "HelperDialogs.h"
#include "linux/DialogUser.h"
#include "platform/Processes.h"
#include "tests/FrameworkTestSupport.h"
#include "tests/ShownDialogs.h"

namespace {

using testing::HasSubstr, testing::IsEmpty;

const std::string kProgram = BuiltFile(DIALOGS_PROGRAM);
constexpr int kSkipped = 77;

/// A framework that asks in windows, and what became of its questions.
class FrameworkWindows : public testing::TestWithParam<const char*> {
protected:
    explicit FrameworkWindows(const std::string& language = "en") : mLocale("LC_ALL", language) {}

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
    const ScopedVariable mLog{"PLUGINCORE_ANSWERS_LOG", mFolder / "log"};
    const ScopedVariable mAnswers{"PLUGINCORE_ANSWERS", ""}, mPresenter{"PLUGINCORE_PRESENTER", ""};
    const ScopedVariable mLocale;
    platform::HelperDialogs mNoticeDialogs{kProgram, {}};
    const platform::ScopedOverride<platform::NativeDialogs> mOverride{mNoticeDialogs};
};

void Show(const std::string& name, VantorixPluginFramework& framework) {
    for (const auto& [each, open] : shown_dialogs::kAll) {
        if (each == name)
            open(framework);
    }
}

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
        {"choose-folder", "alt+s", R"({"folder":"/usr/local/share"}})"},
        {"choose-folder", "Escape", "false}"},
        {"progress", "Escape", "false}"},
        {"notice", "Return", ""}};
    const OwnedFramework framework = LoadFramework(shown_dialogs::kLibrary);
    ASSERT_TRUE(framework);
    for (const auto& [name, keys, answer] : cases) {
        std::string title;
        {
            const DialogUser user([&, keys = keys](const DialogOnScreen& dialog) {
                title = dialog.Title();
                dialog.Press(keys);
            });
            Show(name, *framework);
        }
        EXPECT_THAT(TakeAnswers(), testing::EndsWith(answer)) << name << ": " << keys;
        EXPECT_THAT(title, testing::EndsWith(platform::Current<platform::Processes>().CurrentName())) << name;
    }
}

class FrameworkWindowPictures : public FrameworkWindows {
protected:
    FrameworkWindowPictures() : FrameworkWindows(GetParam()) {}
};
INSTANTIATE_TEST_SUITE_P(Languages, FrameworkWindowPictures, testing::Values("en", "de"));

TEST_P(FrameworkWindowPictures, AreTaken) {
    const std::string folder = platform::EnvironmentVariable("DIALOG_PICTURES");
    const std::string language = platform::EnvironmentVariable("DIALOG_LANGUAGE");
    if (folder.empty() || (language.empty() ? "en" : language) != GetParam())
        GTEST_SKIP() << "nobody wants pictures";
    const OwnedFramework framework = LoadFramework(shown_dialogs::kLibrary);
    ASSERT_TRUE(framework);
    for (const char* preference : {"EnablePlugin", "PickBestMatch", "CloseFontsOnDocClose"})
        framework->SetBoolPreference(preference, true);
    for (const auto& [name, open] : shown_dialogs::kAll) {
        const DialogUser user([&, name = std::string(name)](const DialogOnScreen& dialog) {
            dialog.SavePicture(folder + "/" + name + ".png");
            dialog.Press("Escape");
        });
        open(*framework);
    }
}

}  // namespace

int main(int argc, char** argv) {
    platform::SetEnvironment("PLUGINCORE_DIALOG_TIMEOUT", "30");
    testing::InitGoogleTest(&argc, argv);
    if (!platform::HelperDialogs(kProgram, {}).IsAvailable()) {
        std::puts("SKIPPED: there is no screen for windows; Xvfb provides one");
        return kSkipped;
    }
    return RUN_ALL_TESTS();
}
