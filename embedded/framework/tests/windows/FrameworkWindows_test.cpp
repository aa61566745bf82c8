// The library's dialogs as the core gets them, on a screen. DIALOG_PICTURES=FOLDER [DIALOG_LANGUAGE=en] has a picture of
// each taken as well, as BMP files.
#include <gtest/gtest.h>
#include <windows.h>

#include <thread>

#include "ScopedVariable.h"
#include "TemporaryFolder.h"
#include "platform/Utf8Path.h"
#include "tests/ShownDialogs.h"
#include "windows/DialogDriver.h"

namespace {

using shown_dialogs::kLibrary;

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
    for (const auto& [name, open] : shown_dialogs::kAll) {
        bool wasShown = false;
        {
            const DialogDriver user([&, name = name](HWND window) {
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
