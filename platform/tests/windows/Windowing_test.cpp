#include "platform/Windowing.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/Processes.h"
#include "windows/DialogDriver.h"

namespace {

using platform::WindowHandle;
using platform::WindowInfo;

platform::Windowing& Windows() {
    return platform::SystemDefault<platform::Windowing>();
}

constexpr wchar_t kHostClass[] = L"PluginCoreTestHost ü字";
constexpr char kHostClassUtf8[] = "PluginCoreTestHost ü字";

HWND MakeWindow(const wchar_t* windowClass, const wchar_t* title, DWORD style, HWND parent) {
    return CreateWindowExW(0, windowClass, title, style, 0, 0, 50, 50, parent, nullptr, nullptr, nullptr);
}

std::string TitleIn(const std::vector<WindowInfo>& windows, WindowHandle handle) {
    for (const WindowInfo& window : windows) {
        if (window.handle == handle)
            return window.title;
    }
    return "not in the list";
}

TEST(Windowing, FindsTheHostsWindowsByClassAndTitleAtAnyDepth) {
    WNDCLASSW host{};
    host.lpfnWndProc = DefWindowProcW;
    host.lpszClassName = kHostClass;
    RegisterClassW(&host);
    EXPECT_EQ(Windows().FindTopLevelByClass(kHostClassUtf8), nullptr);
    const HWND top = MakeWindow(kHostClass, L"Größe 字 😀", WS_OVERLAPPEDWINDOW, nullptr);
    const HWND child = MakeWindow(L"STATIC", L"child", WS_CHILD, top);
    const HWND grandchild = MakeWindow(kHostClass, L"grand 字", WS_CHILD, child);
    EXPECT_EQ(Windows().FindTopLevelByClass(kHostClassUtf8), top);
    EXPECT_EQ(Windows().FindTopLevelByClass("PluginCoreTestHost"), nullptr) << "the whole name counts";

    const auto all = Windows().TopLevelWindows();
    EXPECT_EQ(TitleIn(all, top), "Größe 字 😀");
    EXPECT_EQ(TitleIn(all, child), "not in the list");
    const auto below = Windows().Descendants(top);
    ASSERT_EQ(below.size(), 2u);
    EXPECT_EQ(TitleIn(below, grandchild), "grand 字");
    EXPECT_TRUE(Windows().Descendants(grandchild).empty());
    EXPECT_TRUE(Windows().Descendants(nullptr).empty()) << "not those of the desktop";
    DestroyWindow(top);
}

}  // namespace
