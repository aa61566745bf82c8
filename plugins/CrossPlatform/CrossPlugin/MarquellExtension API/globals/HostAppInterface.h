// What the core tells the host application, beyond the results of its exports.
#pragma once

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
};
