// A host with an interface library and a framework that do as they are told, and nobody who listens to the
// trace. For tests, through FontManagerWorld, and for benchmarks and fuzz targets as it is.
#pragma once

#include "FakeFramework.h"
#include "FakeInterfaceLibrary.h"
#include "FakePlatform.h"
#include "FontManagerInterface.h"
#include "MarquellGlobals.h"

class SilentWorld {
public:
    SilentWorld() {
        processes.running = {{2, fake_paths::kAgent}};
        libraries.loadable = {fake_paths::kInterfaceLibrary, fake_paths::kFramework};
        libraries.symbols = FakeInterfaceLibrary::Symbols();
        libraries.symbols["CreateVantorixPluginFramework"] = reinterpret_cast<void*>(
            +[](uint32_t, const char*, CFDictionaryRef) -> VantorixPluginFramework* { return sFramework; });
        sFramework = &framework;
        library.workgroups = {{7, kWorkgroupType_FontLibrary, "Library"}};
        framework.numbers["EnablePlugin"] = 1;
    }
    ~SilentWorld() {
        FontManagerInterface::GetSharedInstance().OnHostAppShuttingDown();
        MarquellGlobals::ResetForTesting();
        delete VPILoader::GetSharedInstance();
    }

    /// Makes the plug-in functional without the start-up routine, which a process runs only once. Whether it
    /// is.
    bool MakeFunctional() {
        MarquellGlobals::SetUpPluginIdentity("com.vantorix.AutoActivationPlugin.AI29", "", [] { return ""; });
        const bool isCompatible = FontManagerInterface::GetSharedInstance().CompatibleFontManagerIsRunning();
        MarquellGlobals::SetLoggedIn(true);
        MarquellGlobals::SetPluginFunctionalityEnabled(true);
        return isCompatible && MarquellGlobals::IsPluginFunctional();
    }

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
