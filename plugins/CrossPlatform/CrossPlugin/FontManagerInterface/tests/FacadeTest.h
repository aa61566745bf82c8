// The facade with a font manager found and the user logged in.
#pragma once

#include "FontManagerWorld.h"

class FacadeTest : public FontManagerWorld {
protected:
    FacadeTest() {
        MarquellGlobals::SetUpPluginIdentity("com.vantorix.AutoActivationPlugin.AI29", "", [] { return ""; });
        EXPECT_TRUE(fontManager.CompatibleFontManagerIsRunning());
        MarquellGlobals::SetLoggedIn(true);
        trace.Clear();
    }

    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
};
