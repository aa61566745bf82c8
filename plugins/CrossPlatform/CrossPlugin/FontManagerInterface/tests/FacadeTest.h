// The facade with a font manager found and the user logged in.
#pragma once

#include "FontManagerWorld.h"
#include "TemporaryFolder.h"

class FacadeTest : public FontManagerWorld {
protected:
    FacadeTest() {
        EXPECT_TRUE(MakeFunctional());
        trace.Clear();
    }
    /// An agent that can be started again.
    void InstallAgent() {
        const std::string path = folder.Write("agent/" + platform::ProgramFileName("Pellwick"), "");
        folder.Write("Vantorix/com.vantorix.Pellwick-LaunchInfo.conf", "pellwick.path=" + path + "\n");
        folders.paths[platform::KnownFolder::kLocalApplicationData] = folder / ".";
    }

    TemporaryFolder folder;
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
};
