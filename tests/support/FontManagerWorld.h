// A world with an interface library and a framework that do as the test says. For tests that link the facade.
#pragma once

#include <gtest/gtest.h>

#include "CapturedTrace.h"
#include "FakeFramework.h"
#include "FakeInterfaceLibrary.h"
#include "FakePlatform.h"
#include "FontManagerInterface.h"
#include "MarquellGlobals.h"

class FontManagerWorld : public testing::Test {
protected:
    FontManagerWorld() {
        processes.running = {{2, "/agent/Pellwick"}};
        libraries.loadable = {"/agent/TarnwickPluginInterfaceX64.so", "/plugins/TarnwickPluginFramework.so"};
        libraries.symbols = FakeInterfaceLibrary::Symbols();
        libraries.symbols["CreateVantorixPluginFramework"] = reinterpret_cast<void*>(
            +[](uint32_t, const char*, CFDictionaryRef) -> VantorixPluginFramework* { return sFramework; });
        sFramework = &framework;
        library.workgroups = {{7, kWorkgroupType_FontLibrary, "Library"}};
        framework.numbers["EnablePlugin"] = 1;
    }
    ~FontManagerWorld() override {
        FontManagerInterface::GetSharedInstance().OnHostAppShuttingDown();
        MarquellGlobals::ResetForTesting();
        delete VPILoader::GetSharedInstance();
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
