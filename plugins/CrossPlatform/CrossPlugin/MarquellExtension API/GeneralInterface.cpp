#include "GeneralInterface.h"

#include "TraceLog.h"

void GeneralInterface::ShowProgressHint(const char* hint) {
    LogMessage(0, "%s", hint);
}

void GeneralInterface::Refresh(bool menus, bool) {
    if (menus)
        OnWorkgroupsChanged();
}

void GeneralInterface::OnWorkgroupsChanged() {
    if (mRebuildWorkgroupsMenu != nullptr)
        mRebuildWorkgroupsMenu();
}
