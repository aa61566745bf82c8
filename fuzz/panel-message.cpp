// What panels send, of any content. Each reply is sent back as the next request, as a confused panel would.
#include <filesystem>

#include "FakePlugPlug.h"
#include "Fuzz.h"
#include "GJSONUtils.h"
#include "HTMLPanel.h"
#include "Records.h"
#include "SilentWorld.h"

namespace {

struct PanelWorld : SilentWorld {
    PanelWorld() {
        folders.paths[platform::KnownFolder::kTemporary] = std::filesystem::temp_directory_path().string();
        library.smartLists = {{3, "Three", {7}, {2, 1}, {}, std::string(100, 'x')}};
        library.smartListFonts = {Record(kGS_DatabaseIDKey, 5, kGS_PostScriptNameKey, "Tab\tbed")};
        library.conflictingFonts = {9};
        Require(MakeFunctional() && panel.RegisterHandler() == 0, "the panel is there");
        MarquellGlobals::SetConnectedToCore(true);
        service.whileDispatching = [this](const std::string& data) { OnMessage(data); };
    }

    void OnMessage(const std::string& data) {
        JSONObject document;
        JSONValue root;
        int messageID = 0;
        Require(GJSONUtils::Parse(document, data, root) == 0 &&
                    GJSONUtils::GetValueForKey(root, "messageID", messageID) == 0,
                "a reply has a number");
        service.events.clear();
        // Two that would go on for ever: replies that are requests again.
        if (repliesLeft-- > 0)
            service.Deliver(data);
    }

    void Receive(const std::string& message) {
        repliesLeft = 3;
        service.Deliver(message);
        library.calls.clear();
        library.given.clear();
    }

    FakePlugPlug service;
    HTMLPanel panel{&service};
    int repliesLeft = 0;
};

}  // namespace

std::vector<std::string> Seeds() {
    return {};
}

void TryInput(const std::string& input) {
    static PanelWorld world;
    world.Receive(input);
}
