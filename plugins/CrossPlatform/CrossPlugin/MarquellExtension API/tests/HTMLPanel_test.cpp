#include "HTMLPanel.h"

#include <stdexcept>

#include "PanelTest.h"

using testing::ElementsAre, testing::HasSubstr;

namespace {

using HTMLPanelTest = PanelTest;

/// What the font manager says of one font's images; an empty path is left out.
CFRef<CFMutableDictionaryRef> Images(int64_t fontID, const std::string& path, const std::string& path2x) {
    const CFRef<CFMutableDictionaryRef> paths = cf::MutableDictionary();
    if (!path.empty())
        cf::Set(paths, kGS_PNGFilenameKey, path);
    if (!path2x.empty())
        cf::Set(paths, kGS_2xPNGFilenameKey, path2x);
    CFRef<CFMutableDictionaryRef> images = cf::MutableDictionary();
    CFDictionarySetValue(images.get(), cf::Number(fontID).get(), paths.get());
    return images;
}

}  // namespace

TEST_F(HTMLPanelTest, RequestsComeInOnOneEventAndRepliesLeaveOnAnother) {
    EXPECT_THAT(service.listenedTo, ElementsAre("com.vantorix.PanelToPlugin"));
    service.Deliver(R"({"messageID":16})");
    ASSERT_EQ(service.events.size(), 1u);
    EXPECT_EQ(service.events[0].address, "com.vantorix.PluginToPanel/1/HTML/none");
    EXPECT_THAT(service.events[0].data, testing::StartsWith(R"({"messageID":16,"isWindows":)"));
}

TEST_F(HTMLPanelTest, EventsThatAreNoMessageAreDropped) {
    for (const char* each : {"no JSON", "", "{", "\xff", "null", R"({"messageID":16} trailing)"})
        service.Deliver(each);
    EXPECT_THAT(trace.Text(), HasSubstr("Failed to parse JSON: JSON parse error:\n"));
    trace.Clear();
    service.Deliver(static_cast<const char*>(nullptr));
    service.Listener()(nullptr, service.Context());
    const PlugPlugEvent event{"com.vantorix.PanelToPlugin", 1, "HTML", nullptr, R"({"messageID":16})"};
    service.Listener()(&event, nullptr);
    EXPECT_EQ(trace.Text(), "");
    EXPECT_TRUE(service.events.empty());
}

TEST_F(HTMLPanelTest, ImagesAreSentWithTheirLocations) {
    const CFRef<CFMutableDictionaryRef> notOfFonts = Images(-1, "/tmp/1.png", "");
    CFDictionarySetValue(notOfFonts.get(), cf::String("5").get(), cf::MutableDictionary().get());
    CFDictionarySetValue(notOfFonts.get(), cf::Number(6).get(), cf::String("no dictionary").get());
    const std::pair<CFRef<CFMutableDictionaryRef>, const char*> cases[] = {
        {nullptr, "[]"},
        {Images(4294967295, "/tmp/ü \"1\".png", "/tmp/1@2x.png"),
         R"([{"fontID":4294967295,"pngFilename":"file:///tmp/ü \"1\".png","2xPNGFilename":"file:///tmp/1@2x.png"}])"},
        {Images(8, "/tmp/8.png", ""),
         R"([{"fontID":8,"pngFilename":"file:///tmp/8.png","2xPNGFilename":""}])"},
        {Images(9, "", "C:/9@2x.png"),
         R"([{"fontID":9,"pngFilename":"","2xPNGFilename":"file://C:/9@2x.png"}])"},
        {Images(4294967296, "/tmp/1.png", ""), "[]"},
        {notOfFonts, R"([{"fontID":6,"pngFilename":"","2xPNGFilename":""}])"},
    };
    for (const auto& [images, fonts] : cases) {
        EXPECT_EQ(panel.SendFontImages(images.get()), 0u);
        EXPECT_THAT(service.TakeMessages(),
                    ElementsAre(R"({"messageID":32,"fonts":)" + std::string(fonts) + "}"));
    }
    EXPECT_EQ(panel.SelectSocket(true), 0u);
    EXPECT_EQ(panel.GetSocketPort(), 0u) << "there is none";
}

TEST_F(HTMLPanelTest, WhatAPanelAnswersAtOnceIsHandledInTurn) {
    int depth = 0;
    int deepest = 0;
    int left = 3;
    service.whileDispatching = [&](const std::string&) {
        deepest = std::max(deepest, ++depth);
        if (left-- > 0) {
            service.Deliver(R"({"messageID":18})");
            service.Deliver(R"({"messageID":11})");
        }
        --depth;
    };
    service.Deliver(R"({"messageID":16})");
    EXPECT_EQ(deepest, 1) << "no reply is sent from within the sending of another";
    std::string ids;
    for (const std::string& message : service.TakeMessages())
        ids += message.substr(13, 2) + " ";
    EXPECT_EQ(ids, "16 18 11 18 11 18 11 ");
}

TEST_F(HTMLPanelTest, APanelCannotKeepTheHostBusyForEverNorThrowIntoIt) {
    service.whileDispatching = [&](const std::string&) {
        service.Deliver(R"({"messageID":16})");
        service.Deliver(R"({"messageID":16})");
    };
    service.Deliver(R"({"messageID":16})");
    EXPECT_EQ(service.events.size(), 1000u);
    EXPECT_THAT(trace.Text(), HasSubstr("Dropping 1000 requests of a panel"));
    service.whileDispatching = [](const std::string&) { throw std::runtime_error("lost"); };
    service.Deliver(R"({"messageID":16})");
    EXPECT_THAT(trace.Text(), HasSubstr("Exception thrown in HTMLPanel::EventCallback(): lost\n"));
    service.whileDispatching = nullptr;
    service.events.clear();
    service.Deliver(R"({"messageID":16})");
    EXPECT_EQ(service.events.size(), 1u) << "and it is served again";
}
