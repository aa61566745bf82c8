// Takes a picture of each dialog, as BMP files:
//
//   framework-dialog-pictures LIBRARY FOLDER
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "platform/Folders.h"
#include "platform/Utf8Path.h"
#include "tests/windows/FrameworkDialogs.h"
#include "windows/DialogDriver.h"

namespace {

constexpr std::chrono::milliseconds kTimeToPaint{600};

BITMAPINFOHEADER HeaderOf(int width, int height) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = 32;
    return header;
}

/// The pixels of that part of the screen, from the lowest row up.
std::vector<uint32_t> PixelsOf(const RECT& part, const BITMAPINFOHEADER& header) {
    std::vector<uint32_t> pixels(static_cast<size_t>(header.biWidth * header.biHeight));
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
    return pixels;
}

template <class Object>
void Write(std::ostream& file, const Object* objects, size_t count = 1) {
    file.write(reinterpret_cast<const char*>(objects), static_cast<std::streamsize>(sizeof(Object) * count));
}

void TakePicture(HWND window, const std::filesystem::path& path) {
    RECT part{};
    GetWindowRect(window, &part);
    const BITMAPINFOHEADER header = HeaderOf(part.right - part.left, part.bottom - part.top);
    const std::vector<uint32_t> pixels = PixelsOf(part, header);
    BITMAPFILEHEADER start{};
    start.bfType = 0x4D42;  // "BM"
    start.bfOffBits = sizeof start + sizeof header;
    start.bfSize = start.bfOffBits + static_cast<DWORD>(pixels.size() * sizeof(uint32_t));
    std::ofstream file(path, std::ios::binary);
    Write(file, &start);
    Write(file, &header);
    Write(file, pixels.data(), pixels.size());
}

}  // namespace

int main(int argc, char** argv) {
    const std::string library = argc > 2 ? platform::FullPath(argv[1]) : "";
    const OwnedFramework framework = argc > 2 ? LoadFramework(library) : nullptr;
    if (framework == nullptr)
        return 2;
    for (const char* preference : {"EnablePlugin", "PickBestMatch", "CloseFontsOnDocClose"})
        framework->SetBoolPreference(preference, true);
    SetCursorPos(0, 0);  // what the mouse points at looks different
    for (const FrameworkDialog& dialog : FrameworkDialogs(library)) {
        const DialogDriver user([&](HWND window) {
            std::this_thread::sleep_for(kTimeToPaint);
            TakePicture(window, platform::Utf8Path(argv[2]) / (dialog.name + ".bmp"));
            Dismiss(window);
        });
        dialog.open(*framework);
    }
    return 0;
}
