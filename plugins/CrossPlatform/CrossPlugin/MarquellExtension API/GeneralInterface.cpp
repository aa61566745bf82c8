#include "GeneralInterface.h"

#include "HostCall.h"
#include "MarquellGlobals.h"
#include "PanelManager.h"
#include "TraceLog.h"

void GeneralInterface::ShowProgressHint(const char* hint) {
    LogMessage(0, "%s", hint);
}

void GeneralInterface::Refresh(bool menus, bool panels) {
    if (menus && mRebuildWorkgroupsMenu != nullptr) {
        const WithinHost host;
        mRebuildWorkgroupsMenu();
    }
    // A panel that could not be told was reported; there is nothing more to do about it here.
    if (panels)
        static_cast<void>(
            PanelManager::GetSharedInstance().SetEnabled(MarquellGlobals::IsPluginFunctional()));
}

void GeneralInterface::OnWorkgroupsChanged() {
    Refresh(true, true);
}

void GeneralInterface::SendKeyPress(const KeyPress& keyPress) {
    // There is no way yet to hand a key to the host.
    LogMessage(0, "Key %d pressed in a panel (ctrl=%d, shift=%d, alt=%d)", keyPress.keyCode,
               keyPress.isCtrlPressed, keyPress.isShiftPressed, keyPress.isAltPressed);
}
