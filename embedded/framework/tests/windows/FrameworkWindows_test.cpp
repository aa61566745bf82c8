// The library's dialogs as the core gets them, on a screen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "platform/Folders.h"
#include "strings/StringTables.h"
#include "tests/FrameworkTestSupport.h"
#include "tests/windows/FrameworkDialogs.h"
#include "windows/DialogDriver.h"

namespace {

class FrameworkWindowsTest : public testing::Test {
protected:
    OwnedFramework Load(const std::string& language) const {
        const ScopedVariable locale("LC_ALL", language);
        return LoadFramework(mLibrary);
    }

    TemporaryFolder mFolder;
    const std::string mLibrary = platform::FullPath(FRAMEWORK_LIBRARY);
    ScopedVariable mConfiguration{"XDG_CONFIG_HOME", platform::Utf8Text(mFolder.Path())};
    ScopedVariable mAnswers{"PLUGINCORE_ANSWERS", ""};
    ScopedVariable mPresenter{"PLUGINCORE_PRESENTER", ""};
};

TEST_F(FrameworkWindowsTest, NoDialogCutsItsTextsOffInAnyLanguage) {
    for (const char* language : {"en", "de"}) {
        const OwnedFramework framework = Load(language);
        ASSERT_TRUE(framework);
        for (const FrameworkDialog& dialog : FrameworkDialogs(mLibrary)) {
            bool wasShown = false;
            {
                const DialogDriver user([&](HWND window) {
                    wasShown = true;
                    EXPECT_NE(TextOf(window), "") << dialog.name;
                    const bool isSystems = dialog.name == "choose-folder";
                    EXPECT_TRUE(isSystems || TextsCutOff(window).empty())
                        << dialog.name << " in " << language << ": "
                        << testing::PrintToString(TextsCutOff(window));
                    Dismiss(window);
                });
                dialog.open(*framework);
            }
            EXPECT_TRUE(wasShown) << dialog.name;
        }
    }
}

TEST_F(FrameworkWindowsTest, PreferencesThatAreSwitchedInTheDialogAreStored) {
    const OwnedFramework framework = Load("de");
    ASSERT_TRUE(framework);
    framework->SetBoolPreference("EnablePlugin", true);
    const DialogDriver user([&](HWND window) {
        SendMessageW(FindControl(window, "Button", "Schriften automatisch aktivieren"), BM_CLICK, 0, 0);
        SendMessageW(FindControl(window, "Button", "Protokoll zur Fehlersuche führen"), BM_CLICK, 0, 0);
        PressKey(window, VK_RETURN);
    });
    EXPECT_TRUE(framework->ShowPreferences());
    EXPECT_FALSE(framework->GetBoolPreference("EnablePlugin"));
    EXPECT_TRUE(framework->GetBoolPreference("EnableLogging"));
}

/// The text in one language of the library's resources.
std::string ResourceText(HMODULE library, WORD id, WORD language) {
    const HRSRC found = FindResourceExW(library, RT_STRING, MAKEINTRESOURCEW(id / 16 + 1), language);
    if (found == nullptr)
        return "none";
    auto text = static_cast<const wchar_t*>(LockResource(LoadResource(library, found)));
    for (WORD before = 0; before < id % 16; ++before)  // each with its length in front
        text += 1 + *text;
    return platform::Utf8Text(std::filesystem::path(std::wstring(text + 1, *text)));
}

TEST_F(FrameworkWindowsTest, TheNoticeInTheResourcesIsTheOneOfTheTables) {
    const HMODULE library = LoadLibraryExW(platform::Utf8Path(mLibrary).c_str(), nullptr,
                                           LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(ResourceText(library, 105, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US)),
              LocalizedText("en", 105));
    EXPECT_EQ(ResourceText(library, 105, MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN)), LocalizedText("de", 105));
    FreeLibrary(library);
}

}  // namespace
