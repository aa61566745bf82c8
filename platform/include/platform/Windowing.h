// The host's windows and the system's own dialogs. A Linux system answers as one without a display: no
// windows, no dialogs.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Service.h"

namespace platform {

using WindowHandle = void*;

struct WindowInfo {
    WindowHandle handle = nullptr;
    std::string title;  ///< UTF-8; may be empty
};

class Windowing {
public:
    virtual ~Windowing() = default;

    /// First top-level window of that class, or null.
    virtual WindowHandle FindTopLevelByClass(const std::string& className) = 0;
    /// Top-level windows in system order.
    virtual std::vector<WindowInfo> TopLevelWindows() = 0;
    /// All windows below one, at any depth.
    virtual std::vector<WindowInfo> Descendants(WindowHandle window) = 0;
    /// A notice with no owner and no caption, system-modal and in the foreground. Shows string resource
    /// `stringID` of the module at `modulePath`.
    virtual void ShowStringResourceNotice(const std::string& modulePath, unsigned stringID) = 0;
};

template <>
Windowing& SystemDefault<Windowing>();

}  // namespace platform
