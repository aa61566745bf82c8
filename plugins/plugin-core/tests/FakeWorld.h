// A host with a framework and an interface library that do as the test says, started up to the point where
// the plug-in is functional.
#pragma once

#include <gtest/gtest.h>

#include "AllTrackedDocuments.h"
#include "CapturedTrace.h"
#include "FakeFramework.h"
#include "FakeInterfaceLibrary.h"
#include "FakePlatform.h"
#include "FontManagerInterface.h"
#include "MarquellGlobals.h"

class FakeWorld : public testing::Test {
protected:
    FakeWorld() {
        processes.running = {{2, "/agent/Pellwick"}};
        libraries.loadable = {"/agent/TarnwickPluginInterfaceX64.so", "/plugins/TarnwickPluginFramework.so"};
        libraries.symbols = FakeInterfaceLibrary::Symbols();
        libraries.symbols["CreateVantorixPluginFramework"] = reinterpret_cast<void*>(
            +[](uint32_t, const char*, CFDictionaryRef) -> VantorixPluginFramework* { return sFramework; });
        sFramework = &framework;
        library.workgroups = {{7, kWorkgroupType_FontLibrary, "Library"}};
        framework.numbers["EnablePlugin"] = 1;
    }
    ~FakeWorld() override {
        FontManagerInterface::GetSharedInstance().OnHostAppShuttingDown();
        for (const auto& document : std::vector(AllTrackedDocuments::GetSharedInstance().Documents()))
            AllTrackedDocuments::GetSharedInstance().RemoveClosedDocument(*document, nullptr);
        MarquellGlobals::ResetForTesting();
        delete VPILoader::GetSharedInstance();
    }

    /// Makes the plug-in functional without the start-up routine, which a process runs only once.
    void MakeFunctional() {
        MarquellGlobals::SetUpPluginIdentity("com.vantorix.AutoActivationPlugin.AI29", "", [] { return ""; });
        ASSERT_TRUE(FontManagerInterface::GetSharedInstance().CompatibleFontManagerIsRunning());
        MarquellGlobals::SetLoggedIn(true);
        MarquellGlobals::SetPluginFunctionalityEnabled(true);
        ASSERT_TRUE(MarquellGlobals::IsPluginFunctional());
        library.calls.clear();
        trace.Clear();
    }

    CapturedTrace trace;
    FakeProcesses processes;
    FakeFolders folders;
    FakeLibraries libraries;
    FakeVersionResources versions;
    FakeWindowing windowing;
    FakeFramework framework;
    FakeInterfaceLibrary library;

private:
    static inline FakeFramework* sFramework = nullptr;
};
