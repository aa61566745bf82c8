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

class TestWindow {
public:
    TestWindow(const wchar_t* windowClass, const wchar_t* title, DWORD style, HWND parent)
        : mWindow(CreateWindowExW(0, windowClass, title, style, 0, 0, 50, 50, parent, nullptr, nullptr,
                                  nullptr)) {}
    ~TestWindow() { DestroyWindow(mWindow); }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    HWND Get() const { return mWindow; }

private:
    HWND mWindow;
};

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
    const TestWindow top(kHostClass, L"Größe 字 😀", WS_OVERLAPPEDWINDOW, nullptr);
    const TestWindow child(L"STATIC", L"child", WS_CHILD, top.Get());
    const TestWindow grandchild(kHostClass, L"grand 字", WS_CHILD, child.Get());
    EXPECT_EQ(Windows().FindTopLevelByClass(kHostClassUtf8), top.Get());
    EXPECT_EQ(Windows().FindTopLevelByClass("PluginCoreTestHost"), nullptr) << "the whole name counts";

    const auto all = Windows().TopLevelWindows();
    EXPECT_EQ(TitleIn(all, top.Get()), "Größe 字 😀");
    EXPECT_EQ(TitleIn(all, child.Get()), "not in the list");
    const auto below = Windows().Descendants(top.Get());
    ASSERT_EQ(below.size(), 2u);
    EXPECT_EQ(TitleIn(below, grandchild.Get()), "grand 字");
    EXPECT_TRUE(Windows().Descendants(grandchild.Get()).empty());
    EXPECT_TRUE(Windows().Descendants(nullptr).empty()) << "not those of the desktop";
}

}  // namespace
