// What the core tells the host application, beyond the results of its exports.
#pragma once

#include <cstdint>

/// Main thread.
class HostAppInterface {
public:
    virtual ~HostAppInterface() = default;

    /// A line that says what is being done.
    virtual void ShowProgressHint(const char* hint) = 0;
    /// The plug-in's availability changed: refresh what depends on it.
    virtual void Refresh(bool menus, bool panels) = 0;
    /// The font manager's workgroup list changed.
    virtual void OnWorkgroupsChanged() = 0;

    /// A key that was pressed in a panel and belongs to the host.
    struct KeyPress {
        bool isCtrlPressed = false;
        bool isShiftPressed = false;
        bool isAltPressed = false;
        int32_t keyCode = 0;  ///< as the panel's browser numbers keys
    };
    virtual void SendKeyPress(const KeyPress& keyPress) = 0;
};
