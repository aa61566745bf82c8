// The host's windows, and a notice of last resort. On Linux no windows are found; NativeDialogs finds the one that it
// needs.
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
    /// A notice with no owner and no caption, system-modal and in the foreground; without a screen, nothing. Shows
    /// string resource `stringID` of the module at `modulePath`, and the text `otherwise` where it cannot be had. Linux:
    /// the resource is the version pair "String" ID "." LANGUAGE, in the user's language or else in "en".
    virtual void ShowStringResourceNotice(const std::string& modulePath, unsigned stringID,
                                          const std::string& otherwise) = 0;
};

template <>
Windowing& SystemDefault<Windowing>();

}  // namespace platform
