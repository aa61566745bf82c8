// A core agent interface whose agent is lost and comes back as the test says.
#pragma once

#include "FontManagerWorld.h"
#include "TemporaryFolder.h"

class CoreAgentInterfaceTest : public FontManagerWorld {
protected:
    CoreAgentInterfaceTest() {
        const std::string agentPath = folder.Write("agent/" + platform::ProgramFileName("Pellwick"), "");
        folders.paths[platform::KnownFolder::kLocalApplicationData] = folder / ".";
        folder.Write("Vantorix/com.vantorix.Pellwick-LaunchInfo.conf", "pellwick.path=" + agentPath + "\n");
        MarquellGlobals::SetUpPluginIdentity("com.vantorix.AutoActivationPlugin.AI29", "", [] { return ""; });
        MarquellGlobals::SetPluginServicesEnabled(true);
        MarquellGlobals::SetConnectedToCore(true);
        MarquellGlobals::GetSharedVPFInterface();
        VPILoader::GetSharedInstance();
        library.calls.clear();
        library.isAgentRunning = false;  // once it is lost
        trace.Clear();
    }

    bool AreServicesOn() const {
        return MarquellGlobals::ArePluginServicesEnabled() && MarquellGlobals::IsConnectedToCore();
    }

    TemporaryFolder folder;
    CoreAgentInterface agent;
};
