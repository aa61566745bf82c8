#include "HostWindow.h"

#include <algorithm>

#include "MarquellGlobals.h"
#include "TraceLog.h"
#include "platform/Windowing.h"

namespace {

using platform::WindowHandle;
using platform::WindowInfo;

std::vector<WindowInfo>::const_iterator FindByTitle(const std::vector<WindowInfo>& windows,
                                                    const std::string& title) {
    return std::find_if(windows.begin(), windows.end(), [&](const WindowInfo& window) {
        return !window.title.empty() && window.title.find(title) != std::string::npos;
    });
}

/// The host's own ways of naming its window, where its class does not tell.
WindowHandle FindBySpecialRule(const std::string& hostWindowName) {
    if (hostWindowName == "Illustrator9") {
        const WindowHandle window =
            platform::Current<platform::Windowing>().FindTopLevelByClass("illustrator");
        if (window != nullptr)
            LogMessage(0, "... but FindWindowA('illustrator', NULL) succeeded");
        return window;
    }
    if (hostWindowName == "Photoshop")
        return MarquellGlobals::FindWindowWithMatchingTitle("Adobe Photoshop", nullptr);
    if (hostWindowName == "indesign")
        return MarquellGlobals::FindWindowWithMatchingTitle("Adobe InDesign", nullptr);
    return nullptr;
}

}  // namespace

WindowHandle MarquellGlobals::FindWindowWithMatchingTitle(const char* topTitle, const char* childTitle) {
    LogMessage(0, "Entering %s(%s, %s)", "MarquellGlobals::FindWindowWithMatchingTitle", OrNull(topTitle),
               OrNull(childTitle));
    if (topTitle == nullptr)
        return nullptr;
    auto& windowing = platform::Current<platform::Windowing>();
    const std::vector<WindowInfo> windows = windowing.TopLevelWindows();
    const auto found = FindByTitle(windows, topTitle);
    if (found == windows.end())
        return nullptr;
    if (childTitle != nullptr && *childTitle != '\0') {
        const std::vector<WindowInfo> descendants = windowing.Descendants(found->handle);
        if (FindByTitle(descendants, childTitle) == descendants.end())
            return nullptr;
    }
    return found->handle;
}

WindowHandle MarquellGlobals::GetHostAppMainWindow() {
    const std::string name = GetHostWindowName();
    if (name.empty() || name.front() == '?')
        return nullptr;
    if (const WindowHandle window = platform::Current<platform::Windowing>().FindTopLevelByClass(name))
        return window;
    LogMessage(0, "FindWindowA('%s', NULL) returned NULL", name.c_str());
    if (const WindowHandle window = FindBySpecialRule(name))
        return window;
    return FindWindowWithMatchingTitle(name.c_str(), nullptr);
}
