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
    const std::string later = "<?xpacket begin=''?>later<?xpacket end='w'?>";
    const std::string filler(1 << 20, '\xFE');
    std::string text;
    // The marker stands at the beginning, across two pieces, and behind a packet that is cut off or damaged.
    for (const std::string& before :
         {std::string(), filler.substr(7), filler + "<?xpacket begin=''?>\xFF<?xpacket end='r'?>"}) {
        EXPECT_EQ(ReadXmp(mWorld.Write("document", before + packet + filler + later), text), 0u);
        EXPECT_EQ(text, packet);
    }
    for (const std::string& content :
         {std::string(), filler, packet.substr(0, packet.size() - 1),
          "<?xpacket begin=''?>" + std::string(kMaxXmpPacket, 'x') + packet.substr(40)})
        EXPECT_EQ(ReadXmp(mWorld.Write("document", content), text), CoreErrorCodes::kNotFound);
    EXPECT_EQ(ReadXmp(mWorld.Path("absent"), text), error_codes::GFileSystem::kFileNotFound);
    EXPECT_EQ(ReadXmp(mWorld.Path(""), text), error_codes::GFileSystem::kFileNotFound);
}

TEST_F(PreviewTest, TheMetadataOfAHugeDocumentIsLookedForAtBothEnds) {
    const std::string packet = "<?xpacket begin=''?><x/><?xpacket end='w'?>";
    std::string text;
    const std::string path = mWorld.Write("document", "x");
    std::filesystem::resize_file(platform::Utf8Path(path), 2 * kMaxXmpSearch);  // takes no room on the disk
    EXPECT_EQ(ReadXmp(path, text), CoreErrorCodes::kNotFound);
    std::ofstream(platform::Utf8Path(path), std::ios::binary | std::ios::app) << packet;
    EXPECT_EQ(ReadXmp(path, text), 0u);
    EXPECT_EQ(text, packet);
}

// Where each beginning is looked into for its own end, any of these takes for ever.
TEST_F(PreviewTest, MarkersWithoutNumberDoNotHoldUpTheHost) {
    const auto repeated = [](const std::string& text) {
        std::string document;
        while (document.size() < kMaxXmpSearch / 4)
            document += text;
        return document;
    };
    const std::string farEnd = "<?xpacket end='w'?>";
    std::string text;
    for (const std::string& document :
         {repeated("<?xpacket begin="), repeated("<?xpacket begin=<?xpacket end="),
          repeated(std::string(1 << 10, 'x') + "<?xpacket begin=") + "\xFF" + farEnd,
          repeated("<?xpacket begin=\xFF") + farEnd, repeated("<?xpacket begin=\xFF<?xpacket end=") + farEnd,
          repeated("<?xpacket begin=<?xpacket end=\xFF?>"), repeated("<?xpacket begin=\xC3") + "?>"})
        EXPECT_EQ(ReadXmp(mWorld.Write("document", document), text), CoreErrorCodes::kNotFound);
}

}  // namespace
}  // namespace pellwick::test
