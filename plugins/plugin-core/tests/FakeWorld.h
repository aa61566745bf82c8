// A host up to the point where the plug-in is functional, with a scripted framework and interface library.
#pragma once

#include "AllTrackedDocuments.h"
#include "FontManagerWorld.h"
#include "PanelManager.h"
#include "RecordingPanel.h"

class FakeWorld : public FontManagerWorld {
protected:
    ~FakeWorld() override {
        FontManagerInterface::GetSharedInstance().OnHostAppShuttingDown();
        for (const auto& document : std::vector(AllTrackedDocuments::GetSharedInstance().Documents()))
            AllTrackedDocuments::GetSharedInstance().RemoveClosedDocument(*document, nullptr);
    }

    void MakeFunctional() {
        ASSERT_TRUE(SilentWorld::MakeFunctional());
        library.calls.clear();
        trace.Clear();
    }

    static RecordingPanel* AddPanel() {
        auto panel = std::make_unique<RecordingPanel>();
        RecordingPanel* const added = panel.get();
        PanelManager::GetSharedInstance().AddPanel(std::move(panel));
        return added;
    }
};
