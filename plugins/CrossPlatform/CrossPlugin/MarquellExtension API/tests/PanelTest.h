// A panel that is registered with a host's service, and connected to a font manager that does as it is told.
#pragma once

#include "FakePlugPlug.h"
#include "FontManagerWorld.h"
#include "HTMLPanel.h"

class PanelTest : public FontManagerWorld {
protected:
    PanelTest() {
        EXPECT_TRUE(MakeFunctional());
        EXPECT_EQ(panel.RegisterHandler(), 0u);
        Forget();
    }

    std::vector<std::string> Send(const std::string& message) {
        service.Deliver(message);
        return service.TakeMessages();
    }
    /// Into the interface library; but for those that only ask how it is, which take nothing.
    std::vector<std::string> Calls() const {
        std::vector<std::string> calls = library.given;
        std::erase_if(calls, [](const std::string& call) { return call.ends_with("()"); });
        return calls;
    }
    void Forget() {
        library.given.clear();
        service.events.clear();
        trace.Clear();
    }

    FakePlugPlug service;
    HTMLPanel panel{&service};
};
