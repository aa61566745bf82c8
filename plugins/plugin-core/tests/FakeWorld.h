// A host with a framework and an interface library that do as the test says, started up to the point where
// the plug-in is functional.
#pragma once

#include "AllTrackedDocuments.h"
#include "FontManagerWorld.h"
#include "PanelManager.h"

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

    /// A panel of the shared panel manager; lives to process end, and answers with success unless told not
    /// to.
    struct FakePanel : MarquellPanel {
        ErrorCode SelectSocket(bool close) override {
            selections.push_back(close);
            return selectCode;
        }
        uint32_t GetSocketPort() override { return 0; }
        ErrorCode PopNotifications() override { return popCode; }
        ErrorCode SendMessage(const std::string& message) override {
            sent.push_back(message);
            return 0;
        }
        ErrorCode SendFontImages(CFDictionaryRef) override { return 0; }

        ErrorCode selectCode = 0;
        ErrorCode popCode = 0;
        std::vector<bool> selections;
        std::vector<std::string> sent;
    };
    static FakePanel* AddPanel() {
        auto panel = std::make_unique<FakePanel>();
        FakePanel* const added = panel.get();
        PanelManager::GetSharedInstance().AddPanel(std::move(panel));
        return added;
    }
};
