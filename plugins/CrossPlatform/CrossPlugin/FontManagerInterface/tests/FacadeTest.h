// The facade over an interface library and a framework that do as the test says, with a font manager found
// and the user logged in.
#pragma once

#include <gtest/gtest.h>

#include "CapturedTrace.h"
#include "FakeFramework.h"
#include "FakeInterfaceLibrary.h"
#include "FakePlatform.h"
#include "FontManagerInterface.h"
#include "MarquellGlobals.h"

class FacadeTest : public testing::Test {
protected:
    FacadeTest() {
        processes.running = {{2, "/agent/Pellwick"}};
        libraries.loadable = {"/agent/TarnwickPluginInterfaceX64.so", "/plugins/TarnwickPluginFramework.so"};
        libraries.symbols = FakeInterfaceLibrary::Symbols();
        libraries.symbols["CreateVantorixPluginFramework"] = reinterpret_cast<void*>(
            +[](uint32_t, const char*, CFDictionaryRef) -> VantorixPluginFramework* { return sFramework; });
        sFramework = &framework;
        framework.numbers["EnablePlugin"] = 1;
        library.workgroups = {{7, kWorkgroupType_FontLibrary, "Library"}};
        MarquellGlobals::SetUpPluginIdentity("com.vantorix.AutoActivationPlugin.AI29", "", [] { return ""; });
        EXPECT_TRUE(fontManager.CompatibleFontManagerIsRunning());
        MarquellGlobals::SetLoggedIn(true);
        trace.Clear();
    }
    ~FacadeTest() override {
        fontManager.OnHostAppShuttingDown();
        MarquellGlobals::ResetForTesting();
        delete VPILoader::GetSharedInstance();
    }

    CapturedTrace trace;
    FakeProcesses processes;
    FakeFolders folders;
    FakeLibraries libraries;
    FakeVersionResources versions;
    FakeFramework framework;
    FakeInterfaceLibrary library;
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();

private:
    static inline FakeFramework* sFramework = nullptr;
};
