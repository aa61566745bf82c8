#include "GeneralInterface.h"

#include <gtest/gtest.h>

#include "CapturedTrace.h"

static int rebuilds = 0;

TEST(GeneralInterface, TheHostRebuildsItsMenuThroughTheLastCallbackGiven) {
    rebuilds = 0;
    GeneralInterface hostApp;
    hostApp.OnWorkgroupsChanged();
    hostApp.SetRebuildWorkgroupsMenuCallback([] { rebuilds += 100; });
    hostApp.SetRebuildWorkgroupsMenuCallback([] { ++rebuilds; });
    hostApp.OnWorkgroupsChanged();
    EXPECT_EQ(rebuilds, 1);
    hostApp.Refresh(false, true);
    EXPECT_EQ(rebuilds, 1) << "panels alone";
    hostApp.Refresh(true, false);
    EXPECT_EQ(rebuilds, 2);
    hostApp.SetRebuildWorkgroupsMenuCallback(nullptr);
    hostApp.OnWorkgroupsChanged();
    EXPECT_EQ(rebuilds, 2);
}

TEST(GeneralInterface, HintsAndKeysGoToTheTrace) {
    CapturedTrace trace;
    GeneralInterface().ShowProgressHint("...100% done");
    GeneralInterface().SendKeyPress({.isCtrlPressed = true, .isAltPressed = true, .keyCode = 65});
    EXPECT_EQ(trace.Text(), "...100% done\nKey 65 pressed in a panel (ctrl=1, shift=0, alt=1)\n");
}
