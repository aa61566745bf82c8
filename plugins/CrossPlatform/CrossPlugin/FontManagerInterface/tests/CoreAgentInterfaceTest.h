// A core agent interface whose agent is lost and comes back as the test says.
#pragma once

#include <gtest/gtest.h>

#include "CapturedTrace.h"
#include "CoreAgentInterface.h"
#include "FakeFramework.h"
#include "FakeInterfaceLibrary.h"
#include "FakePlatform.h"
#include "MarquellGlobals.h"
#include "TemporaryFolder.h"

class CoreAgentInterfaceTest : public testing::Test {
protected:
    CoreAgentInterfaceTest() {
        agentPath = folder.Write("agent/" + platform::ProgramFileName("Pellwick"), "");
        folders.paths[platform::KnownFolder::kLocalApplicationData] = folder / ".";
        folder.Write("Vantorix/com.vantorix.Pellwick-LaunchInfo.conf", "pellwick.path=" + agentPath + "\n");
        processes.running = {{2, agentPath}};
        libraries.loadable = {folder / ("agent/" + platform::LibraryFileName("TarnwickPluginInterfaceX64")),
                              fake_paths::kFramework};
        libraries.symbols = FakeInterfaceLibrary::Symbols();
        sFramework = &framework;
        libraries.symbols["CreateVantorixPluginFramework"] = reinterpret_cast<void*>(
            +[](uint32_t, const char*, CFDictionaryRef) -> VantorixPluginFramework* { return sFramework; });
        MarquellGlobals::SetUpPluginIdentity("com.vantorix.AutoActivationPlugin.AI29", "", [] { return ""; });
        MarquellGlobals::SetPluginServicesEnabled(true);
        MarquellGlobals::SetConnectedToCore(true);
        MarquellGlobals::GetSharedVPFInterface();
        VPILoader::GetSharedInstance();
        library.calls.clear();
        library.isAgentRunning = false;  // once it is lost
        trace.Clear();
    }
    ~CoreAgentInterfaceTest() override {
        MarquellGlobals::ResetForTesting();
        delete VPILoader::GetSharedInstance();
    }

    int Launches() const { return static_cast<int>(processes.launchedCommandLines.size()); }
    bool AreServicesOn() const {
        return MarquellGlobals::ArePluginServicesEnabled() && MarquellGlobals::IsConnectedToCore();
    }

    TemporaryFolder folder;
    std::string agentPath;
    CapturedTrace trace;
    FakeProcesses processes;
    FakeFolders folders;
    FakeLibraries libraries;
    FakeVersionResources versions;
    FakeFramework framework;
    FakeInterfaceLibrary library;
    CoreAgentInterface agent;

private:
    static inline FakeFramework* sFramework = nullptr;
};
