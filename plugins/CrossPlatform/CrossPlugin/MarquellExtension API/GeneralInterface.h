// The host application's side as the exports fill it in.
#pragma once

#include "HostAppInterface.h"

class GeneralInterface : public HostAppInterface {
public:
    /// Called when the host's workgroups menu is out of date; null for none.
    void SetRebuildWorkgroupsMenuCallback(void (*callback)()) { mRebuildWorkgroupsMenu = callback; }

    void ShowProgressHint(const char* hint) override;
    void Refresh(bool menus, bool panels) override;
    void OnWorkgroupsChanged() override;
    void SendKeyPress(const KeyPress& keyPress) override;

private:
    void (*mRebuildWorkgroupsMenu)() = nullptr;
};
