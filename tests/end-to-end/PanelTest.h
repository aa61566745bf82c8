// A host with a registered panel, in a world with an agent.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "HostWorld.h"

class PanelTest : public testing::Test {
protected:
    /// The fonts are 1 Sample-Bold, 2 Sample-Italic, 3 Other-Regular; a host is started and has a panel.
    PanelTest();

    int Pellwick(const std::vector<std::string>& command) { return world.FontManager().Run(command).status; }
    /// Is idle once; what the panel was told.
    std::vector<json> Idle();
    /// Is idle until the panel is told something under that number; that message.
    json WaitFor(int messageID);
    /// Is idle until the trace holds the text.
    bool IdleUntilTraced(const std::string& text);
    /// The one message that a request is answered with at once; null when there is another number of them.
    json Ask(const json& request);

    HostWorld world;
    ScriptedHost host;
};

/// The path that a "file://" or "file:///" URL of the core names, however many slashes it has.
std::string PathOfURL(const std::string& url);
