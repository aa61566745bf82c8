// Previews, and what is found in documents.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <set>

#include "common/FontManagerLimits.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

std::string PathIn(CFDictionaryRef fontPNGs, int64_t font, const char* key) {
    const auto paths = cf::As<CFDictionaryRef>(CFDictionaryGetValue(fontPNGs, cf::Number(font).get()));
    return paths != nullptr ? cf::GetString(paths, key) : std::string();
}

/// The dictionaries that came with notifications of previews.
std::mutex receivedLock;
std::vector<CFRef<CFDictionaryRef>> received;

void Receive(int32_t type, const void* data) {
    const std::lock_guard guard(receivedLock);
    if (type == kPluginCallback_PreviewPNGsRendered)
        received.push_back(RetainCF(cf::As<CFDictionaryRef>(data)));
}

class PreviewTest : public testing::Test {
protected:
    void SetUp() override {
        received.clear();
        mLibrary.ResetPluginFacadeInstance();  // an earlier test may have left one without an agent
        mWorld.StartAgent();
        for (const char* name : {"Alpha-Regular", "Beta-Regular", "Gamma-Regular"})
            mWorld.RunForJson({"add", mWorld.WriteFont(name)});
    }
    void TearDown() override { mLibrary.CleanUpOnShutdown(); }

    ErrorCode Render(const std::vector<int64_t>& first, const std::vector<int64_t>& all,
                     CFMutableDictionaryRef fontPNGs) {
        return mLibrary.RenderFontNamePreviewPNGs(mLibrary.Facade(), IDsArray(first).get(),
                                                  IDsArray(all).get(), fontPNGs);
    }
    ErrorCode ReadXmp(const std::string& path, std::string& text) {
        CFStringRef xmp = nullptr;
        const ErrorCode code = mLibrary.GetAdobeXMPData(mLibrary.Facade(), cf::String(path).get(), &xmp);
        text = cf::ToUtf8(AdoptCF(xmp).get());
        return code;
    }

    TestWorld mWorld;
    TestLibrary mLibrary;
};

TEST_F(PreviewTest, ArriveByFontAndThoseOfHighPriorityFirst) {
    ASSERT_EQ(mLibrary.RegisterForNotifications(mLibrary.Facade(), Receive), 0u);
    const auto fontPNGs = cf::MutableDictionary();
    ASSERT_EQ(Render({3}, {1, 2, 3, 999}, fontPNGs.get()), 0u);
    ASSERT_EQ(CFDictionaryGetCount(fontPNGs.get()), 3);
    CFStringRef folder = nullptr;
    ASSERT_EQ(mLibrary.GetRenderedPNGsDirectory(mLibrary.Facade(), &folder), 0u);
    EXPECT_EQ(cf::ToUtf8(AdoptCF(folder).get()), mWorld.Path("cache/Vantorix/Pellwick/previews"));
    std::set<std::string> paths;
    for (const int64_t font : {1, 2, 3}) {
        for (const char* key : {kGS_PNGFilenameKey, kGS_2xPNGFilenameKey}) {
            const std::string path = PathIn(fontPNGs.get(), font, key);
            EXPECT_TRUE(path.starts_with(mWorld.Path("cache/")));
            EXPECT_TRUE(platform::IsExistingFile(path)) << path;
            paths.insert(path);
        }
    }
    EXPECT_EQ(paths.size(), 6u);
    EXPECT_TRUE(Eventually([] {
        const std::lock_guard guard(receivedLock);
        return received.size() == 2;
    }));
    EXPECT_EQ(mLibrary.UnregisterForNotifications(mLibrary.Facade(), Receive), 0u);
    EXPECT_EQ(PathIn(received[0].get(), 3, kGS_PNGFilenameKey),
              PathIn(fontPNGs.get(), 3, kGS_PNGFilenameKey));
    EXPECT_EQ(CFDictionaryGetCount(received[0].get()), 1);
    EXPECT_EQ(CFDictionaryGetCount(received[1].get()), 2);
}

