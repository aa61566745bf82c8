// The library's dialogs as the core gets them, on a screen. DIALOG_PICTURE=COMMAND [DIALOG_LANGUAGE=en] has a picture of
// each taken as well.
#include <gtest/gtest.h>
#include <windows.h>

#include "ScopedVariable.h"
#include "TemporaryFolder.h"
#include "platform/Utf8Path.h"
#include "tests/ShownDialogs.h"
#include "windows/DialogDriver.h"

namespace {

using shown_dialogs::kLibrary;

class FrameworkWindows : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Languages, FrameworkWindows, testing::Values("en", "de"));

TEST_P(FrameworkWindows, NoDialogCutsItsTextsOff) {
    const std::string language = GetParam();
    const std::string pictured = platform::EnvironmentVariable("DIALOG_LANGUAGE");
    const TemporaryFolder folder;
    const ScopedVariable configuration("XDG_CONFIG_HOME", platform::Utf8Text(folder.Path()));
    const ScopedVariable answers("PLUGINCORE_ANSWERS", ""), presenter("PLUGINCORE_PRESENTER", "");
    const ScopedVariable locale("LC_ALL", language);
    const OwnedFramework framework = LoadFramework(kLibrary);
    ASSERT_TRUE(framework);
    for (const char* preference : {"EnablePlugin", "PickBestMatch", "CloseFontsOnDocClose"})
        framework->SetBoolPreference(preference, true);
    SetCursorPos(0, 0);  // what the mouse points at looks different
    for (const auto& [name, open] : shown_dialogs::kAll) {
        bool wasShown = false;
        {
            const DialogDriver user([&, name = name](HWND window) {
                wasShown = true;
                EXPECT_NE(TextOf(window), "") << name;
                const auto cutOff = TextsCutOff(window);
                EXPECT_TRUE(name == "choose-folder" || cutOff.empty())
                    << name << testing::PrintToString(cutOff);
                if (shown_dialogs::AreToBePictured() && language == (pictured.empty() ? "en" : pictured))
                    shown_dialogs::TakePicture(name);
                Dismiss(window);
            });
            open(*framework);
        }
        EXPECT_TRUE(wasShown) << name;
    }
}

}  // namespace
