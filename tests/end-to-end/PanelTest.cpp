#include "PanelTest.h"

#include "FileURL.h"

#include <algorithm>

PanelTest::PanelTest() {
    world.AddFonts({"Sample-Bold"});
    world.AddFonts({"Sample-Italic"});
    world.AddFonts({"Other-Regular"});
    host.Start();
    EXPECT_EQ(host.Call("RegisterPlugPlug")["code"], 0);
}

std::vector<json> PanelTest::Idle() {
    EXPECT_EQ(host.Call("IdleEvent")["code"], 0);
    EXPECT_EQ(host.Call("ProcessPanelMessages")["code"], 0);
    return host.TakePanelMessages();
}

json PanelTest::WaitFor(int messageID) {
    json found;
    EXPECT_TRUE(Eventually([&] {
        for (const json& message : Idle()) {
            if (found.is_null() && message["messageID"] == messageID)
                found = message;
        }
        return !found.is_null();
    })) << "no message "
        << messageID;
    return found;
}

bool PanelTest::IdleUntilTraced(const std::string& text) {
    return Eventually([&] {
        host.Call("IdleEvent");
        return world.Trace().find(text) != std::string::npos;
    });
}

json PanelTest::Ask(const json& request) {
    const std::vector<json> answers = host.Panel(request);
    EXPECT_EQ(answers.size(), 1u) << request << " was answered with " << json(answers);
    return answers.size() == 1 ? answers[0] : json();
}

std::string PathOfURL(const std::string& url) {
    EXPECT_TRUE(url.starts_with("file://")) << url;
    return PathOfFileURL(url);
}