TEST_F(PreviewTest, AreLeftOutWhereTheFontIsGone) {
    mWorld.EmptyVault();
    const auto fontPNGs = cf::MutableDictionary();
    EXPECT_EQ(Render({}, {1, 999}, fontPNGs.get()), 0u);
    EXPECT_EQ(CFDictionaryGetCount(fontPNGs.get()), 0);
    EXPECT_EQ(mLibrary.StateOf(1), kFontActivationState_Missing);
    EXPECT_EQ(mLibrary.RenderFontNamePreviewPNGs(mLibrary.Facade(), nullptr, nullptr, fontPNGs.get()),
              CoreErrorCodes::kNullPointer);
}

TEST_F(PreviewTest, ALibraryWithoutGoogleFontsListsNone) {
    const auto fonts = cf::MutableArray();
    EXPECT_EQ(mLibrary.GetGoogleFonts(mLibrary.Facade(), fonts.get()), 0u);
    EXPECT_EQ(cf::Count(fonts.get()), 0);
    EXPECT_EQ(mLibrary.GetGoogleFonts(nullptr, fonts.get()), GAgentIF::kUninitialized);
    bool isOn = false;
    EXPECT_EQ(mLibrary.SetGoogleWebFontsEnabled(mLibrary.Facade(), true), 0u);
    EXPECT_EQ(mLibrary.GetIsGoogleWebFontsEnabled(mLibrary.Facade(), &isOn), 0u);
    EXPECT_TRUE(isOn);
}

TEST_F(PreviewTest, TheMetadataOfADocumentIsItsFirstWholePacket) {
    const std::string packet =
        "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0\"?><x>\u5b57\u4f53</x><?xpacket end=\"w\"?>";
    const std::string filler(1 << 20, '\xFE');
    const std::string rest = packet + filler + "<?xpacket begin=''?>later<?xpacket end='w'?>";
    const auto repeated = [](const std::string& text) {
        std::string document;
        while (document.size() < kMaxXmpSearch / 4)
            document += text;
        return document;
    };
    const std::string farEnd = "<?xpacket end='w'?>";
    const std::pair<std::string, bool> documents[] = {
        {rest, true},
        {filler.substr(7) + rest, true},  // the marker stands across two pieces
        {filler + "<?xpacket begin=''?>\xFF<?xpacket end='r'?>" + rest, true},
        {"", false},
        {filler, false},
        {packet.substr(0, packet.size() - 1), false},
        {"<?xpacket begin=''?>" + std::string(kMaxXmpPacket, 'x') + packet.substr(40), false},
        // Where each beginning is looked into for its own end, any of these takes for ever.
        {repeated("<?xpacket begin="), false},
        {repeated("<?xpacket begin=<?xpacket end="), false},
        {repeated(std::string(1 << 10, 'x') + "<?xpacket begin=") + "\xFF" + farEnd, false},
        {repeated("<?xpacket begin=\xFF") + farEnd, false},
        {repeated("<?xpacket begin=\xFF<?xpacket end=") + farEnd, false},
        {repeated("<?xpacket begin=<?xpacket end=\xFF?>"), false},
        {repeated("<?xpacket begin=\xC3") + "?>", false}};
    std::string text;
    for (const auto& [document, isFound] : documents) {
        const ErrorCode code = ReadXmp(mWorld.Write("document", document), text);
        EXPECT_EQ(code, isFound ? 0u : CoreErrorCodes::kNotFound) << document.substr(0, 60);
        EXPECT_EQ(text, isFound ? packet : "");
    }
    for (const char* path : {"absent", ""})
        EXPECT_EQ(ReadXmp(mWorld.Path(path), text), error_codes::GFileSystem::kFileNotFound);
    // A huge one is searched at both ends; it takes no room on the disk.
    const std::string huge = mWorld.Write("document", "x");
    std::filesystem::resize_file(platform::Utf8Path(huge), 2 * kMaxXmpSearch);
    EXPECT_EQ(ReadXmp(huge, text), CoreErrorCodes::kNotFound);
    std::ofstream(platform::Utf8Path(huge), std::ios::binary | std::ios::app) << packet;
    EXPECT_EQ(ReadXmp(huge, text), 0u);
}

}  // namespace
}  // namespace pellwick::test
