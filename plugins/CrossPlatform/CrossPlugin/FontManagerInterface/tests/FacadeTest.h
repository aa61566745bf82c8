// The facade with a font manager found and the user logged in.
#pragma once

#include "FontManagerWorld.h"
#include "TemporaryFolder.h"

/// Puts an agent that can be started into the folder "agent" of `folder`.
inline void InstallAgent(const TemporaryFolder& folder, FakeFolders& folders) {
    const std::string path = folder.Write("agent/" + platform::ProgramFileName("Pellwick"), "");
    folder.Write("Vantorix/com.vantorix.Pellwick-LaunchInfo.conf", "pellwick.path=" + path + "\n");
    folders.paths[platform::KnownFolder::kLocalApplicationData] = folder / ".";
}

class FacadeTest : public FontManagerWorld {
protected:
    FacadeTest() {
        EXPECT_TRUE(MakeFunctional());
        trace.Clear();
    }
    void InstallAgent() { ::InstallAgent(folder, folders); }

    TemporaryFolder folder;
    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
};
