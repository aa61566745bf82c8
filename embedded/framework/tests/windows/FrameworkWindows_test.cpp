// The library's dialogs as the core gets them, on a screen. DIALOG_PICTURES=FOLDER [DIALOG_LANGUAGE=en] has a picture of
// each taken as well, as BMP files.
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <thread>

#include "TestFiles.h"
#include "platform/Folders.h"
#include "platform/Windowing.h"
#include "tests/DialogTestSupport.h"
#include "tests/FrameworkTestSupport.h"
#include "tests/LoadedFramework.h"
#include "windows/DialogDriver.h"

namespace {

using Framework = VantorixPluginFramework;

const std::string kLibrary = BuiltFile(FRAMEWORK_LIBRARY);

RecordList Workgroups() {
    return Records({WorkgroupRecord(30, "Personal Library"), WorkgroupRecord(7, "Print"),
                    WorkgroupRecord(8, "Web & Screen"), WorkgroupRecord(9, "Corporate Design, Europe")});
}

/// Enough of them to scroll.
RecordList FontsToResolve() {
    return Records({FontRecord("AGaramondPro-Regular", {"EBGaramond-Regular", "CormorantGaramond-Regular"}),
                    FontRecord("Helvetica", {"LiberationSans"}), FontRecord("Zapfino"),
                    FontRecord("Helvetica-Bold", {"LiberationSans"}),
                    FontRecord("Garamond", {"EBGaramond-Regular", "CormorantGaramond-Regular"}),
                    FontRecord("Arial", {"LiberationSans"})});
}

void ShowSelectWorkgroup(Framework& framework) {
    int32_t workgroup = 7;
    framework.ShowSelectWorkgroup(Workgroups().get(), &workgroup);
}

void ShowCommandBox(Framework& framework) {
    const auto state = cf::MutableDictionary();
    cf::Set(state, "Workgroups", Workgroups());
    cf::Set(state, "CurrentWorkgroupID", 7);
    cf::Set(state, "ButtonsEnabled", true);
    cf::Set(state, "IsOnline", true);
    int32_t command = 0;
    framework.ShowCommandBox(state.get(), &command);
}

void ShowResolveFonts(Framework& framework) {
    framework.ShowResolveFonts(FontsToResolve().get(), cf::MutableArray().get(), cf::MutableArray().get());
}

void ShowChooseFolder(Framework& framework) {
    const auto initial = cf::String(
        platform::SystemDefault<platform::Folders>().PathOf(platform::KnownFolder::kAllUsersApplicationData));
    CFStringRef folder = nullptr;
    framework.ShowChooseFolder(CFSTR("Choose the destination for collecting fonts.  Collected fonts will be "
                                     "placed in a sub-folder there."),
                               initial.get(), &folder);
    const auto owned = AdoptCF(folder);
}

void ShowProgress(Framework& framework) {
    for (int32_t done = 0; framework.ShowProgress(204, done, 12); done = 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

/// Everything that the library can show, by its name as part of a file's name, each with something in it.
const std::pair<const char*, std::function<void(Framework&)>> kDialogs[] = {
    {"message", [](Framework& it) { it.ShowMessageBox(600, 601, MessageBoxButtons::kOk); }},
    {"question", [](Framework& it) { it.ShowMessageBox(604, 605, MessageBoxButtons::kYesNo); }},
    {"about", [](Framework& it) { it.ShowAbout(); }},
    {"preferences", [](Framework& it) { it.ShowPreferences(); }},
    {"select-workgroup", ShowSelectWorkgroup},
    {"command-box", ShowCommandBox},
    {"resolve-fonts", ShowResolveFonts},
    {"restricted-fonts", [](Framework& it) { it.ShowRestrictedFonts(FontsToResolve().get(), true); }},
    {"choose-folder", ShowChooseFolder},
    {"progress", ShowProgress},
    {"notice", [](Framework&) {
         platform::SystemDefault<platform::Windowing>().ShowStringResourceNotice(kLibrary, 105, "");
     }}};

/// The part of the screen, as a BMP file.
std::string PictureOf(const RECT& part) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = part.right - part.left;
    header.biHeight = part.bottom - part.top;
    header.biPlanes = 1;
    header.biBitCount = 32;
    std::string pixels(static_cast<size_t>(header.biWidth * header.biHeight) * 4, '\0');
    const HDC screen = GetDC(nullptr);
    const HDC copy = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, header.biWidth, header.biHeight);
    const HGDIOBJ previous = SelectObject(copy, bitmap);
    BitBlt(copy, 0, 0, header.biWidth, header.biHeight, screen, part.left, part.top, SRCCOPY);
    SelectObject(copy, previous);
    BITMAPINFO format{header, {}};
    GetDIBits(copy, bitmap, 0, static_cast<UINT>(header.biHeight), pixels.data(), &format, DIB_RGB_COLORS);
    DeleteObject(bitmap);
    DeleteDC(copy);
    ReleaseDC(nullptr, screen);
    BITMAPFILEHEADER start{};
    start.bfType = 0x4D42;  // "BM"
    start.bfOffBits = sizeof start + sizeof header;
    start.bfSize = start.bfOffBits + static_cast<DWORD>(pixels.size());
    return std::string(reinterpret_cast<char*>(&start), sizeof start) +
           std::string(reinterpret_cast<char*>(&header), sizeof header) + pixels;
}

void TakePicture(HWND window, const std::string& name) {
    const std::string folder = platform::EnvironmentVariable("DIALOG_PICTURES");
    if (folder.empty())
        return;
    std::this_thread::sleep_for(std::chrono::milliseconds(600));  // until it is painted
    RECT part{};
    GetWindowRect(window, &part);
    WriteText(folder + "/" + name + ".bmp", PictureOf(part));
}

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
    for (const auto& [name, open] : kDialogs) {
        bool wasShown = false;
        {
            const DialogDriver user([&, name = std::string(name)](HWND window) {
                wasShown = true;
                EXPECT_NE(TextOf(window), "") << name;
                const auto cutOff = TextsCutOff(window);
                EXPECT_TRUE(name == "choose-folder" || cutOff.empty())
                    << name << testing::PrintToString(cutOff);
                if (language == (pictured.empty() ? "en" : pictured))
                    TakePicture(window, name);
                Dismiss(window);
            });
            open(*framework);
        }
        EXPECT_TRUE(wasShown) << name;
    }
}

}  // namespace
